#pragma once

#include <cstdint>
#include <initializer_list>
#include <iosfwd>
#include <span>

// The numbers of a binary model file: 32-bit little-endian integers and floats. Reading past the
// end gives zero bytes, so that a short file shows itself by a bracket or a type code that lacks.
namespace keras {

// Bytes between the read position and the end; 0 when the stream can't tell.
std::uint64_t BytesLeft(std::istream& file);

std::int32_t ReadInt32(std::istream& file);
char ReadChar(std::istream& file);
void ReadFloats(std::istream& file, std::span<double> values);  // each widened to double

void WriteInt32(std::ostream& file, std::int32_t value);
void WriteChar(std::ostream& file, char value);
void WriteFloats(std::ostream& file, std::span<const double> values);  // each rounded to float

// Product of sizes that are not negative; what passes 2^62 counts as 2^62.
std::uint64_t SizeProduct(std::initializer_list<std::int32_t> sizes);

// True when no size is negative.
bool NoneNegative(std::initializer_list<std::int32_t> sizes);

inline constexpr std::uint64_t kMaxTextSize = std::uint64_t{1} << 28;  // sizes of a text form

}  // namespace keras
