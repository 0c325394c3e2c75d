#include "recognition/VeralDictionary.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "common/Unicode.h"
#include "recognition/CPhonemeSet.h"
#include "support/MessageCapture.h"
#include "support/Vectors.h"

namespace veral3 {
namespace {

class VeralDictionaryTest : public testing::Test {
 protected:
  static std::unique_ptr<VeralDictionary> Load(const std::string& name) {
    return std::make_unique<VeralDictionary>(test::VectorPath(name).c_str());
  }

  // A dictionary of a file with these bytes.
  std::unique_ptr<VeralDictionary> Make(const std::string& bytes) {
    test::WriteFile(Path(), bytes);
    return std::make_unique<VeralDictionary>(Path().c_str());
  }
  std::string Path() const { return (m_folder.Path() / "dictionary.txt").string(); }

  static std::string Words(const WordSequence& words) {
    std::string text;
    for (int i = 0; i < words.Count(); ++i) {
      if (i > 0) text += ' ';
      text += Utf8FromWide(words[i].word);
    }
    return text;
  }

  test::MessageCapture m_messages;
  std::unique_ptr<VeralDictionary> m_english = Load("dictionary/en.txt");

 private:
  test::ScratchFolder m_folder;
};

TEST_F(VeralDictionaryTest, EmptyObjectHasNoWordsAndReportsItsUnknownSet) {
  m_messages.Clear();
  const VeralDictionary empty;
  EXPECT_EQ(empty.GetWordCount(), 0);
  EXPECT_EQ(empty.GetPhonemeSet(), 0);
  EXPECT_EQ(empty.EntryAt(0), nullptr);
  EXPECT_EQ(empty.LookupWord(L"a"), nullptr);
  EXPECT_EQ(m_messages.Of(MessageStream::kWideError),
            "*** Error: Word <A> not found in VeralDictionary::LookupWord()\n");

  m_messages.Clear();
  WordSequence words;
  EXPECT_EQ(empty.LookupSentence(L"a 5", words), 0);
  EXPECT_EQ(words.Count(), 0);
  const std::string unknown =
      "Error, unknown phoneme set in VeralDictionary::GetNextIndexOfVaildChar()\n";
  EXPECT_EQ(m_messages.All(),
            unknown + "*** Error: Word <A> not found in VeralDictionary::LookupWord()\n" + unknown +
                "ERROR: Unknown language in VeralDictionary::LookupDigits()\n" + unknown);
}

TEST_F(VeralDictionaryTest, NullPathIsAFileThatDoesNotOpen) {
  m_messages.Clear();
  const VeralDictionary dictionary(nullptr);
  EXPECT_EQ(dictionary.GetWordCount(), 0);
  EXPECT_EQ(m_messages.Of(MessageStream::kError),
            "Error: Fail to open Veral Dictionary <>\n"
            "Error: Wrong Veral Dictionary version\n"
            "Error: Unknown Veral Dictionary phoneme set in VeralDictionary::VeralDictionary()\n");
}

TEST_F(VeralDictionaryTest, AFolderIsNoFile) {
  m_messages.Clear();
  const VeralDictionary dictionary("/");
  EXPECT_EQ(dictionary.GetWordCount(), 0);
  EXPECT_TRUE(m_messages.All().starts_with("Error: Fail to open Veral Dictionary </>\n"));
}

// A third of 4 GiB and more counts as not opening; nothing of it is read.
TEST_F(VeralDictionaryTest, AFileBeyondAThirdOfFourGigabytesIsNone) {
  test::WriteFile(Path(), "VERAL 3 EN_KEP5 1\nA 1 ? 1 0 0 @\n");
  std::filesystem::resize_file(Path(), 0xFFFFFFFFu / 3 + 1);
  m_messages.Clear();
  EXPECT_EQ(VeralDictionary(Path().c_str()).GetWordCount(), 0);
  EXPECT_TRUE(m_messages.All().starts_with("Error: Fail to open Veral Dictionary <"));
}

TEST_F(VeralDictionaryTest, TheDocumentedFile) {
  const std::string document =
      test::ReadFile(std::filesystem::path(VERAL3_SOURCE_DIR) / "docs/formats/dictionary.md");
  const std::size_t begin = document.find("```\n") + 4;
  const auto dictionary = Make(document.substr(begin, document.find("```", begin) - begin));
  ASSERT_EQ(dictionary->GetWordCount(), 2);
  const auto a = dictionary->EntryAt(0);
  EXPECT_EQ(a->Entry().word, L"A");
  ASSERT_EQ(a->Entry().pronunciations.size(), 2u);
  EXPECT_EQ(a->Entry().pronunciations[0].phonemes, "@");
  EXPECT_EQ(a->Entry().pronunciations[1].phonemes, "EI");
  const auto writer = dictionary->EntryAt(1);
  EXPECT_EQ(writer->Entry().word, L"WRITER");
  ASSERT_EQ(writer->Entry().pronunciations.size(), 1u);
  const Pronunciation& only = writer->Entry().pronunciations[0];
  EXPECT_EQ(only.phonemes, "rAIt3");
  EXPECT_EQ(std::vector(only.syllable_starts.begin(), only.syllable_starts.end()),
            (std::vector<std::int32_t>{0, 3}));
}

TEST_F(VeralDictionaryTest, EntriesComeInFileOrder) {
  EXPECT_EQ(m_english->EntryAt(0)->Entry().word, L"A");
  EXPECT_EQ(m_english->EntryAt(59)->Entry().word, L"ZERO");
  EXPECT_EQ(m_english->EntryAt(60), nullptr);
  EXPECT_EQ(m_english->EntryAt(-1), nullptr);
}

TEST_F(VeralDictionaryTest, EveryWordIsFoundInEitherCase) {
  m_messages.Clear();
  for (int i = 0; i < m_english->GetWordCount(); ++i) {
    const std::wstring word(m_english->EntryAt(i)->Entry().word);
    std::wstring lower = word;
    for (wchar_t& c : lower) {
      if (c >= L'A' && c <= L'Z') c = static_cast<wchar_t>(c + L'a' - L'A');
    }
    ASSERT_NE(m_english->LookupWord(word), nullptr) << Utf8FromWide(word);
    EXPECT_EQ(m_english->LookupWord(lower)->Entry().word, word);
  }
  EXPECT_EQ(m_messages.All(), "");
}

TEST_F(VeralDictionaryTest, AMissReportsTheUpperCaseWordOnTheWideStream) {
  m_messages.Clear();
  EXPECT_EQ(m_english->LookupWord(L"caf\u00E9"), nullptr);
  EXPECT_EQ(m_english->LookupWord(L""), nullptr);
  EXPECT_EQ(m_english->LookupWord(L"APPL"), nullptr);
  EXPECT_EQ(m_english->LookupWord(L"APPLESX"), nullptr);
  EXPECT_EQ(m_messages.Of(MessageStream::kWideError),
            "*** Error: Word <CAF\xC3\x89> not found in VeralDictionary::LookupWord()\n"
            "*** Error: Word <> not found in VeralDictionary::LookupWord()\n"
            "*** Error: Word <APPL> not found in VeralDictionary::LookupWord()\n"
            "*** Error: Word <APPLESX> not found in VeralDictionary::LookupWord()\n");
}

TEST_F(VeralDictionaryTest, LookupIsABinarySearchThatTrustsTheOrder) {
  const auto dictionary = Make("D 3 EN_KEP5 3\nC 1 ? 1 1 0 a\nB 1 ? 1 1 0 a\nA 1 ? 1 1 0 a\n");
  EXPECT_EQ(dictionary->LookupWord(L"A"), nullptr);
  EXPECT_EQ(dictionary->LookupWord(L"C"), nullptr);
  EXPECT_NE(dictionary->LookupWord(L"B"), nullptr);
}

TEST_F(VeralDictionaryTest, WordsBeyondTheBasicPlaneAreInCodePointOrder) {
  // U+FF5E, U+10000, U+20000: the order of UTF-16 would differ.
  const auto dictionary = Make(
      "D 3 TW_KCP 3\n\xEF\xBD\x9E 1 ? 1 1 0 a\n\xF0\x90\x80\x80 1 ? 1 1 0 a\n"
      "\xF0\xA0\x80\x80 1 ? 1 1 0 a\n");
  for (const wchar_t* word : {L"\uFF5E", L"\U00010000", L"\U00020000"}) {
    EXPECT_NE(dictionary->LookupWord(word), nullptr);
  }
}

TEST_F(VeralDictionaryTest, AnEntryWithoutUsablePronunciationIsAMissingWord) {
  const auto dictionary =
      Make("D 3 EN_KEP5 3\nA 2 ? 0 x\n? 1 12 0 x\nB 2 ? 0 x\n? 1 1 0 bi\nC 0 ? 1 1 0 si\n");
  EXPECT_EQ(dictionary->GetWordCount(), 3);
  EXPECT_EQ(dictionary->EntryAt(0)->Entry().pronunciations.size(), 2U);
  EXPECT_EQ(dictionary->EntryAt(2)->Entry().pronunciations.size(), 0U);
  m_messages.Clear();
  WordSequence words;
  EXPECT_EQ(dictionary->LookupSentence(L"a b c", words), 0);
  EXPECT_EQ(Words(words), "B");
  EXPECT_FALSE(words[0].pronunciations[0].IsUsable());
  EXPECT_EQ(words[0].pronunciations[1].phonemes, "bi");
  EXPECT_EQ(m_messages.Of(MessageStream::kWideError),
            "*** Error: Word <A> not found in VeralDictionary::LookupWord()\n"
            "*** Error: Word <C> not found in VeralDictionary::LookupWord()\n");
}

TEST_F(VeralDictionaryTest, HeaderVersionSixIsReportedAndLoads) {
  m_messages.Clear();
  const auto dictionary = Make("D 6 EN_KEP5 1\nA 1 ? 1 1 0 e\n");
  EXPECT_NE(dictionary->LookupWord(L"a"), nullptr);
  EXPECT_EQ(m_messages.Of(MessageStream::kError),
            "Error: Wrong Veral Dictionary version\n"
            "VeralDictionary: 1\twords loaded from <" +
                Path() + ">\n");
}

TEST_F(VeralDictionaryTest, ApostrophesInSentences) {
  WordSequence words;
  EXPECT_EQ(m_english->LookupSentence(L"Don't students' read''", words), 0);
  EXPECT_EQ(Words(words), "DON'T STUDENTS READ");
}

TEST_F(VeralDictionaryTest, SentencesOfSeveralNumbers) {
  WordSequence words;
  EXPECT_EQ(m_english->LookupSentence(L"3,500.25 1.2.3 1234567890123456 5th", words), 0);
  EXPECT_EQ(Words(words),
            "THREE THOUSAND AND FIVE HUNDRED POINT TWO FIVE ONE DOT TWO DOT THREE FIVE TH");
}

TEST_F(VeralDictionaryTest, NumberWordsThatAreMissingArePassedOver) {
  const auto dictionary = Make("D 3 EN_KEP5 1\nFIVE 1 ? 1 1 0 fYv\n");
  m_messages.Clear();
  WordSequence words;
  EXPECT_EQ(dictionary->LookupSentence(L"105", words), 0);
  EXPECT_EQ(Words(words), "FIVE");
  EXPECT_EQ(m_messages.All(),
            "*** Error: Word <ONE> not found in VeralDictionary::LookupWord()\n"
            "*** Error: Word <HUNDRED> not found in VeralDictionary::LookupWord()\n"
            "*** Error: Word <AND> not found in VeralDictionary::LookupWord()\n");
  EXPECT_EQ(dictionary->LookupSentence(L"|3 105 |", words), 0);
  EXPECT_EQ(Words(words), "FIVE FIVE");
}

TEST_F(VeralDictionaryTest, ResultCodesAndTheWordsBeforeThem) {
  const std::vector<std::pair<std::wstring, int>> cases = {
      {L"| cat", -1}, {L" | cat", 0},       {L"|\tcat", 0},         {L"|1 0 ? 1 1 0 a|x", -100},
      {L"|1", -100},  {L"|2 cat|", -200},   {L"|x", -200},          {L"|3x|", -300},
      {L"|3", -300},  {L"|3\tcat |", -300}, {L"|3 nobody |", -300}, {L"|3 cat |", 0},
  };
  for (const auto& [sentence, result] : cases) {
    WordSequence words;
    EXPECT_EQ(m_english->LookupSentence(sentence, words), result) << Utf8FromWide(sentence);
  }
  WordSequence words;
  EXPECT_EQ(m_english->LookupSentence(L"the cat |3 dog nobody ten |", words), -300);
  EXPECT_EQ(Words(words), "THE CAT DOG");
}

TEST_F(VeralDictionaryTest, InlinePronunciation) {
  m_messages.Clear();
  const auto entry = m_english->AllocateSpecifiedWord(L"|1 K ? 2 10 0 2 rYtR|Writer|s");
  ASSERT_NE(entry, nullptr);
  EXPECT_EQ(entry->Entry().word, L"Writer|s");
  ASSERT_EQ(entry->Entry().pronunciations.size(), 1U);
  EXPECT_EQ(entry->Entry().pronunciations[0].phonemes, "rAIt3");
  EXPECT_EQ(entry->Entry().pronunciations[0].NumSyllables(), 2);
  EXPECT_EQ(m_messages.All(), "");
}

TEST_F(VeralDictionaryTest, InlinePronunciationThatDoesNotBeginAsItShould) {
  for (const wchar_t* token :
       {L"", L"|", L"|1 1 ?", L"|1 0 ? 1 1 0 a|x", L"|1 12 ? 1 1 0 a|x", L"|1 1 x 1 1 0 a|x",
        L"|1\t1 ? 1 1 0 a|x", L"|1 1 ?\t1 1 0 a|x", L"x1 1 ? 1 1 0 a|x", L"|2 1 ? 1 1 0 a|x"}) {
    m_messages.Clear();
    EXPECT_EQ(m_english->AllocateSpecifiedWord(token), nullptr);
    EXPECT_EQ(m_messages.Of(MessageStream::kOutput),
              "Error in VeralDictionary::AllocateSpecifiedWord(), illegal specified "
              "pronunciation!\n");
    EXPECT_EQ(m_messages.StandardError(), "");
  }
}

TEST_F(VeralDictionaryTest, InlinePronunciationThatIsMalformedIsSilent) {
  m_messages.Clear();
  for (const wchar_t* token :
       {L"|1 1 ? ", L"|1 1 ? 1 1 0 a", L"|1 1 ? 0 a|x", L"|1 1 ? 1 11 0 a|x"}) {
    EXPECT_EQ(m_english->AllocateSpecifiedWord(token), nullptr);
  }
  EXPECT_EQ(m_messages.All(), "");
  EXPECT_EQ(m_english->AllocateSpecifiedWord(L"|1 1 ? 1 1 0|x"), nullptr);
  EXPECT_EQ(m_messages.Of(MessageStream::kError),
            "Error, empty pronunciation in VeralDictionary::ReadAPronunEntry()\n");
}

TEST_F(VeralDictionaryTest, APronunciationIsReadIntoItsSlot) {
  m_messages.Clear();
  std::vector<OwnedWordEntry::Variant> entry(2);
  const std::string_view line = "HEIGHT 1 ? 2 10 0 2 hYtR";
  EXPECT_EQ(m_english->ReadAPronunEntry(line, 8, entry, 1), 0);
  EXPECT_EQ(entry[1].phonemes, "hAIt3");  // Y is two phonemes
  EXPECT_EQ(entry[1].syllable_marks, (std::vector<std::int32_t>{1, 0}));
  EXPECT_EQ(entry[1].syllable_starts, (std::vector<std::int32_t>{0, 3}));
  EXPECT_EQ(entry[0].phonemes, "");
  EXPECT_EQ(m_english->ReadAPronunEntry(line, 0, entry, 1), -1);  // from the word on it is none
  EXPECT_EQ(entry[1].phonemes, "");
  for (const int slot : {-1, 2}) EXPECT_EQ(m_english->ReadAPronunEntry(line, 8, entry, slot), -1);
  EXPECT_EQ(m_english->ReadAPronunEntry(line, 1000, entry, 0), -1);
  EXPECT_EQ(m_messages.All(), "");
  EXPECT_EQ(m_english->ReadAPronunEntry("? 1 1 0", 0, entry, 0), -1);
  EXPECT_EQ(m_messages.All(),
            "Error, empty pronunciation in VeralDictionary::ReadAPronunEntry()\n");
}

TEST_F(VeralDictionaryTest, InlinePronunciationIsCutAt255Characters) {
  // "? 1 1 0 " takes 8 of them.
  const std::wstring token = L"|1 1 ? 1 1 0 " + std::wstring(300, L'a') + L"|word";
  const auto entry = m_english->AllocateSpecifiedWord(token);
  ASSERT_NE(entry, nullptr);
  EXPECT_EQ(entry->Entry().word, L"word");
  EXPECT_EQ(entry->Entry().pronunciations[0].phonemes, std::string(247, 'a'));
}

TEST_F(VeralDictionaryTest, InlineDigitsSkipRunsThatTouchABar) {
  WordSequence words;
  EXPECT_EQ(m_english->LookupDigits(L"|3 12 34|", words), 0);
  EXPECT_EQ(Words(words), "TWELVE");
  EXPECT_EQ(m_english->LookupDigits(L"|3 12 34 |", words), 0);
  EXPECT_EQ(Words(words), "TWELVE TWELVE THIRTY FOUR");
  EXPECT_EQ(m_english->LookupDigits(L"|3 x|y cat |z", words), 0);
  EXPECT_EQ(Words(words), "TWELVE TWELVE THIRTY FOUR CAT");
  EXPECT_EQ(m_english->LookupDigits(L"|3 ", words), 0);
  EXPECT_EQ(m_english->LookupDigits(L"|3x 5 |", words), -1);
  EXPECT_EQ(m_english->LookupDigits(L"5", words), -1);
  EXPECT_EQ(words.Count(), 5);
}

TEST_F(VeralDictionaryTest, InlineDigitsTakeWordsAsSentencesDo) {
  WordSequence words;
  EXPECT_EQ(m_english->LookupDigits(L"|3 (cat), 5th dog's' |", words), -1);
  EXPECT_EQ(Words(words), "CAT FIVE TH");
}

TEST_F(VeralDictionaryTest, ChineseAndJapaneseDropNumbers) {
  for (const char* name : {"dictionary/zh.txt", "dictionary/ja.txt"}) {
    const auto dictionary = Load(name);
    m_messages.Clear();
    WordSequence words;
    EXPECT_EQ(dictionary->LookupSentence(L"105 3.5, |3 7 |", words), 0);
    EXPECT_EQ(words.Count(), 0);
    EXPECT_EQ(m_messages.All(), "");
  }
}

TEST_F(VeralDictionaryTest, GetNextIndexTakesAnyStart) {
  EXPECT_EQ(m_english->GetNextIndexOfVaildChar(L"  a", -7), 2);
  EXPECT_EQ(m_english->GetNextIndexOfVaildChar(L"  a", 3), 3);
  EXPECT_EQ(m_english->GetNextIndexOfVaildChar(L"  a", 2000000000), 3);
}

TEST_F(VeralDictionaryTest, A256thWordFitsAndThe257thDoesNot) {
  m_messages.Clear();
  std::wstring sentence;
  for (int i = 0; i < 256; ++i) sentence += L"cat ";
  WordSequence words;
  EXPECT_EQ(m_english->LookupSentence(sentence, words), 0);
  EXPECT_EQ(words.Count(), 256);
  EXPECT_EQ(m_messages.All(), "");

  for (const wchar_t* last : {L"dog", L"5", L"|1 1 ? 1 1 0 hYt|x", L"|3 dog |", L"|3 5 |"}) {
    m_messages.Clear();
    WordSequence full;
    EXPECT_EQ(m_english->LookupSentence(sentence + last, full), -400);
    EXPECT_EQ(full.Count(), 256);
    EXPECT_EQ(m_messages.Of(MessageStream::kError),
              "ERROR in VeralDictionary::LookupSentence(), more than 256 words in a sentence\n");
  }
  // A missing word takes no place.
  WordSequence passed_over;
  EXPECT_EQ(m_english->LookupSentence(sentence + L"nobody", passed_over), 0);
}

TEST_F(VeralDictionaryTest, AbsurdSentences) {
  const std::wstring odd = {static_cast<wchar_t>(0xD800), static_cast<wchar_t>(-1), L'\0', L'|'};
  const std::vector<std::wstring> sentences = {std::wstring(100000, L'|'),
                                               std::wstring(100000, L'\''),
                                               std::wstring(100000, L'9'),
                                               std::wstring(100000, L'.'),
                                               L"5" + std::wstring(100000, L'.'),
                                               L"x|1 1 ? 1 1 0 " + std::wstring(100000, L'a'),
                                               std::wstring(100000, L'x'),
                                               odd,
                                               L"|1 1 ? 999999999 1 0 a|x",
                                               L"|1 1 ? 1 1 999999999999 a|x",
                                               L"|1 1 ? -1 1 0 a|x"};
  for (const std::wstring& sentence : sentences) {
    WordSequence words;
    EXPECT_LE(m_english->LookupSentence(sentence, words), 0);
    EXPECT_LE(words.Count(), WordSequence::kMaxWords);
  }
}

TEST_F(VeralDictionaryTest, ASequenceOutlivesItsDictionary) {
  WordSequence words;
  EXPECT_EQ(m_english->LookupSentence(L"hello |1 1 ? 1 1 0 hYt|height", words), 0);
  const WordSequence copy = words;
  m_english.reset();
  words = WordSequence();
  EXPECT_EQ(Words(copy), "HELLO height");
  EXPECT_EQ(copy[0].pronunciations[1].phonemes, "hEl@U");
}

TEST_F(VeralDictionaryTest, ThreadsLookUpAtTheSameTime) {
  m_messages.Clear();
  std::vector<std::thread> threads;
  std::vector<std::string> results(4);
  for (std::string& result : results) {
    threads.emplace_back([this, &result] {
      for (int i = 0; i < 200; ++i) {
        WordSequence words;
        m_english->LookupSentence(L"hello nobody 105 |1 1 ? 1 1 0 hYt|height", words);
        result = Words(words);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const std::string& result : results) {
    EXPECT_EQ(result, "HELLO ONE HUNDRED AND FIVE height");
  }
  EXPECT_EQ(m_messages.Entries().size(), 800U);
}

}  // namespace
}  // namespace veral3
