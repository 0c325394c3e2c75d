#pragma once

#include <array>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>

namespace veral3::tools {

using Sha256Digest = std::array<std::uint8_t, 32>;

// SHA-256 of the bytes. Throws std::runtime_error where the system has no SHA-256.
Sha256Digest Sha256(std::string_view bytes);

// The same of all that `file` has left, a block at a time.
Sha256Digest Sha256(std::istream& file);

// As 64 hexadecimal digits, the way sha256sum prints it.
std::string Hexadecimal(const Sha256Digest& digest);

}  // namespace veral3::tools
