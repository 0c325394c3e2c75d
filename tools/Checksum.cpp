#include "tools/Checksum.h"

#include <openssl/evp.h>

#include <istream>
#include <memory>
#include <stdexcept>
#include <vector>

namespace veral3::tools {
namespace {

constexpr std::size_t kBlock = 65536;

struct FreeContext {
  void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
};

void Require(bool done) {
  if (!done) throw std::runtime_error("SHA-256 cannot be computed");
}

}  // namespace

Sha256Digest Sha256(std::string_view bytes) {
  Sha256Digest digest;
  unsigned int size = 0;
  Require(EVP_Digest(bytes.data(), bytes.size(), digest.data(), &size, EVP_sha256(), nullptr) == 1);
  Require(size == digest.size());
  return digest;
}

Sha256Digest Sha256(std::istream& file) {
  const std::unique_ptr<EVP_MD_CTX, FreeContext> context(EVP_MD_CTX_new());
  Require(context && EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr) == 1);
  std::vector<char> block(kBlock);
  while (file) {
    file.read(block.data(), static_cast<std::streamsize>(block.size()));
    const auto got = static_cast<std::size_t>(file.gcount());
    Require(EVP_DigestUpdate(context.get(), block.data(), got) == 1);
  }
  Sha256Digest digest;
  unsigned int size = 0;
  Require(EVP_DigestFinal_ex(context.get(), digest.data(), &size) == 1);
  Require(size == digest.size());
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
