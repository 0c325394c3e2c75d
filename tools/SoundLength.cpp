#include "tools/SoundLength.h"

#include <algorithm>
#include <string_view>

namespace veral3::tools {
namespace {

// Programs that cannot go back to a head write this and more, or 0, for a length in 32 bits.
constexpr std::uint64_t kUnknownFrom = 0x7FFFF000;
constexpr int kMaxChunks = 4096;

enum class Order { kLittle, kBig };

std::uint64_t Number(std::string_view bytes, Order order) {
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const std::size_t at = order == Order::kBig ? i : bytes.size() - 1 - i;
    value = value << 8 | static_cast<unsigned char>(bytes[at]);
  }
  return value;
}

std::uint64_t NumberAt(const InputFile& file, std::uint64_t place, std::size_t width, Order order) {
  return Number(file.Bytes(place, width), order);
}

std::string FourBytes(std::uint64_t value, Order order) {
  std::string bytes;
  for (int i = 0; i < 4; ++i) {
    const int shift = 8 * (order == Order::kBig ? 3 - i : i);
    bytes += static_cast<char>(value >> shift & 0xFF);
  }
  return bytes;
}

std::string EightBytes(std::uint64_t value) {
  return FourBytes(value >> 32, Order::kBig) + FourBytes(value & 0xFFFFFFFF, Order::kBig);
}

// The chunks of a file: a name of four letters, a length, the content.
struct ChunkWalk {
  Order order = Order::kLittle;
  std::size_t width = 4;  // of the length
  bool padded = true;     // contents of odd length take a byte more
};

struct Chunk {
  std::uint64_t content = 0;  // place
  std::uint64_t size = 0;     // as announced
};

// The first chunk of a name from `place` on; false when there is none, or when chunks end before
// the file does in anything else.
bool FindChunk(const InputFile& file, std::uint64_t place, const ChunkWalk& walk,
               std::string_view name, Chunk& chunk) {
  for (int i = 0; i < kMaxChunks && place + 4 + walk.width <= file.Size(); ++i) {
    const bool found = file.Bytes(place, 4) == name;
    chunk.size = NumberAt(file, place + 4, walk.width, walk.order);
    chunk.content = place + 4 + walk.width;
    if (found) return true;
    if (chunk.size > file.Size() - chunk.content) return false;
    place = chunk.content + chunk.size + (walk.padded ? chunk.size % 2 : 0);
  }
  return false;
}

// Whether what begins at `place` is nothing but chunks of a RIFF file, at least one.
bool AreChunks(const InputFile& file, std::uint64_t place, Order order) {
  int count = 0;
  while (place < file.Size()) {
    const std::string head = file.Bytes(place, 8);
    const bool is_name =
        head.size() == 8 &&
        std::all_of(head.begin(), head.begin() + 4, [](char c) { return c >= ' ' && c <= '~'; });
    if (!is_name || ++count > kMaxChunks) return false;
    const std::uint64_t size = Number(std::string_view(head).substr(4), order);
    if (size > file.Size() - place - 8) return false;
    place += 8 + size + size % 2;
  }
  return count > 0;
}

void Announce(const InputFile& file, std::uint64_t content, std::uint64_t size,
              SoundLength& length) {
  length.announced = size;
  length.present = file.Size() - std::min(content, file.Size());
}

void ReadWave(const InputFile& file, Order order, SoundLength& length) {
  const bool is_long = file.Bytes(0, 4) == "RF64" || file.Bytes(0, 4) == "BW64";
  const ChunkWalk walk{order, 4, true};
  Chunk data;
  if (!FindChunk(file, 12, walk, "data", data)) return;
  const std::uint64_t present = file.Size() - data.content;
  if (is_long && data.size == 0xFFFFFFFF) {
    // The 64-bit lengths are in a chunk of their own: of the file, of the sound, of its frames.
    Chunk sizes;
    if (!FindChunk(file, 12, walk, "ds64", sizes)) return;
    const std::uint64_t size = NumberAt(file, sizes.content + 8, 8, order);
    if (size != 0 && size < std::uint64_t{1} << 63) Announce(file, data.content, size, length);
    return;
  }
  const bool is_open = data.size == 0 ? present > 0 && !AreChunks(file, data.content, order)
                                      : data.size >= kUnknownFrom && data.size > present;
  if (!is_open) {
    if (data.size > 0) Announce(file, data.content, data.size, length);
    return;
  }
  if (file.Size() > 0xFFFFFFF0) return;
  length.patches = {{4, FourBytes(file.Size() - 8, order)},
                    {data.content - 4, FourBytes(present, order)}};
}

void ReadAiff(const InputFile& file, SoundLength& length) {
  Chunk sound;
  if (!FindChunk(file, 12, {Order::kBig, 4, true}, "SSND", sound)) return;
  // The sound itself lies behind two numbers.
  if (sound.size > 8 && sound.size < kUnknownFrom) {
    Announce(file, sound.content + 8, sound.size - 8, length);
  }
}

void ReadAu(const InputFile& file, Order order, SoundLength& length) {
  const std::uint64_t content = NumberAt(file, 4, 4, order);
  const std::uint64_t size = NumberAt(file, 8, 4, order);
  if (size < kUnknownFrom) Announce(file, content, size, length);
}

void ReadCaf(const InputFile& file, SoundLength& length) {
  Chunk data;
  if (!FindChunk(file, 8, {Order::kBig, 8, false}, "data", data)) return;
  // The sound itself lies behind a number.
  if (data.size > 4 && data.size < std::uint64_t{1} << 63) {
    Announce(file, data.content + 4, data.size - 4, length);
    // The library opens no file of this kind that is cut.
    const std::uint64_t present = file.Size() - data.content;
    if (data.size > present) length.patches = {{data.content - 8, EightBytes(present)}};
  }
}

void ReadFlac(const InputFile& file, std::uint64_t place, SoundLength& length) {
  // Behind the magic a block's head of four bytes and ten of block and frame sizes; then 20 bits of
  // rate, 3 of channels, 5 of width and 36 of frames.
  const std::string bytes = file.Bytes(place + 18, 8);
  if (bytes.size() < 8) return;
  length.frames = static_cast<std::int64_t>(Number(bytes, Order::kBig) & 0xFFFFFFFFF);
}

}  // namespace

