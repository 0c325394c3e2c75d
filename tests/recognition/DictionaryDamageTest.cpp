#include <gtest/gtest.h>

#include <random>
#include <string>

#include "recognition/VeralDictionary.h"
#include "support/MessageCapture.h"
#include "support/Vectors.h"

// Whatever a file holds, loading ends, every entry can be asked for, every pronunciation that is
// usable keeps its promises, and lookups answer.
namespace veral3 {
namespace {

class DictionaryDamage : public testing::Test {
 protected:
  // Loads the bytes, checks every entry, and returns the number of words.
  int Check(const std::string& bytes) {
    m_messages.Clear();
    const VeralDictionary dictionary(IndexDictionary(bytes, "damaged.txt"));
    EXPECT_LE(static_cast<std::size_t>(dictionary.GetWordCount()), bytes.size());
    for (int i = 0; i < dictionary.GetWordCount(); ++i) {
      const auto entry = dictionary.EntryAt(i);
      EXPECT_NE(entry, nullptr);
      if (entry != nullptr) CheckEntry(entry->Entry());
    }
    WordSequence words;
    EXPECT_LE(dictionary.LookupSentence(L"the cat 105 |1 1 ? 1 1 0 hYt|x |3 5 |", words), 0);
    for (int i = 0; i < words.Count(); ++i) CheckEntry(words[i]);
    return dictionary.GetWordCount();
  }

  static void CheckEntry(const WordEntry& entry) {
    EXPECT_LE(entry.word.size(), 255U);
    for (const Pronunciation& one : entry.pronunciations) {
      EXPECT_EQ(one.syllable_marks.size(), one.syllable_starts.size());
      EXPECT_EQ(one.IsUsable(), one.NumSyllables() > 0);
      std::int32_t least = 0;
      for (const std::int32_t start : one.syllable_starts) {
        EXPECT_GE(start, least);
        EXPECT_LE(static_cast<std::size_t>(start), one.phonemes.size());
        least = start;
      }
    }
  }

  static std::string Vector(const char* name) {
    return test::ReadFile(test::VectorPath(std::string("dictionary/") + name));
  }

