// Memory that runs out at any place is never a wrong answer: an operation refuses, with a message,
// or answers what it always does; nothing leaks, and the object serves afterwards.
#include <gtest/gtest.h>

#include "Trials.h"

namespace veral3::test {
namespace {

TEST(MemoryOfSmallEngine, Loading) { ExpectSoundThroughout(LoadOperations(SmallResources())); }

class MemoryOfSmallEngine : public testing::TestWithParam<LanguageType> {
 protected:
  static void SetUpTestSuite() { Load(SmallResources()); }
};

TEST_P(MemoryOfSmallEngine, Session) {
  ExpectSoundThroughout(SessionOperations(ChainMaterial(GetParam())));
}

// Spread evenly over all loading, and over the operations of each language.
constexpr long kLoadingPlaces = 50;
constexpr long kSessionPlaces = 500;

TEST(MemoryOfShippedResources, Loading) {
  ExpectSoundAtPlaces(LoadOperations(ShippedResources()), kLoadingPlaces);
}

class MemoryOfShippedResources : public testing::TestWithParam<LanguageType> {
 protected:
  static void SetUpTestSuite() { Load(ShippedResources()); }
};

TEST_P(MemoryOfShippedResources, Session) {
  ExpectSoundAtPlaces(SessionOperations(ChainMaterial(GetParam())), kSessionPlaces);
}

const auto kLanguages = testing::Values(kLanguageEnglish, kLanguageChinese, kLanguageJapanese);
INSTANTIATE_TEST_SUITE_P(Languages, MemoryOfSmallEngine, kLanguages);
INSTANTIATE_TEST_SUITE_P(Languages, MemoryOfShippedResources, kLanguages);

}  // namespace
}  // namespace veral3::test
