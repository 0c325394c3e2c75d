#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include "core/AnalyzedAudio.h"
#include "support/MessageCapture.h"
#include "training/goodness/Judgement.h"
#include "training/grading/SenseReadings.h"
#include "training/grading/SenseSentences.h"
#include "training/measure/PhonemeScores.h"

namespace veral3::training {
namespace {

TEST(WithSilence, PartsTheRecordingSoftly) {
  const std::vector<std::int16_t> samples(4000, 1000);
  const auto parted = WithSilence(samples, 1000, 0.1);
  ASSERT_EQ(parted.size(), 4000U + 2205U);
  EXPECT_EQ(parted[0], 1000);
  EXPECT_TRUE(
      std::all_of(parted.begin() + 1000, parted.begin() + 3205, [](int x) { return x == 0; }));
  EXPECT_LT(parted[998], 100);
  EXPECT_LT(parted[3206], 100);
  EXPECT_EQ(parted.back(), 1000);
  EXPECT_EQ(WithSilence(samples, 9999, 0.1).size(), 4000U + 2205U);  // behind the end
  EXPECT_EQ(WithSilence({}, 0, 0.1).size(), 2205U);
}

TEST(SenseSentences, HaveEveryWordInTheDictionaryAndEveryFault) {
  const test::MessageCapture messages;
  AnalyzedAudio::LoadResourceInFolderPath(VERAL3_SOURCE_DIR "/resources/");
  for (const LanguageType language : {kLanguageEnglish, kLanguageChinese, kLanguageJapanese}) {
    const auto sentences = SenseSentencesOf(language);
    EXPECT_GE(sentences.size(), 7U);
    for (const SenseSentence& sentence : sentences) {
      SCOPED_TRACE(sentence.text);
      EXPECT_TRUE(KnowsAllWords(language, sentence.text));
      EXPECT_FALSE(sentence.spoken.empty());
      EXPECT_NE(sentence.consonants, sentence.spoken);
      EXPECT_EQ(std::ranges::count(sentence.consonants, ' '),
                std::ranges::count(sentence.spoken, ' '));
      EXPECT_EQ(sentence.tones.empty(), language != kLanguageChinese);
      EXPECT_EQ(sentence.short_vowels.empty(), language != kLanguageJapanese);
    }
  }
}

TEST(SenseSentences, EveryToneOfTheFaultIsAnother) {
  const auto tones_of = [](const std::string& pinyin) {
    std::string tones;
    std::ranges::copy_if(pinyin, std::back_inserter(tones),
                         [](char c) { return c >= '1' && c <= '5'; });
    return tones;
  };
  for (const SenseSentence& sentence : SenseSentencesOf(kLanguageChinese)) {
    SCOPED_TRACE(sentence.text);
    const std::string right = tones_of(sentence.spoken);
    const std::string wrong = tones_of(sentence.tones);
    EXPECT_EQ(tones_of(sentence.consonants), right);
    ASSERT_EQ(wrong.size(), right.size());
    for (std::size_t i = 0; i < right.size(); ++i) EXPECT_NE(wrong[i], right[i]) << i;
  }
}

TEST(KnowsAllWords, CountsMarksAsNoWords) {
  const test::MessageCapture messages;
  AnalyzedAudio::LoadResourceInFolderPath(VERAL3_SOURCE_DIR "/resources/");
  EXPECT_TRUE(KnowsAllWords(kLanguageEnglish, "good , morning ."));
  EXPECT_TRUE(KnowsAllWords(kLanguageEnglish, "good morning?"));
  EXPECT_FALSE(KnowsAllWords(kLanguageEnglish, "good morningxq"));
}

TEST(Substitutions, ChangeSomePhonemesForOthersOfTheirKind) {
  const CPhonemeSet& set = *PhonemeSetOf(kLanguageEnglish);
  Utterance utterance;
  const std::string symbols = "-hEl@U-w3ld-";
  for (std::size_t i = 0; i < symbols.size(); ++i) {
    utterance.labels.push_back({symbols[i], static_cast<std::int32_t>(1000 * i)});
  }
  std::size_t changes = 0;
  for (std::uint64_t seed = 0; seed < 300; ++seed) {
    Random random(seed);
    const Substituted changed = WithSubstitutions(set, utterance, random);
    ASSERT_EQ(changed.is_changed.size(), 9U);
    std::size_t phoneme = 0;
    for (std::size_t i = 0; i < symbols.size(); ++i) {
      const char now = changed.utterance.labels[i].symbol;
      EXPECT_EQ(changed.utterance.labels[i].start, utterance.labels[i].start);
      if (symbols[i] == '-') {
        EXPECT_EQ(now, '-');
        continue;
      }
      EXPECT_EQ(now != symbols[i], changed.is_changed[phoneme] != 0);
      EXPECT_EQ(set.IsVowel(static_cast<wchar_t>(now)),
                set.IsVowel(static_cast<wchar_t>(symbols[i])));
      EXPECT_FALSE(phoneme > 0 && changed.is_changed[phoneme] && changed.is_changed[phoneme - 1]);
      changes += static_cast<std::size_t>(changed.is_changed[phoneme]);
      ++phoneme;
    }
  }
  EXPECT_GT(changes, 250U);  // 2,700 phonemes, somewhat under one in six
  EXPECT_LT(changes, 500U);
}

}  // namespace
}  // namespace veral3::training
