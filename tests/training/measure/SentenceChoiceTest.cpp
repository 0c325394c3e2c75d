#include "training/measure/SentenceChoice.h"

#include <gmock/gmock.h>

#include <set>

namespace veral3::training {
namespace {

class NumberedTexts final : public HeldOutTexts {
 public:
  std::string Draw(Random& random) const override {
    return "other " + std::to_string(random.Below(9));
  }
  std::string WithOneWordChanged(const std::string& sentence, Random& random) const override {
    return sentence + " " + std::to_string(random.Below(9));
  }
};

TEST(EightCandidates, AreDifferentAndHaveTheRightOneWhereTheySay) {
  std::set<int> places;
  for (std::uint64_t seed = 0; seed < 100; ++seed) {
    Random random(seed);
    const auto [sentences, right] = EightCandidates(NumberedTexts(), "read", true, random);
    ASSERT_EQ(sentences.size(), 8u);
    EXPECT_EQ(std::set(sentences.begin(), sentences.end()).size(), 8u);
    for (int i = 0; i < 8; ++i) {
      const std::string& text = sentences[static_cast<std::size_t>(i)];
      EXPECT_EQ(text == "read", i == right);
      EXPECT_TRUE(text.starts_with("read"));
    }
    places.insert(right);
  }
  EXPECT_EQ(places.size(), 8u);
}

TEST(EightCandidates, AreUnrelatedWhereNoWordIsChanged) {
  Random random(1);
  const auto [sentences, right] = EightCandidates(NumberedTexts(), "read", false, random);
  EXPECT_EQ(std::ranges::count_if(sentences, [](const auto& t) { return t.starts_with("other"); }),
            7);
  EXPECT_EQ(sentences[static_cast<std::size_t>(right)], "read");
}

TEST(ChooseSentence, ASentenceThatTheDictionaryRefusesIsNoTrial) {
  const VeralDictionary dictionary(VERAL3_SOURCE_DIR "/resources/KEN-UTF8Order.txt");
  EXPECT_EQ(ChooseSentence(*PhonemeSetOf(kLanguageEnglish), dictionary, {{"| "}, 0}, {}),
            kRefusedSentence);
}

}  // namespace
}  // namespace veral3::training
