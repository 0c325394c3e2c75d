#include "training/measure/LearnerErrors.h"

#include <gmock/gmock.h>

#include <set>

namespace veral3::training {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Place = LearnerError::Place;

const CPhonemeSet& English() { return *PhonemeSetOf(kLanguageEnglish); }

TEST(LearnerErrors, AreOfTheLanguagesOwnPhonemes) {
  for (const LanguageType language : {kLanguageEnglish, kLanguageChinese, kLanguageJapanese}) {
    std::set<std::string_view> names;
    for (const LearnerError& error : LearnerErrorsOf(language)) {
      EXPECT_TRUE(names.insert(error.name).second) << error.name;
      EXPECT_TRUE(error.said.empty() || error.said.size() == error.expected.size()) << error.name;
      for (const char symbol : std::string(error.expected) + std::string(error.said)) {
        EXPECT_GE(PhonemeSetOf(language)->GetPhonemeIndex(symbol), 0) << error.name;
        EXPECT_NE(symbol, '-') << error.name;
      }
    }
    EXPECT_GE(names.size(), 20u);
  }
}

TEST(LearnerErrors, AreWrittenWithTheirSymbols) {
  EXPECT_EQ(Written({"th said as f", "T", "f"}), "th said as f (T > f)");
  EXPECT_EQ(Written({"final l dropped", "l", "", Place::kWordEnd}), "final l dropped");
  EXPECT_EQ(Written({"final ones voiceless", "bd", "pt"}), "final ones voiceless");
}

TEST(ErrorsIn, TakesWhatIsSaidForWhatIsExpected) {
  const std::vector<std::string> phonemes = {"fIT", "sf"};
  const std::vector<std::vector<std::size_t>> ends = {{2}, {1}};
  const std::vector<LearnerError> errors = {{"th said as f", "T", "f"},
                                            {"s or z as f", "sz", "fs"}};
  Random random(1);
  auto found = ErrorsIn(English(), phonemes, ends, errors, 10, random);
  std::ranges::sort(found, {},
                    [](const Exchange& e) { return std::tuple(e.group, e.utterance, e.phoneme); });
  EXPECT_THAT(found, ElementsAre(Exchange{0, 0, 'T', false, 0}, Exchange{1, 1, 'T', false, 0},
                                 Exchange{0, 0, 's', false, 1}, Exchange{1, 0, 'z', false, 1},
                                 Exchange{1, 1, 's', false, 1}));
}

TEST(ErrorsIn, FinalOnesAndDroppedOnesOnlyWhereWordsEnd) {
  const std::vector<std::string> phonemes = {"t{tIt"};
  const std::vector<std::vector<std::size_t>> ends = {{2, 4}};
  const std::vector<LearnerError> errors = {{"voiceless", "d", "t", Place::kWordEnd},
                                            {"dropped", "td", "", Place::kWordEnd}};
  Random random(1);
  auto found = ErrorsIn(English(), phonemes, ends, errors, 10, random);
  std::ranges::sort(found, {}, [](const Exchange& e) { return std::tuple(e.group, e.phoneme); });
  EXPECT_THAT(found, ElementsAre(Exchange{0, 2, 'd', false, 0}, Exchange{0, 4, 'd', false, 0},
                                 Exchange{0, 2, 't', true, 1}, Exchange{0, 4, 't', true, 1}));
}

TEST(ErrorsIn, ACodaDoesNotStandBeforeAVowel) {
  const std::vector<std::string> phonemes = {"nInsIn"};
  const std::vector<std::vector<std::size_t>> ends = {{5}};
  const std::vector<LearnerError> errors = {{"ng said as n", "N", "n", Place::kNotBeforeVowel}};
  Random random(1);
  std::vector<std::size_t> places;
  for (const Exchange& e : ErrorsIn(English(), phonemes, ends, errors, 10, random)) {
    places.push_back(e.phoneme);
  }
  EXPECT_THAT(places, testing::UnorderedElementsAre(2, 5));
}

TEST(ErrorsIn, AtMostAsManyAsAsked) {
  const std::vector<std::string> phonemes = {"ffffffff"};
  const std::vector<std::vector<std::size_t>> ends = {{}};
  const std::vector<LearnerError> errors = {{"th said as f", "T", "f"}, {"f dropped", "f", ""}};
  Random random(1);
  EXPECT_THAT(ErrorsIn(English(), phonemes, ends, errors, 3, random), SizeIs(6));
  EXPECT_THAT(ErrorsIn(English(), {}, {}, errors, 3, random), IsEmpty());
}

}  // namespace
}  // namespace veral3::training
