#include <gtest/gtest.h>

#include <limits>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "recognition/CPhonemeSetKCP.h"
#include "recognition/CPhonemeSetKEP5.h"
#include "recognition/CPhonemeSetKJP.h"
#include "support/MessageCapture.h"

namespace veral3 {
namespace {

struct Expected {
  LanguageType language;
  int identifier;
  int size;
  std::string vowels;
  std::string consonants;
  std::string full_set;
  // Phoneme and what it sounds like, in the order of the full set.
  std::vector<std::pair<char, char>> sounds_like;
};

const std::vector<Expected>& Tables() {
  static const std::vector<Expected> tables = {
      {kLanguageEnglish,
       11,
       37,
       "iIE{AOuUV@3",
       "pbtdkgmnNlfvTDszSZrchCJjw",
       "iIE{AOuUV@3pbtdkgmnNlfvTDszSZrchCJjw-",
       {{'i', 's'}, {'I', 'E'}, {'E', 'E'}, {'{', 'A'}, {'A', 'A'}, {'O', 'O'}, {'u', 'u'},
        {'U', 'w'}, {'V', 'O'}, {'@', 'u'}, {'3', 'u'}, {'p', 'b'}, {'b', 'b'}, {'t', 't'},
        {'d', 'l'}, {'k', 'd'}, {'g', 'd'}, {'m', 'b'}, {'n', 'd'}, {'N', 'd'}, {'l', 'l'},
        {'f', 'f'}, {'v', 'f'}, {'T', 'l'}, {'D', 'd'}, {'s', 's'}, {'z', 's'}, {'S', 's'},
        {'Z', 's'}, {'r', 'u'}, {'c', 'u'}, {'h', 'h'}, {'C', 't'}, {'J', 'd'}, {'j', 's'},
        {'w', 'w'}, {'-', '-'}}},
      {kLanguageChinese,
       7,
       33,
       "ao@EMRiuU()",
       "bpmfdtnlgkhjqxZCSrzcs",
       "ao@EMRiuU()bpmfdtnlgkhjqxZCSrzcs-",
       {{'a', 'a'}, {'o', 'o'}, {'@', '@'}, {'E', 'E'}, {'M', 'a'}, {'R', '@'}, {'i', 'i'},
        {'u', 'u'}, {'U', 'u'}, {'(', '-'}, {')', '-'}, {'b', 'b'}, {'p', 'b'}, {'m', 'b'},
        {'f', 'f'}, {'d', 'd'}, {'t', 'd'}, {'n', 'd'}, {'l', 'l'}, {'g', 'd'}, {'k', 'd'},
        {'h', 'd'}, {'j', 'd'}, {'q', 'd'}, {'x', 'd'}, {'Z', 'Z'}, {'C', 'Z'}, {'S', 'Z'},
        {'r', 'Z'}, {'z', 'i'}, {'c', 'i'}, {'s', 'i'}, {'-', '-'}}},
      {kLanguageJapanese,
       10,
       26,
       "aeiou",
       "pdtXYgkfhcsCrjZzmnw",
       "aeioubpdtXYgkfhcsCrjZzmnw-",
       {{'a', 'a'}, {'e', 'e'}, {'i', 'i'}, {'o', 'o'}, {'u', 'u'}, {'b', 'b'}, {'p', 'b'},
        {'d', 'd'}, {'t', 't'}, {'X', 't'}, {'Y', 't'}, {'g', 'd'}, {'k', 'd'}, {'f', 'h'},
        {'h', 'h'}, {'c', 'h'}, {'s', 's'}, {'C', 's'}, {'r', 'u'}, {'j', 's'}, {'Z', 's'},
        {'z', 's'}, {'m', 'b'}, {'n', 'd'}, {'w', 'u'}, {'-', '-'}}},
  };
  return tables;
}

class PhonemeSet : public testing::TestWithParam<Expected> {
 protected:
  const Expected& Table() const { return GetParam(); }
  const CPhonemeSet& Set() const { return *PhonemeSetOf(Table().language); }
};

TEST_P(PhonemeSet, HasItsTable) {
  EXPECT_EQ(Set().GetIdentifier(), Table().identifier);
  EXPECT_EQ(Set().GetSize(), Table().size);
  EXPECT_EQ(std::string(Set().GetFullSet()), Table().full_set);
  EXPECT_EQ(Table().full_set.size(), static_cast<std::size_t>(Table().size));
  std::string sounds_like;
  std::string full_set;
  for (const auto& [phoneme, other] : Table().sounds_like) {
    full_set += phoneme;
    sounds_like += other;
  }
  EXPECT_EQ(full_set, Table().full_set);
  EXPECT_EQ(std::string(Set().GetSoundsLikeMap()), sounds_like);
}

TEST_P(PhonemeSet, NoPhonemeStandsTwiceAndEverySoundAlikeIsOne) {
  EXPECT_EQ(std::set<char>(Table().full_set.begin(), Table().full_set.end()).size(),
            Table().full_set.size());
  for (const char c : std::string(Set().GetSoundsLikeMap())) {
    EXPECT_GE(Set().GetPhonemeIndex(c), 0) << c;
  }
}

TEST_P(PhonemeSet, TellsVowelsFromConsonants) {
  for (int code = 0; code < 0x3000; ++code) {
    const auto c = static_cast<wchar_t>(code);
    const bool ascii = code < 0x80;
    const auto in = [&](const std::string& symbols) {
      return ascii && symbols.find(static_cast<char>(code)) != std::string::npos;
    };
    EXPECT_EQ(Set().IsVowel(c), in(Table().vowels)) << code;
    EXPECT_EQ(Set().IsConsonant(c), in(Table().consonants)) << code;
  }
  EXPECT_FALSE(Set().IsVowel(L'-'));
  EXPECT_FALSE(Set().IsConsonant(L'-'));
}

TEST_P(PhonemeSet, NumbersPhonemesAndTheirStates) {
  for (int code = -128; code < 128; ++code) {
    const auto c = static_cast<char>(code);
    const auto place = Table().full_set.find(c);
    const int index = place == std::string::npos ? -1 : static_cast<int>(place);
    EXPECT_EQ(Set().GetPhonemeIndex(c), index) << code;
    for (int state = 0; state < 3; ++state) {
      EXPECT_EQ(Set().GetStateIndex(c, state), index < 0 ? -1 : index * 3 + state) << code;
    }
  }
}

TEST_P(PhonemeSet, LetsStateThreeAndNegativeStatesThrough) {
  const test::MessageCapture messages;
  const char second = Table().full_set[1];
  EXPECT_EQ(Set().GetStateIndex(second, 3), 6);
  EXPECT_EQ(Set().GetStateIndex(second, -1), 2);
  EXPECT_EQ(Set().GetStateIndex(Table().full_set[0], -5), -5);
  EXPECT_EQ(Set().GetStateIndex('\0', -5), -1);
  EXPECT_EQ(messages.All(), "");
}

TEST_P(PhonemeSet, ReportsAStateAboveThreeAndReadsItAsThree) {
  const test::MessageCapture messages;
  EXPECT_EQ(Set().GetStateIndex(Table().full_set[2], 4), 9);
  EXPECT_EQ(Set().GetStateIndex('!', std::numeric_limits<int>::max()), -1);
  EXPECT_EQ(messages.Of(MessageStream::kError),
            std::string("Error: incorrect state in CPhonemeSet, cPhon =[") + Table().full_set[2] +
                "], nState=[4]\n" +
                "Error: incorrect state in CPhonemeSet, cPhon =[!], nState=[2147483647]\n");
  EXPECT_EQ(messages.StandardOutput(), "");
}

INSTANTIATE_TEST_SUITE_P(Languages, PhonemeSet, testing::ValuesIn(Tables()),
                         [](const auto& param_info) {
                           return "Set" + std::to_string(param_info.param.identifier);
                         });

TEST(PhonemeSets, PauseOfEnglishIsState108) {
  EXPECT_EQ(CPhonemeSetKEP5().GetStateIndex('-', 0), 108);
}

TEST(PhonemeSets, StateFiveOfChineseAIsReadAsThree) {
  const test::MessageCapture messages;
  EXPECT_EQ(CPhonemeSetKCP().GetStateIndex('a', 5), 3);
  EXPECT_EQ(messages.StandardError(),
            "Error: incorrect state in CPhonemeSet, cPhon =[a], nState=[5]\n");
}

TEST(PhonemeSets, JapaneseBIsAPhonemeButNoConsonant) {
  const CPhonemeSetKJP set;
  EXPECT_EQ(set.GetPhonemeIndex('b'), 5);
  EXPECT_FALSE(set.IsConsonant(L'b'));
  EXPECT_FALSE(set.IsVowel(L'b'));
}

TEST(PhonemeSets, OtherLanguagesHaveNone) {
  EXPECT_EQ(PhonemeSetOf(static_cast<LanguageType>(0)), nullptr);
  EXPECT_EQ(PhonemeSetOf(static_cast<LanguageType>(4)), nullptr);
  EXPECT_EQ(PhonemeSetOf(static_cast<LanguageType>(-1)), nullptr);
  EXPECT_EQ(PhonemeSetOf(kLanguageEnglish), PhonemeSetOf(kLanguageEnglish));
}

}  // namespace
}  // namespace veral3
