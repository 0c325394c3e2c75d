#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "common/Unicode.h"
#include "recognition/VeralDictionary.h"
#include "support/MessageCapture.h"

// Checks the dictionaries that come with the engine, entry by entry, with a reader of its own: it
// shares no code with the engine's parser, and no table with the programs that made the files.
namespace veral3 {
namespace {

struct Language {
  std::string file;
  std::string tag;
  std::string phonemes;  // of the set, without the pause
  std::map<char, std::string> expansion;
  std::string marks;  // the characters that may be marks
  int least_words;
  int least_pronunciations;
};

const Language kEnglishFile = {
    "KEN-UTF8Order.txt",
    "EN_KEP5",
    "iIE{AOuUV@3pbtdkgmnNlfvTDszSZrchCJjw",
    {{'R', "3"}, {'W', "AU"}, {'Y', "AI"}, {'e', "EI"}, {'o', "@U"}, {'y', "OI"}},
    "012",
    124000,
    130900};

const Language kChineseFile = {
    "KCN-UTF8Order.txt",
    "TW_KCP",
    "ao@EMRiuU()bpmfdtnlgkhjqxZCSrzcs",
    {{'<', "Uan"}, {'J', "un"},  {'A', "an"},  {'B', "in"},  {'D', "iM"},  {'F', "UE"},
     {'G', "ia"},  {'H', "uaM"}, {'I', "oM"},  {'K', "uai"}, {'L', "ua"},  {'M', "@M"},
     {'N', "@n"},  {'O', "ou"},  {'P', "aM"},  {'Q', "iE"},  {'T', "iaM"}, {'V', "iou"},
     {'W', "au"},  {'X', "ioM"}, {'Y', "iai"}, {'[', "uo"},  {']', "io"},  {'e', "Ei"},
     {'v', "iEn"}, {'w', "iau"}, {'y', "ai"},  {'{', "uan"}, {'}', "u@i"}},
    "12345",
    78000,
    78000};

const Language kJapaneseFile = {"KJP-UTF8Order.txt",
                                "JP_KJP",
                                "aeioubpdtXYgkfhcsCrjZzmnw",
                                {{'M', "n"}, {'N', "n"}},
                                "1",
                                90000,
                                110000};

struct Reading {
  std::string phonemes;
  std::vector<int> marks;
  std::vector<int> starts;
};

struct Entry {
  std::string word;
  std::vector<Reading> pronunciations;
};

class DictionaryFiles : public testing::TestWithParam<Language> {
 protected:
  static std::string Path() {
    return std::string(VERAL3_SOURCE_DIR) + "/resources/" + GetParam().file;
  }

  // FIELD SYLLABLES MARKS START... COMPACT, nothing missing and nothing behind it.
  static Reading ReadPronunciation(std::istringstream& line) {
    std::string field;
    std::string marks;
    std::string compact;
    std::size_t syllables = 0;
    line >> field >> syllables >> marks;
    EXPECT_TRUE(field == "?" || field.find_first_not_of("0123456789") == std::string::npos);
    EXPECT_EQ(marks.size(), syllables);
    EXPECT_GE(syllables, 1U);
    EXPECT_LE(syllables, 12U);
    std::vector<std::size_t> starts(syllables);
    for (std::size_t& start : starts) line >> start;
    line >> compact;
    EXPECT_FALSE(line.fail());
    EXPECT_TRUE((line >> std::ws).eof());

    Reading result;
    EXPECT_EQ(starts.empty() ? 1 : starts[0], 0U);
    for (std::size_t i = 0; i < compact.size(); ++i) {
      if (std::find(starts.begin(), starts.end(), i) != starts.end()) {
        result.starts.push_back(static_cast<int>(result.phonemes.size()));
      }
      const auto expanded = GetParam().expansion.find(compact[i]);
      result.phonemes +=
          expanded == GetParam().expansion.end() ? std::string(1, compact[i]) : expanded->second;
    }
    EXPECT_EQ(result.starts.size(), syllables) << "syllables are not empty";
    EXPECT_EQ(result.phonemes.find_first_not_of(GetParam().phonemes), std::string::npos)
        << result.phonemes;
    EXPECT_EQ(marks.find_first_not_of(GetParam().marks), std::string::npos) << marks;
    for (const char mark : marks) result.marks.push_back(mark - '0');
    return result;
  }

