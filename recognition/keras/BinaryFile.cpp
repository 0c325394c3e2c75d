#include "recognition/keras/BinaryFile.h"

#include <algorithm>
#include <array>
#include <bit>
#include <istream>
#include <ostream>
#include <vector>

namespace keras {
namespace {

constexpr std::size_t kChunk = 4096;  // floats read at once

std::uint32_t FromBytes(const char* bytes) {
  std::uint32_t value = 0;
  for (int i = 3; i >= 0; --i) value = value << 8 | static_cast<unsigned char>(bytes[i]);
  return value;
}

void ToBytes(std::uint32_t value, char* bytes) {
  for (int i = 0; i < 4; ++i) bytes[i] = static_cast<char>(value >> (8 * i) & 0xFF);
}

}  // namespace

std::uint64_t BytesLeft(std::istream& file) {
  const std::istream::pos_type here = file.tellg();
  if (here == std::istream::pos_type(-1)) return 0;
  file.seekg(0, std::ios::end);
  const std::istream::pos_type end = file.tellg();
  file.seekg(here);
  return end > here ? static_cast<std::uint64_t>(end - here) : 0;
}

std::int32_t ReadInt32(std::istream& file) {
  std::array<char, 4> bytes{};
  file.read(bytes.data(), 4);
  return static_cast<std::int32_t>(FromBytes(bytes.data()));
}

char ReadChar(std::istream& file) {
  char value = 0;
  file.read(&value, 1);
  return value;
}

void ReadFloats(std::istream& file, std::span<double> values) {
  std::vector<char> bytes(4 * std::min(values.size(), kChunk));
  while (!values.empty()) {
    const std::size_t count = std::min(values.size(), kChunk);
    file.read(bytes.data(), static_cast<std::streamsize>(4 * count));
    std::fill(bytes.begin() + file.gcount(), bytes.end(), '\0');
    for (std::size_t i = 0; i < count; ++i) {
      values[i] = static_cast<double>(std::bit_cast<float>(FromBytes(&bytes[4 * i])));
    }
    values = values.subspan(count);
  }
}

void WriteInt32(std::ostream& file, std::int32_t value) {
  std::array<char, 4> bytes;
  ToBytes(static_cast<std::uint32_t>(value), bytes.data());
  file.write(bytes.data(), 4);
}

void WriteChar(std::ostream& file, char value) { file.write(&value, 1); }

void WriteFloats(std::ostream& file, std::span<const double> values) {
  for (const double value : values) {
    WriteInt32(file, std::bit_cast<std::int32_t>(static_cast<float>(value)));
  }
}

std::uint64_t SizeProduct(std::initializer_list<std::int32_t> sizes) {
  constexpr std::uint64_t kMost = std::uint64_t{1} << 62;
  std::uint64_t product = 1;
  for (const std::int32_t size : sizes) {
    const auto factor = static_cast<std::uint64_t>(size);
    if (factor == 0) return 0;
    product = product > kMost / factor ? kMost : product * factor;
  }
  return product;
}

bool NoneNegative(std::initializer_list<std::int32_t> sizes) {
  return std::all_of(sizes.begin(), sizes.end(), [](std::int32_t size) { return size >= 0; });
}

}  // namespace keras
