#include "recognition/TokenPassing.h"

#include <gtest/gtest.h>

#include "recognition/AlignerCases.h"
#include "recognition/VTokenList.h"
#include "recognition/ViterbiAligner.h"
#include "support/MessageCapture.h"

namespace veral3 {
namespace {

using test::Sentence;
using test::Word;

TEST(TokenPassing, AgreesWithTheLiteralAligner) {
  int rounds = 0;
  for (std::uint64_t seed = 0; seed < 3000; ++seed) {
    const test::AlignerCase made = test::MakeAlignerCase(test::RandomChooser(seed));
    rounds += static_cast<int>(made.rounds.size());
    const std::string difference = test::CompareWithLiteral(made);
    ASSERT_EQ(difference, "") << "seed " << seed;
  }
  EXPECT_GE(rounds, 3000);
}

}  // namespace
}  // namespace veral3
