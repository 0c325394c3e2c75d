#include "training/corpus/EnglishTexts.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <set>
#include <sstream>
#include <string_view>

#include "training/corpus/EnglishVoices.h"

namespace veral3::training {
namespace {

std::vector<std::string> Words(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> words;
  for (std::string word; stream >> word;) {
    while (!word.empty() && (word.back() == '.' || word.back() == ',' || word.back() == '?')) {
      word.pop_back();
    }
    words.push_back(word);
  }
  return words;
}

TEST(EnglishTexts, HeldOutSentencesShareNoContentWordWithTraining) {
  const EnglishTexts texts({});
  Random random(1);
  std::set<std::string> training;
  for (int i = 0; i < 20000; ++i) {
    for (const std::string& word : Words(texts.Draw(random))) training.insert(word);
  }
  std::set<std::string> shared;
  for (int i = 0; i < 2000; ++i) {
    for (const std::string& word : Words(texts.DrawHeldOut(random))) {
      if (training.contains(word)) shared.insert(word);
    }
  }
  const std::set<std::string> function_words = {
      "a",   "and",   "are",  "every", "her",  "how", "its", "lies",  "one",  "that",
      "the", "their", "this", "those", "with", "nor", "any", "makes", "began"};
  for (const std::string& word : shared) {
    EXPECT_TRUE(function_words.contains(word)) << word;
  }
}

TEST(EnglishTexts, RareSentencesShareNoContentWordWithTraining) {
  const EnglishTexts texts({});
  Random random(4);
  std::set<std::string> training;
  for (int i = 0; i < 20000; ++i) {
    for (const std::string& word : Words(texts.Draw(random))) training.insert(word);
  }
  std::set<std::string> rare;
  for (int i = 0; i < 2000; ++i) {
    for (const std::string& word : Words(EnglishTexts::DrawRare(random))) rare.insert(word);
  }
  for (const std::string& word : rare) {
    if (training.contains(word)) {
      EXPECT_TRUE(word == "one" || word == "this" || word == "every" || word == "a" ||
                  word == "nor" || word == "some")
          << word;
    }
  }
  EXPECT_GE(rare.size(), 100u);
  EXPECT_TRUE(rare.contains("seizure"));
  EXPECT_FALSE(rare.contains("R"));
}

TEST(EnglishTexts, ExactlyOneWordIsChanged) {
  const EnglishTexts texts({});
  Random random(2);
  for (int i = 0; i < 500; ++i) {
    const std::string text = texts.DrawHeldOut(random);
    const auto before = Words(text);
    const auto after = Words(EnglishTexts::WithOneWordChanged(text, random));
    ASSERT_EQ(before.size(), after.size()) << text;
    int changed = 0;
    for (std::size_t w = 0; w < before.size(); ++w) changed += before[w] != after[w];
    EXPECT_EQ(changed, 1) << text;
  }
}

TEST(EnglishTexts, FillEverySlot) {
  const EnglishTexts texts({"dictionary"});
  Random random(3);
  for (int i = 0; i < 2000; ++i) {
    for (const std::string& word : Words(texts.Draw(random))) {
      EXPECT_FALSE(word.size() == 1 && word[0] >= 'A' && word[0] <= 'Z' && word != "I") << word;
    }
  }
}

TEST(DictionaryWords, AreTheFirstTokensInLowerCase) {
  const std::string path = ::testing::TempDir() + "/veral3_words.txt";
  std::ofstream(path) << "VERAL 3 EN_KEP5 3\nCAT 2 ? 1 1 0 k{t\n? 1 1 0 kAt\nIT'S 1 ? 1 1 0 Its\n"
                         "A 1 ? 1 1 0 @\n";
  EXPECT_THAT(ReadDictionaryWords(path), ::testing::ElementsAre("veral", "cat", "it's"));
  EXPECT_THROW(ReadDictionaryWords("/no/such/file"), std::runtime_error);
}

TEST(EnglishVoices, HeldOutOnesAreNeverTrainedOn) {
  for (const auto variant : kHeldOutVariants) {
    EXPECT_EQ(std::ranges::count(kTrainingVariants, variant), 0) << variant;
  }
  Random random(1);
  for (int i = 0; i < 500; ++i) {
    const std::string name = DrawEnglishVoice(random, false).voice.name;
    const std::string_view variant = std::string_view(name).substr(name.rfind('+') + 1);
    EXPECT_EQ(std::ranges::count(kHeldOutVariants, variant), 0) << name;
  }
}

}  // namespace
}  // namespace veral3::training