std::uint64_t EndOfId3(const InputFile& file) {
  std::uint64_t place = 0;
  for (int i = 0; i < 8; ++i) {
    const std::string head = file.Bytes(place, 10);
    if (head.size() < 10 || !head.starts_with("ID3")) break;
    std::uint64_t size = 0;  // seven bits a byte
    for (std::size_t b = 6; b < 10; ++b) size = size << 7 | (head[b] & 0x7F);
    const bool has_foot = (head[5] & 0x10) != 0;
    place += 10 + size + (has_foot ? 10 : 0);
  }
  return place;
}

SoundLength LengthOf(const InputFile& file) {
  SoundLength length;
  const std::uint64_t begin = EndOfId3(file);
  const std::string head = file.Bytes(0, 12);
  if (file.Bytes(begin, 4) == "fLaC") {
    ReadFlac(file, begin, length);
  } else if (head.size() == 12) {
    const std::string_view name = std::string_view(head).substr(0, 4);
    const std::string_view kind = std::string_view(head).substr(8);
    if (kind == "WAVE" && (name == "RIFF" || name == "RF64" || name == "BW64")) {
      ReadWave(file, Order::kLittle, length);
    } else if (kind == "WAVE" && name == "RIFX") {
      ReadWave(file, Order::kBig, length);
    } else if (name == "FORM" && (kind == "AIFF" || kind == "AIFC")) {
      ReadAiff(file, length);
    } else if (name == ".snd") {
      ReadAu(file, Order::kBig, length);
    } else if (name == "dns.") {
      ReadAu(file, Order::kLittle, length);
    } else if (name == "caff") {
      ReadCaf(file, length);
    }
  }
  return length;
}

}  // namespace veral3::tools