  static std::vector<Entry> Read() {
    std::ifstream file(Path(), std::ios::binary);
    EXPECT_TRUE(file.good()) << Path();
    std::vector<Entry> entries;
    std::string line;
    EXPECT_TRUE(std::getline(file, line));
    std::istringstream header(line);
    std::string name;
    std::string tag;
    int version = 0;
    std::size_t count = 0;
    header >> name >> version >> tag >> count;
    EXPECT_EQ(version, 3);
    EXPECT_EQ(tag, GetParam().tag);
    while (entries.size() < count && std::getline(file, line)) {
      std::istringstream first(line);
      Entry entry;
      int alternatives = 0;
      first >> entry.word >> alternatives;
      SCOPED_TRACE(entry.word);
      EXPECT_GE(alternatives, 1);
      EXPECT_LE(alternatives, 3);
      entry.pronunciations.push_back(ReadPronunciation(first));
      for (int i = 1; i < alternatives; ++i) {
        EXPECT_TRUE(std::getline(file, line));
        std::istringstream other(line);
        entry.pronunciations.push_back(ReadPronunciation(other));
      }
      entries.push_back(std::move(entry));
    }
    EXPECT_EQ(entries.size(), count);
    EXPECT_FALSE(std::getline(file, line)) << "lines behind the last word";
    return entries;
  }
};

TEST_P(DictionaryFiles, EveryEntryIsAsItShouldBe) {
  const std::vector<Entry> entries = Read();
  EXPECT_GE(entries.size(), static_cast<std::size_t>(GetParam().least_words));
  std::size_t pronunciations = 0;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const Entry& entry = entries[i];
    SCOPED_TRACE(entry.word);
    const std::wstring word = WideFromUtf8(entry.word);
    if (i > 0) {
      EXPECT_LT(WideFromUtf8(entries[i - 1].word), word);
    }
    for (const wchar_t c : word) {
      EXPECT_LE(c, 0xFFFF);
      EXPECT_EQ(UpperCase(c), c);
    }
    std::set<std::string> phonemes;
    for (const Reading& one : entry.pronunciations) {
      EXPECT_TRUE(phonemes.insert(one.phonemes).second) << "two alike: " << one.phonemes;
      EXPECT_EQ(one.starts.size(), entry.pronunciations[0].starts.size());
    }
    pronunciations += entry.pronunciations.size();
  }
  EXPECT_GE(pronunciations, static_cast<std::size_t>(GetParam().least_pronunciations));
}

TEST_P(DictionaryFiles, TheEngineFindsEveryWordWithThesePronunciations) {
  const std::vector<Entry> entries = Read();
  const test::MessageCapture messages;
  const VeralDictionary dictionary(Path().c_str());
  ASSERT_EQ(static_cast<std::size_t>(dictionary.GetWordCount()), entries.size());
  ASSERT_EQ(messages.Entries().size(), 1U) << messages.All();
  for (const Entry& entry : entries) {
    SCOPED_TRACE(entry.word);
    const std::wstring word = WideFromUtf8(entry.word);
    WordSequence words;
    ASSERT_EQ(dictionary.LookupSentence(word, words), 0);
    ASSERT_EQ(words.Count(), 1);
    EXPECT_EQ(words[0].word, word);
    ASSERT_EQ(words[0].pronunciations.size(), entry.pronunciations.size());
    for (std::size_t i = 0; i < entry.pronunciations.size(); ++i) {
      const Pronunciation& found = words[0].pronunciations[i];
      const Reading& expected = entry.pronunciations[i];
      EXPECT_EQ(found.phonemes, expected.phonemes);
      EXPECT_TRUE(std::equal(found.syllable_marks.begin(), found.syllable_marks.end(),
                             expected.marks.begin(), expected.marks.end()));
      EXPECT_TRUE(std::equal(found.syllable_starts.begin(), found.syllable_starts.end(),
                             expected.starts.begin(), expected.starts.end()));
    }
  }
  EXPECT_EQ(messages.Entries().size(), 1U);
}

INSTANTIATE_TEST_SUITE_P(Languages, DictionaryFiles,
                         testing::Values(kEnglishFile, kChineseFile, kJapaneseFile),
                         [](const auto& param_info) { return param_info.param.tag; });

TEST(EnglishDictionaryFile, ReadsEveryNumberAloud) {
  const test::MessageCapture messages;
  const VeralDictionary dictionary(
      (std::string(VERAL3_SOURCE_DIR) + "/resources/KEN-UTF8Order.txt").c_str());
  WordSequence words;
  EXPECT_EQ(dictionary.LookupSentence(L"0 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 30 40 "
                                      L"50 60 70 80 90 1.5 1.2.3 101 1,001,001,001,001",
                                      words),
            0);
  EXPECT_EQ(words.Count(), 28 + 3 + 5 + 4 + 10);
  EXPECT_EQ(messages.Entries().size(), 1U) << messages.All();
}

struct ExpectedWord {
  const wchar_t* word;
  std::vector<std::string> phonemes;  // of the alternatives
  std::vector<int> marks;
  std::vector<int> starts;  // of the canonical one
};

void ExpectWords(const std::string& file, const std::vector<ExpectedWord>& words) {
  const test::MessageCapture messages;
  const VeralDictionary dictionary((std::string(VERAL3_SOURCE_DIR) + "/resources/" + file).c_str());
  for (const ExpectedWord& expected : words) {
    SCOPED_TRACE(Utf8FromWide(expected.word));
    const auto entry = dictionary.LookupWord(expected.word);
    ASSERT_NE(entry, nullptr);
    std::vector<std::string> phonemes;
    for (const Pronunciation& one : entry->Entry().pronunciations) {
      phonemes.emplace_back(one.phonemes);
    }
    EXPECT_EQ(phonemes, expected.phonemes);
    const Pronunciation& first = entry->Entry().pronunciations[0];
    EXPECT_EQ(std::vector<int>(first.syllable_marks.begin(), first.syllable_marks.end()),
              expected.marks);
    EXPECT_EQ(std::vector<int>(first.syllable_starts.begin(), first.syllable_starts.end()),
              expected.starts);
  }
}

TEST(EnglishDictionaryFile, CutsSyllablesBeforeTheLongestOnset) {
  ExpectWords("KEN-UTF8Order.txt", {
                                       {L"A", {"@", "EI"}, {0}, {0}},
                                       {L"EXTRA", {"Ekstr@"}, {1, 0}, {0, 2}},
                                       {L"ANGRY", {"{Ngri"}, {1, 0}, {0, 2}},
                                       {L"CAR", {"kAc"}, {1}, {0}},  // r behind the vowel
                                       {L"HEARING", {"hirIN"}, {1, 0}, {0, 2}},  // r before it
                                       {L"TEACHER", {"tiC3"}, {1, 0}, {0, 2}},
                                       {L"ABOUT", {"@bAUt"}, {0, 1}, {0, 1}},
                                       {L"DON'T", {"d@Unt", "d@Un"}, {1}, {0}},
                                   });
}

TEST(ChineseDictionaryFile, GivesTheReadingsOfTaiwan) {
  ExpectWords("KCN-UTF8Order.txt",
              {
                  {L"\u5783\u573E", {"l@s@"}, {4, 4}, {0, 2}},      // le se, rubbish
                  {L"\u4F01\u696D", {"qiiE"}, {4, 4}, {0, 2}},      // qi ye
                  {L"\u7814\u7A76", {"iEnjiou"}, {2, 4}, {0, 3}},   // yan jiu
                  {L"\u653B\u64CA", {"goMji"}, {1, 2}, {0, 3}},     // gong ji
                  {L"\u661F\u671F", {"xiMqi"}, {1, 2}, {0, 3}},     // xing qi
                  {L"\u982D\u9AEE", {"toufa"}, {2, 3}, {0, 3}},     // tou fa
                  {L"\u4E00\u500B", {"ig@"}, {2, 4}, {0, 1}},       // yi ge: yi changes
                  {L"\u4E0D\u662F", {"buS)"}, {2, 4}, {0, 2}},      // bu shi: bu changes
                  {L"\u5F88\u597D", {"h@nhau"}, {3, 3}, {0, 3}},    // hen hao: third tones stay
                  {L"\u6F02\u4EAE", {"piauliaM"}, {4, 4}, {0, 4}},  // piao liang: no neutral tone
                  {L"\u6211\u5011", {"uom@n"}, {3, 5}, {0, 2}},     // wo men: one
                  {L"\u5ABD\u5ABD", {"mama"}, {1, 5}, {0, 2}},      // ma ma
                  {L"\u7DA0\u8272", {"lUs@"}, {4, 4}, {0, 2}},      // lu se with umlaut
                  {L"\u8ECD\u968A", {"jUndu@i"}, {1, 4}, {0, 3}},   // jun dui
                  {L"\u56DB", {"s("}, {4}, {0}},                    // si
                  {L"\u5341", {"S)"}, {2}, {0}},                    // shi
                  {L"\u548C", {"h@", "han"}, {2}, {0}},             // "and": he or han
              });
}

TEST(JapaneseDictionaryFile, CutsHeavySyllables) {
  ExpectWords(
      "KJP-UTF8Order.txt",
      {
          {L"\u5B66\u6821", {"gakkoo"}, {1, 1}, {0, 3}},              // gakkoo
          {L"\u6771\u4EAC", {"tookjoo"}, {1, 1}, {0, 3}},             // tookyoo
          {L"\u65B0\u805E", {"Cinbun"}, {1, 1}, {0, 3}},              // shimbun
          {L"\u96D1\u8A8C", {"zaCCi"}, {1, 1}, {0, 3}},               // zasshi
          {L"\u6620\u753B", {"eega", "eiga"}, {1, 1}, {0, 2}},        // ei of one reading
          {L"\u3048\u3044\u304C", {"eega", "eiga"}, {1, 1}, {0, 2}},  // the same in kana
          {L"\u6BDB\u7CF8", {"keito"}, {1, 1, 1}, {0, 2, 3}},         // ke-ito: of two
          {L"\u3067\u3059", {"desu", "des"}, {1, 1}, {0, 2}},         // desu, devoiced
          {L"\u3057\u305F", {"Cita", "Cta"}, {1, 1}, {0, 2}},         // shita
          {L"\u306F", {"wa", "ha"}, {1}, {0}},                        // the particle
          {L"\u3078", {"e", "he"}, {1}, {0}},
          {L"\u4E00\u65E5", {"iYiniYi", "citoiYi"}, {1, 1, 1, 1}, {0, 1, 3, 5}},  // ichinichi
          {L"\u65E5\u672C", {"nihon", "nippon"}, {1, 1}, {0, 2}},
          {L"\u4E09\u767E", {"sanbjaku"}, {1, 1, 1}, {0, 3, 6}},  // sambyaku
          {L"\u3093", {"n"}, {1}, {0}},
      });
}

}  // namespace
}  // namespace veral3
