#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

namespace veral3::fuzz {

// The input of a target as decisions, one after another. Spent input answers 0.
class ByteSource {
 public:
  ByteSource(const std::uint8_t* data, std::size_t size) : m_data(data), m_left(size) {}

  std::size_t Left() const { return m_left; }

  std::uint8_t Byte() {
    if (m_left == 0) return 0;
    --m_left;
    return *m_data++;
  }

  // Below `bound`, which is at most 256.
  std::size_t Below(std::size_t bound) { return Byte() % bound; }

  std::uint32_t Word() {
    std::uint32_t bits = 0;
    for (int i = 0; i < 4; ++i) bits = bits << 8 | Byte();
    return bits;
  }

  // A number of any kind; a short code for the usual ones, so that little input goes a long way.
  float Number() {
    const std::uint8_t code = Byte();
    if (code < 96) return 0.0f;
    if (code < 112) return -0.0f;
    if (code < 240) return static_cast<float>(static_cast<int>(code) - 176) / 64.0f;
    return std::bit_cast<float>(Word());
  }

  // All that is left.
  std::span<const std::uint8_t> Rest() const { return {m_data, m_left}; }

 private:
  const std::uint8_t* m_data;
  std::size_t m_left;
};

}  // namespace veral3::fuzz
