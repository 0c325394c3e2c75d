#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "recognition/AlignerCases.h"

// The input's bytes decide sentences, words, frames and scores; the engine's aligner must agree
// with the plain one of the tests to the last bit. Spent input answers 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::size_t place = 0;
  const veral3::test::Chooser choose = [&](std::uint32_t bound) {
    std::uint32_t value = 0;
    for (std::uint32_t range = 1; range < bound && place < size; range <<= 8) {
      value = value << 8 | data[place++];
      if (range > 0xFFFFFF) break;
    }
    return value % bound;
  };
  const std::string difference =
      veral3::test::CompareWithLiteral(veral3::test::MakeAlignerCase(choose));
  if (!difference.empty()) {
    std::fprintf(stderr, "%s\n", difference.c_str());
    std::abort();
  }
  return 0;
}
