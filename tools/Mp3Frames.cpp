#include "tools/Mp3Frames.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

#include "tools/AudioDecoder.h"
#include "tools/Numbers.h"
#include "tools/SoundLength.h"

namespace veral3::tools {
namespace {

constexpr std::uint64_t kId3v1Bytes = 128;   // at the very end of a file
constexpr std::uint64_t kStrayBytes = 4096;  // behind the last frame that are taken for padding

// [kbit/s] by version (1; 2 and 2.5), layer and the code in the frame's head.
using BitRates = std::array<int, 15>;
constexpr std::array<std::array<BitRates, 3>, 2> kBitRates = {{
    {{{0, 32, 64, 96, 128, 160, 192, 224, 256, 288, 320, 352, 384, 416, 448},
      {0, 32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384},
      {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320}}},
    {{{0, 32, 48, 56, 64, 80, 96, 112, 128, 144, 160, 176, 192, 224, 256},
      {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160},
      {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160}}},
}};
constexpr std::array<int, 3> kRates = {44100, 48000, 32000};  // [Hz] of version 1

struct Frame {
  int version = 0;  // as coded: 3 is 1, 2 is 2, 0 is 2.5
  int layer = 0;
  int rate = 0;     // [Hz]
  int samples = 0;  // a channel
  std::uint64_t bytes = 0;
};

std::uint32_t BigEndian(std::string_view bytes) {
  std::uint32_t value = 0;
  for (const char byte : bytes.substr(0, 4)) value = value << 8 | static_cast<unsigned char>(byte);
  return value;
}

bool HasSync(std::string_view head) {
  return head.size() >= 4 && BigEndian(head) >> 21 == 0x7FF && (head[1] & 0x06) != 0;
}

// Nothing for what is no frame's head, and for a bit rate that only the frame's end tells.
std::optional<Frame> FrameOf(std::string_view head) {
  if (!HasSync(head)) return std::nullopt;
  const std::uint32_t bits = BigEndian(head);
  Frame frame;
  frame.version = static_cast<int>(bits >> 19 & 3);
  frame.layer = 4 - static_cast<int>(bits >> 17 & 3);
  const std::uint32_t bit_rate = bits >> 12 & 15;
  const std::uint32_t rate = bits >> 10 & 3;
  if (frame.version == 1 || bit_rate == 0 || bit_rate == 15 || rate == 3) return std::nullopt;
  const bool first = frame.version == 3;
  frame.rate = kRates[rate] / (first ? 1 : frame.version == 2 ? 2 : 4);
  frame.samples = frame.layer == 1 ? 384 : frame.layer == 2 || first ? 1152 : 576;
  const int bits_a_second =
      1000 * kBitRates[first ? 0 : 1][static_cast<std::size_t>(frame.layer - 1)][bit_rate];
  const int padding = static_cast<int>(bits >> 9 & 1);
  const int bytes = frame.layer == 1 ? 4 * (12 * bits_a_second / frame.rate + padding)
                                     : frame.samples / 8 * bits_a_second / frame.rate + padding;
  frame.bytes = static_cast<std::uint64_t>(bytes);
  return frame;
}

// How many frames a first frame without sound announces behind itself; nothing when it is a frame
// of sound, 0 when it does not say.
std::optional<std::int64_t> AnnouncedFrames(std::string_view frame) {
  constexpr std::size_t kHead = 64;  // the mark stands behind 4 bytes and the side information
  const std::string_view head = frame.substr(0, kHead);
  for (const char* mark : {"Xing", "Info"}) {
    const std::size_t at = head.find(mark);
    if (at == std::string_view::npos || frame.size() < at + 12) continue;
    const bool counts = (frame[at + 7] & 1) != 0;
    return counts ? BigEndian(frame.substr(at + 8)) : 0;
  }
  const std::size_t at = head.find("VBRI");
  if (at == std::string_view::npos || frame.size() < at + 18) return std::nullopt;
  return BigEndian(frame.substr(at + 14));
}

bool IsTag(std::string_view bytes) {
  return std::ranges::any_of(
      std::array<std::string_view, 4>{"TAG", "APETAGEX", "LYRICSBEGIN", "ID3"},
      [&](std::string_view name) { return bytes.starts_with(name); });
}

// A file's frames, one behind the other.
class Chain {
 public:
  Chain(const InputFile& file, std::uint64_t place, const Frame& first)
      : m_file(file), m_first(first), m_place(place), m_end(file.Size()) {
    if (m_end >= kId3v1Bytes && file.Bytes(m_end - kId3v1Bytes, 3) == "TAG") m_end -= kId3v1Bytes;
  }

  std::optional<Frame> FrameAt(std::uint64_t place) const {
    const auto frame = FrameOf(m_file.Bytes(place, 4));
    const bool fits = frame && frame->version == m_first.version && frame->layer == m_first.layer &&
                      frame->rate == m_first.rate;
    return fits ? frame : std::nullopt;
  }

  void Walk() {
    while (m_place < m_end) {
      const auto frame = FrameAt(m_place);
      if (!frame) return;
      if (m_place + frame->bytes > m_end) {
        m_is_cut = true;
        return;
      }
      m_place += frame->bytes;
      ++m_frames;
    }
  }

  // Whether the chain goes on behind bytes that belong to no frame.
  bool GoesOn() const {
    constexpr std::uint64_t kFar = 1u << 20;
    const std::uint64_t end = std::min(m_end, m_place + kFar);
    const std::string bytes = m_file.Bytes(m_place, static_cast<std::size_t>(end - m_place));
    for (std::size_t at = bytes.find('\xFF', 1); at != std::string::npos;
         at = bytes.find('\xFF', at + 1)) {
      const auto frame = FrameAt(m_place + at);
      if (frame && FrameAt(m_place + at + frame->bytes)) return true;
    }
    return false;
  }

  double SecondsOf(std::int64_t frames) const {
    return static_cast<double>(frames) * m_first.samples / m_first.rate;
  }

  std::string Problem(std::optional<std::int64_t> announced) const {
    const std::int64_t sound = m_frames - (announced ? 1 : 0);
    const bool has_all = announced.value_or(0) > 0 && sound + 1 >= *announced;
    const std::string after = " after " + Fixed(SecondsOf(sound), 2) + " s";
    const std::uint64_t left = m_end - m_place;
    const bool is_broken = left > 0 && !m_is_cut && !IsTag(m_file.Bytes(m_place, 16));
    if (has_all) return "";
    if (is_broken && GoesOn()) {
      return "is damaged" + after + ": a part of it is missing or overwritten";
    }
    if (announced.value_or(0) > 0) return EndsAfter(SecondsOf(sound), SecondsOf(*announced));
    if (m_is_cut) return "ends in the middle of a frame" + after + ": the rest is missing";
    if (is_broken && left > kStrayBytes) return "is damaged" + after + ": what follows is no sound";
    return "";
  }

 private:
  const InputFile& m_file;
  Frame m_first;
  std::uint64_t m_place;
  std::uint64_t m_end;
  std::int64_t m_frames = 0;
  bool m_is_cut = false;
};

}  // namespace

bool BeginsWithMpegFrame(const InputFile& file) { return HasSync(file.Bytes(EndOfId3(file), 4)); }

std::string MpegProblem(const InputFile& file) {
  const std::uint64_t begin = EndOfId3(file);
  const auto first = FrameOf(file.Bytes(begin, 4));
  if (!first) return "";
  Chain chain(file, begin, *first);
  chain.Walk();
  return chain.Problem(AnnouncedFrames(file.Bytes(begin, first->bytes)));
}

}  // namespace veral3::tools