  test::MessageCapture m_messages;
};

TEST_F(DictionaryDamage, EveryTruncation) {
  for (const char* name : {"zh.txt", "ja.txt"}) {
    const std::string whole = Vector(name);
    for (std::size_t size = 0; size <= whole.size(); ++size) Check(whole.substr(0, size));
  }
  const std::string english = Vector("en.txt");
  for (std::size_t size = 0; size <= english.size(); ++size) Check(english.substr(0, size));
}

TEST_F(DictionaryDamage, EveryBitFlipOfASmallFile) {
  const std::string whole = Vector("ja.txt");
  for (std::size_t i = 0; i < whole.size(); ++i) {
    for (int bit = 0; bit < 8; ++bit) {
      std::string bytes = whole;
      bytes[i] = static_cast<char>(bytes[i] ^ (1 << bit));
      Check(bytes);
    }
  }
}

TEST_F(DictionaryDamage, RandomBytesAndShuffledLines) {
  std::mt19937 random(20);
  const std::string whole = Vector("en.txt") + Vector("zh.txt");
  for (int round = 0; round < 300; ++round) {
    std::string bytes = whole;
    for (int k = 0; k < 20; ++k) bytes[random() % bytes.size()] = static_cast<char>(random());
    Check(bytes);
    std::string noise(random() % 400, '\0');
    for (char& c : noise) c = static_cast<char>(random());
    Check("D 3 JP_KJP 9999\n" + noise);
  }
}

TEST_F(DictionaryDamage, HugeCountsReadWhatIsThere) {
  EXPECT_EQ(Check("D 3 EN_KEP5 2147483647\nA 1 ? 1 1 0 e\n"), 1);
  EXPECT_EQ(m_messages.Entries()[0].text.find("VeralDictionary: 2147483647\twords loaded from <"),
            0U);
  EXPECT_EQ(Check("D 3 EN_KEP5 99999999999999999999\nA 1 ? 1 1 0 e\n"), 1);
  EXPECT_EQ(Check("D 3 EN_KEP5 -1\nA 1 ? 1 1 0 e\n"), 0);
  EXPECT_EQ(m_messages.Entries()[0].text.find("VeralDictionary: -1\twords"), 0U);
  EXPECT_EQ(Check("D 3 EN_KEP5\nA 1 ? 1 1 0 e\n"), 0);
  EXPECT_EQ(Check("D 3 EN_KEP5 2\nA 2147483647 ? 1 1 0 e\nB 1 ? 1 1 0 bi\n"), 1);
  EXPECT_EQ(Check("D 3 EN_KEP5 2\nA -5 ? 1 1 0 e\nB 1 ? 2147483647 1 0 bi\n"), 2);
}

TEST_F(DictionaryDamage, MissingFields) {
  for (const char* line : {"", "A", "A 1", "A 1 ?", "A 1 ? 1", "A 1 ? 1 1", "A 1 ? 1 1 0", "A x",
                           "A x ? 1 1 0 e", "1 ? 1 1 0 e", "A 2 ? 1 1 0 e"}) {
    EXPECT_EQ(Check(std::string("D 3 EN_KEP5 1\n") + line + "\n"), 1) << line;
  }
  for (const char* header : {"", "D", "D 3", "D 3 EN_KEP5", "3 EN_KEP5 1"}) {
    EXPECT_EQ(Check(std::string(header) + "\nA 1 ? 1 1 0 e\n"), 0) << header;
  }
}

TEST_F(DictionaryDamage, AByteOrderMarkIsHarmless) {
  const std::string whole = Vector("ja.txt");
  EXPECT_EQ(Check("\xEF\xBB\xBF" + whole), 5);
  EXPECT_EQ(m_messages.Entries()[0].text.find("VeralDictionary: 5\t"), 0U);
  EXPECT_EQ(Check("\xEF\xBB\xBF"), 0);
  EXPECT_EQ(Check("\xEF\xBB"), 0);
}

TEST_F(DictionaryDamage, BadBytesBecomeReplacementCharacters) {
  const VeralDictionary dictionary(
      IndexDictionary("D 3 JP_KJP 2\nA\xFF"
                      "B 1 ? 0 ka\n\xE4\xBD\xA0\xE4\xBD 1 ? 0 ki\n",
                      "damaged.txt"));
  ASSERT_EQ(dictionary.GetWordCount(), 2);
  EXPECT_EQ(dictionary.EntryAt(0)->Entry().word, L"A\uFFFDB");
  EXPECT_EQ(dictionary.EntryAt(1)->Entry().word, L"\u4F60\uFFFD\uFFFD");
  EXPECT_NE(dictionary.LookupWord(L"a\uFFFDb"), nullptr);
}

TEST_F(DictionaryDamage, NulBytesAreCharactersOfNoWord) {
  using std::string_literals::operator""s;
  EXPECT_EQ(Check("D 3 JP_KJP 2\nA\0B 1 ? 0 k\0a\n\0\0\0\n"s), 2);
  EXPECT_EQ(Check(std::string(1000, '\0')), 0);
  EXPECT_EQ(Check("D 3 JP_KJP 1000\n" + std::string(1000, '\0')), 1);
}

TEST_F(DictionaryDamage, VeryLongLinesAndManyBlankOnes) {
  EXPECT_EQ(Check("D 3 EN_KEP5 3\n" + std::string(1000000, 'A') + "\nB 1 ? 1 1 0 bi\n"), 2);
  EXPECT_EQ(Check("D 3 EN_KEP5 3\n" + std::string(300, ' ') + "A 1 ? 1 1 0 e\n"), 1);
  EXPECT_EQ(Check(std::string(1000000, ' ') + "D 3 EN_KEP5 3\nA 1 ? 1 1 0 e\n"), 0);
  EXPECT_EQ(Check("D 3 EN_KEP5 100000\n" + std::string(50000, '\n')), 50000);
  EXPECT_EQ(Check("D 3 EN_KEP5 3\n" + std::string(200, ' ') + "A 1 ? 1 1 0 eeeeeeeeeeeeeeeee" +
                  std::string(100, 'e')),
            1);
}

TEST_F(DictionaryDamage, CarriageReturnsAloneDoNotEndLines) {
  EXPECT_EQ(Check("D 3 EN_KEP5 2\rA 1 ? 1 1 0 e\rB 1 ? 1 1 0 bi\r"), 0);
  EXPECT_EQ(Check("D 3 EN_KEP5 2\r\nA 1 ? 1 1 0 e\r\nB 1 ? 1 1 0 bi"), 2);
}

}  // namespace
}  // namespace veral3
