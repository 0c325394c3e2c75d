#include "training/measure/WordEnds.h"

#include <gmock/gmock.h>

namespace veral3::training {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Words = std::vector<std::vector<std::string>>;

TEST(WordEnds, OfWordsSaidAsTheyStand) {
  EXPECT_THAT(WordEnds("D@k{tsits", Words{{"D@"}, {"k{t"}, {"sits"}}), ElementsAre(1, 4, 8));
}

TEST(WordEnds, TakesThePronunciationThatWasSaid) {
  EXPECT_THAT(WordEnds("Dik{t", Words{{"D@", "Di"}, {"k{t"}}), ElementsAre(1, 4));
}

// A flapped t, another r and an inserted vowel do not move the ends of the others.
TEST(WordEnds, SurvivesChanges) {
  EXPECT_THAT(WordEnds("bEdrhiztOl@d", Words{{"bEt3"}, {"hiz"}, {"tOld"}}), ElementsAre(6, 11));
}

TEST(WordEnds, AWordThatEndsOtherwiseHasNoEnd) {
  EXPECT_THAT(WordEnds("lItkIN", Words{{"lId"}, {"kIN"}}), ElementsAre(5));
}

TEST(WordEnds, NoneWhereSomethingElseWasSaid) {
  EXPECT_THAT(WordEnds("D@k{tsits", Words{{"wVn"}, {"tu"}, {"Tri"}}), IsEmpty());
  EXPECT_THAT(WordEnds("D@", Words{}), IsEmpty());
  EXPECT_THAT(WordEnds("", Words{{"D@"}}), IsEmpty());
}

TEST(PronunciationsOf, AreTheDictionarysOwn) {
  const VeralDictionary dictionary(VERAL3_SOURCE_DIR "/resources/KEN-UTF8Order.txt");
  const Words words = PronunciationsOf(dictionary, "the cat");
  ASSERT_EQ(words.size(), 2u);
  EXPECT_THAT(words[0], testing::Contains("D@"));
  EXPECT_THAT(words[1], ElementsAre("k{t"));
}

}  // namespace
}  // namespace veral3::training
