#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>

#include "common/Unicode.h"
#include "recognition/EnglishNumbers.h"
#include "recognition/VeralDictionary.h"
#include "support/MessageCapture.h"
#include "support/Vectors.h"

namespace veral3 {
namespace {

using nlohmann::json;

const json& Vectors() {
  static const json vectors = test::LoadVectorJson("dictionary.json");
  return vectors;
}

std::string StreamName(MessageStream stream) {
  switch (stream) {
    case MessageStream::kError:
      return "err";
    case MessageStream::kOutput:
      return "out";
    case MessageStream::kWideError:
      return "werr";
    case MessageStream::kWideOutput:
      return "wout";
  }
  return "";
}

// As the vectors write messages, the path replaced by its placeholder.
json Messages(const test::MessageCapture& capture, const std::string& path) {
  json messages = json::array();
  for (const auto& entry : capture.Entries()) {
    std::string text = entry.text;
    const auto place = text.find(path);
    if (!path.empty() && place != std::string::npos) text.replace(place, path.size(), "<PATH>");
    messages.push_back({StreamName(entry.stream), text});
  }
  return messages;
}

json Pronunciations(const WordEntry& entry) {
  json pronunciations = json::array();
  for (const Pronunciation& one : entry.pronunciations) {
    if (!one.IsUsable()) {
      pronunciations.push_back(nullptr);
      continue;
    }
    pronunciations.push_back(
        {{"phonemes", std::string(one.phonemes)},
         {"marks", std::vector<int>(one.syllable_marks.begin(), one.syllable_marks.end())},
         {"starts", std::vector<int>(one.syllable_starts.begin(), one.syllable_starts.end())}});
  }
  return pronunciations;
}

void ExpectLoads(const json& expected, const std::string& path) {
  const test::MessageCapture capture;
  const VeralDictionary dictionary(path.c_str());
  EXPECT_EQ(Messages(capture, path), expected["messages"]);
  EXPECT_EQ(dictionary.GetPhonemeSet(), expected["pset"].get<int>());
  ASSERT_EQ(dictionary.GetWordCount(), expected["count"].get<int>());
  for (int i = 0; i < dictionary.GetWordCount(); ++i) {
    const auto entry = dictionary.EntryAt(i);
    const json& expected_entry = expected["entries"][static_cast<std::size_t>(i)];
    EXPECT_EQ(Utf8FromWide(entry->Entry().word), expected_entry["word"].get<std::string>());
    EXPECT_EQ(Pronunciations(entry->Entry()), expected_entry["pronuns"]);
  }
}

TEST(DictionaryVectors, Dictionaries) {
  for (const auto& [name, expected] : Vectors()["dictionaries"].items()) {
    SCOPED_TRACE(name);
    ExpectLoads(expected, test::VectorPath("dictionary/" + name + ".txt").string());
  }
}

TEST(DictionaryVectors, LoadCases) {
  EXPECT_EQ(Vectors()["load_cases"].size(), 22U);
  for (const json& expected : Vectors()["load_cases"]) {
    SCOPED_TRACE(expected["name"].get<std::string>());
    const json& file = expected["file"];
    ExpectLoads(expected, file.is_null() ? "/no/such/folder/dictionary.txt"
                                         : test::VectorPath(file.get<std::string>()).string());
  }
}

TEST(DictionaryVectors, Sentences) {
  std::map<std::string, std::unique_ptr<VeralDictionary>> dictionaries;
  {
    const test::MessageCapture loading;
    for (const char* name : {"en", "zh", "ja"}) {
      const auto path = test::VectorPath(std::string("dictionary/") + name + ".txt").string();
      dictionaries[name] = std::make_unique<VeralDictionary>(path.c_str());
    }
  }
  EXPECT_EQ(Vectors()["sentences"].size(), 292U);
  for (const json& expected : Vectors()["sentences"]) {
    const auto sentence = expected["sentence"].get<std::string>();
    SCOPED_TRACE(expected["dictionary"].get<std::string>() + ": " + sentence);
    const VeralDictionary& dictionary = *dictionaries.at(expected["dictionary"].get<std::string>());
    const test::MessageCapture capture;
    WordSequence words;
    EXPECT_EQ(dictionary.LookupSentence(WideFromUtf8(sentence), words),
              expected["result"].get<int>());
    EXPECT_EQ(Messages(capture, ""), expected["messages"]);

    ASSERT_EQ(static_cast<std::size_t>(words.Count()), expected["words"].size());
    std::size_t owned = 0;
    for (int i = 0; i < words.Count(); ++i) {
      const json& word = expected["words"][static_cast<std::size_t>(i)];
      EXPECT_EQ(Utf8FromWide(words[i].word), word[0].get<std::string>());
      if (word[1].get<bool>()) {
        EXPECT_EQ(Pronunciations(words[i]), expected["owned_entries"][owned++]["pronuns"]);
      } else {
        EXPECT_EQ(Pronunciations(words[i]),
                  Pronunciations(dictionary.LookupWord(words[i].word)->Entry()));
      }
    }
    EXPECT_EQ(owned, expected["owned_entries"].size());
  }
}

TEST(DictionaryVectors, Numbers) {
  EXPECT_EQ(Vectors()["numbers"].size(), 80U);
  for (const json& expected : Vectors()["numbers"]) {
    std::string words;
    const auto digits = expected["digits"].get<std::string>();
    for (const auto word : EnglishIntegerWords(WideFromUtf8(digits))) {
      if (!words.empty()) words += ' ';
      words += Utf8FromWide(word);
    }
    EXPECT_EQ(words, expected["words"].get<std::string>()) << digits;
  }
}

}  // namespace
}  // namespace veral3
