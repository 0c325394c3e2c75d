#include "text/PrepareSentence.h"

#include <gmock/gmock.h>

#include <string>

#include "common/Unicode.h"
#include "core/AnalyzedAudio.h"
#include "recognition/Dictionaries.h"
#include "support/MessageCapture.h"

// With the dictionaries that are shipped.
namespace veral3 {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Prepare : public testing::Test {
 protected:
  static void SetUpTestSuite() { LoadDictionaries(VERAL3_SOURCE_DIR "/resources/"); }

  // "TEXT=original:origin" of each word.
  static std::vector<std::string> Words(LanguageType language, const std::wstring& text) {
    std::vector<std::string> words;
    for (const PreparedWord& word : PrepareSentence(language, Utf8FromWide(text)).words) {
      EXPECT_LE(word.end, text.size());
      EXPECT_LE(word.begin, word.end);
      words.push_back(word.text + "=" +
                      Utf8FromWide(text.substr(word.begin, word.end - word.begin)) + ":" +
                      "dnigu"[static_cast<std::size_t>(word.origin)]);
      EXPECT_EQ(word.pronunciations.empty(), word.origin == WordOrigin::kUnknown);
    }
    return words;
  }

  const test::MessageCapture m_messages;
};

TEST_F(Prepare, ChineseIsCutWhereItStands) {
  EXPECT_THAT(Words(kLanguageChinese, L"\u300C研究生命的起源。」"),
              ElementsAre("研究=研究:d", "生命=生命:d", "的=的:d", "起源=起源:d"));
  EXPECT_EQ(PrepareSentence(kLanguageChinese, "今天的茶太熱。").sentence, "今天 的 茶 太 熱");
}

TEST_F(Prepare, EnglishWordsKeepTheirPlaces) {
  EXPECT_THAT(
      Words(kLanguageEnglish, L"\u201CDon\u2019t\u201D  wait\u2014caf\u00E9s, xyzzyq"),
      ElementsAre("DON'T=Don\u2019t:d", "WAIT=wait:d", "CAFES=caf\u00E9s:d", "xyzzyq=xyzzyq:u"));
  // A mark that stands for itself, and characters that nobody sees.
  EXPECT_THAT(Words(kLanguageEnglish, L"\uFEFFcafe\u0301s w\u00ADait \uFF27\uFF4F"),
              ElementsAre("CAFES=cafe\u0301s:d", "WAIT=w\u00ADait:d", "GO=\uFF27\uFF4F:d"));
}

TEST_F(Prepare, WordsOfANumberShareItsPlace) {
  EXPECT_THAT(Words(kLanguageEnglish, L"about 25 men"),
              ElementsAre("ABOUT=about:d", "TWENTY=25:n", "FIVE=25:n", "MEN=men:d"));
  EXPECT_THAT(Words(kLanguageEnglish, L"99999999999999999999999 men"),
              ElementsAre("99999999999999999999999=99999999999999999999999:u", "MEN=men:d"));
  EXPECT_THAT(Words(kLanguageJapanese, L"\u30103本\u3011"), ElementsAre("三本=3本:n"));
}

TEST_F(Prepare, InlineAndGuessedWords) {
  EXPECT_THAT(Words(kLanguageEnglish, L"say |1 1 ? 2 01 0 2 h@lo|hello now"),
              ElementsAre("SAY=say:d", "hello=|1 1 ? 2 01 0 2 h@lo|hello:i", "NOW=now:d"));
  EXPECT_THAT(Words(kLanguageEnglish, L"|1 rubbish| now"),
              ElementsAre("|1 rubbish|=|1 rubbish|:u", "NOW=now:d"));
  // Halfwidth kana with its voicing mark.
  EXPECT_THAT(Words(kLanguageJapanese, L"\uFF8C\uFF9F\uFF90\uFF6E"),
              ElementsAre("プミョ=\uFF8C\uFF9F\uFF90\uFF6E:g"));
}

TEST_F(Prepare, PronunciationsAreTheEngines) {
  const PreparedSentence prepared = PrepareSentence(kLanguageChinese, "你好");
  ASSERT_EQ(prepared.words.size(), 1U);
  ASSERT_FALSE(prepared.words[0].pronunciations.empty());
  const WordPronunciation& said = prepared.words[0].pronunciations[0];
  EXPECT_EQ(said.phonemes, "nihau");
  EXPECT_THAT(said.syllable_starts, ElementsAre(0, 2));
  EXPECT_THAT(said.syllable_marks, ElementsAre(3, 3));
}

TEST_F(Prepare, WordsWithoutTheUnknownAreThoseOfTheSentence) {
  for (const auto& [language, text] :
       {std::pair(kLanguageEnglish, "It's 3,500.25 xyzzyq miles!"),
        std::pair(kLanguageChinese, "2026年3:30我們ＯＫ搬到新的房子"),
        std::pair(kLanguageJapanese, "コーヒーを一杯とケーキを2つください。")}) {
    const PreparedSentence prepared = PrepareSentence(language, text);
    WordSequence words;
    ASSERT_EQ(DictionaryOf(language)->LookupSentence(WideFromUtf8(prepared.sentence), words), 0);
    int at = 0;
    for (const PreparedWord& word : prepared.words) {
      if (word.origin == WordOrigin::kUnknown) continue;
      ASSERT_LT(at, words.Count());
      EXPECT_EQ(word.text, Utf8FromWide(words[at++].word));
    }
    EXPECT_EQ(at, words.Count());
    EXPECT_EQ(AnalyzedAudio(language).AddPossibleSentence(CString(prepared.sentence)), 1);
  }
}

TEST_F(Prepare, SaysNothingOfMissingWords) {
  test::MessageCapture messages;
  PrepareSentence(kLanguageEnglish, "xyzzyq |1 bad| |7|");
  EXPECT_THAT(messages.All(), IsEmpty());
}

TEST_F(Prepare, AnUnknownLanguageIsReported) {
  test::MessageCapture messages;
  const PreparedSentence prepared = PrepareSentence(static_cast<LanguageType>(4), "word");
  EXPECT_THAT(prepared.sentence, IsEmpty());
  EXPECT_THAT(prepared.words, IsEmpty());
  EXPECT_EQ(messages.All(), "ERROR in PrepareSentence(), unknown Language Type\n");
}

TEST_F(Prepare, BadBytesAndEmptyTexts) {
  EXPECT_THAT(PrepareSentence(kLanguageEnglish, "").words, IsEmpty());
  EXPECT_THAT(PrepareSentence(kLanguageChinese, " \u3000 。").words, IsEmpty());
  const auto words = PrepareSentence(kLanguageEnglish, "\xFF now").words;
  ASSERT_EQ(words.size(), 1U);
  EXPECT_EQ(words[0].begin, 2U);
  EXPECT_EQ(words[0].end, 5U);
}

}  // namespace
}  // namespace veral3
