#include "tools/Checksum.h"

#include <openssl/evp.h>

#include <stdexcept>

namespace veral3::tools {

Sha256Digest Sha256(std::string_view bytes) {
  Sha256Digest digest;
  unsigned int size = 0;
  if (EVP_Digest(bytes.data(), bytes.size(), digest.data(), &size, EVP_sha256(), nullptr) != 1 ||
      size != digest.size()) {
    throw std::runtime_error("SHA-256 cannot be computed");
  }
  return digest;
}

std::string Hexadecimal(const Sha256Digest& digest) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text;
  for (const std::uint8_t byte : digest) {
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15];
  }
  return text;
}

}  // namespace veral3::tools
