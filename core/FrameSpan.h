#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>

// Reading arrays by numbers that come from elsewhere. An alignment, a pitch track and an intensity
// curve of one recording are made by different steps, so every measure checks what it reads against
// the array at hand: what lies outside reads 0 or is passed over.
namespace veral3 {

// Frames `begin` to `end`, `end` excluded. Either may lie outside the recording, and `end` before
// `begin`: such a span holds no frames, though its length counts as it stands.
struct FrameSpan {
  int begin = 0;
  int end = 0;

  std::int64_t Length() const { return std::int64_t{end} - begin; }
  bool operator==(const FrameSpan&) const = default;
};

// The value at `index`, `otherwise` outside.
template <typename T>
T ReadOr(std::span<const T> values, int index, T otherwise = T{}) {
  if (index < 0 || static_cast<std::size_t>(index) >= values.size()) return otherwise;
  return values[static_cast<std::size_t>(index)];
}

// The values of the frames in `span`, those that exist.
template <typename T>
std::span<const T> Slice(std::span<const T> values, FrameSpan span) {
  const std::int64_t size = static_cast<std::int64_t>(values.size());
  const std::int64_t begin = std::clamp<std::int64_t>(span.begin, 0, size);
  const std::int64_t end = std::clamp<std::int64_t>(span.end, begin, size);
  return values.subspan(static_cast<std::size_t>(begin), static_cast<std::size_t>(end - begin));
}

// The nearest int.
constexpr int ToInt(std::int64_t value) {
  return static_cast<int>(std::clamp<std::int64_t>(value, std::numeric_limits<int>::min(),
                                                   std::numeric_limits<int>::max()));
}

}  // namespace veral3
