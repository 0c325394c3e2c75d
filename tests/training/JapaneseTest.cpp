#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <numbers>
#include <set>
#include <sstream>
#include <stdexcept>

#include "common/CString.h"
#include "recognition/CPhonemeSet.h"
#include "recognition/VeralDictionary.h"
#include "signal/CWaveFrameDef.h"
#include "support/Vectors.h"
#include "training/augment/Lengthen.h"
#include "training/corpus/HeldOutTexts.h"
#include "training/corpus/JapaneseTexts.h"
#include "training/corpus/SentenceSpeaker.h"
#include "training/speech/EspeakSpeech.h"
#include "training/speech/JapaneseEvents.h"

namespace veral3::training {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

const std::string kDictionary = std::string(VERAL3_SOURCE_DIR) + "/resources/KJP-UTF8Order.txt";

const JapaneseTexts& Texts() {
  static const JapaneseTexts texts(kDictionary);
  return texts;
}

std::string FeedOf(const JapaneseReading& reading) { return JapaneseFeed(JapaneseUnits(reading)); }

std::vector<std::string> Words(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> words;
  for (std::string word; stream >> word;) words.push_back(word);
  return words;
}

TEST(JapaneseFeed, SpellsEachSymbolAsTheSynthesiserDoes) {
  EXPECT_EQ(FeedOf({"Xukue", {0, 2, 4}}), "t_sukue");
  EXPECT_EQ(FeedOf({"Yizu", {0, 2}}), "t_s\\izu");
  EXPECT_EQ(FeedOf({"fune", {0, 2}}), "p\\une");
  EXPECT_EQ(FeedOf({"cito", {0, 2}}), "Cito");
  EXPECT_EQ(FeedOf({"Ciro", {0, 2}}), "s\\ir`o");
  EXPECT_EQ(FeedOf({"Zu", {0}}), "d_z\\u");
}

TEST(JapaneseFeed, AGlideIsOneAfterAConsonantOnly) {
  EXPECT_EQ(FeedOf({"kjaku", {0, 3}}), "k_jaku");
  EXPECT_EQ(FeedOf({"jama", {0, 2}}), "jama");
  EXPECT_EQ(FeedOf({"koNjaku", {0, 3, 5}}), "koN\\jaku");
}

TEST(JapaneseFeed, AMoraicNasalFollowsWhatComesAfter) {
  EXPECT_EQ(FeedOf({"kaNtaN", {0, 3}}), "kantaN\\");
  EXPECT_EQ(FeedOf({"kaNCiN", {0, 3}}), "kaN\\s\\iN\\");
  EXPECT_EQ(FeedOf({"kaMpai", {0, 3}}), "kampai");
  EXPECT_EQ(FeedOf({"teNiN", {0, 3}}), "teN\\iN\\");
}

TEST(JapaneseFeed, AVowelTwiceIsLongWithinASyllableOnly) {
  EXPECT_EQ(FeedOf({"gakkoo", {0, 3}}), "gakko:");
  EXPECT_EQ(FeedOf({"aiiro", {0, 1, 3}}), "ai:r`o");
  EXPECT_EQ(FeedOf({"mizuumi", {0, 2, 4, 5}}), "mizuumi");
}

TEST(JapaneseFeed, ABarKeepsAClosureFromSpellingAnAffricate) {
  EXPECT_EQ(FeedOf({"itta", {0, 2}}), "it|ta");
  EXPECT_EQ(FeedOf({"itteXu", {0, 2, 5}}), "it|tet_su");
  EXPECT_EQ(FeedOf({"matYa", {0, 3}}), "mat|t_s\\a");
}

TEST(JapaneseUnits, RefuseWhatIsNoSymbol) {
  try {
    JapaneseUnits({"maGi", {0, 2}});
    FAIL();
  } catch (const std::runtime_error& error) {
    EXPECT_THAT(error.what(), HasSubstr("[G]"));
  }
}

TEST(JapaneseLabels, HalveALongVowelAndCallEveryMoraicNasalN) {
  auto units = JapaneseUnits({"kooN", {0}});
  const std::vector<PhonemeEvent> events = {{"k", 100}, {"o", 300}, {"u~", 1300}, {"_:", 1500}};
  EXPECT_THAT(
      JapaneseLabels(events, units, 2000),
      ElementsAre(PhonemeLabel{'-', 0}, PhonemeLabel{'k', 100}, PhonemeLabel{'o', 300},
                  PhonemeLabel{'o', 800}, PhonemeLabel{'n', 1300}, PhonemeLabel{'-', 1500}));
}

TEST(JapaneseLabels, RefuseWhatWasNotAskedFor) {
  const auto units = JapaneseUnits({"ka", {0}});
  const std::vector<PhonemeEvent> other = {{"k", 100}, {"o", 300}};
  EXPECT_THROW(JapaneseLabels(other, units, 500), std::runtime_error);
  const std::vector<PhonemeEvent> missing = {{"k", 100}};
  EXPECT_THROW(JapaneseLabels(missing, units, 500), std::runtime_error);
  const std::vector<PhonemeEvent> more = {{"k", 100}, {"a", 300}, {"a", 400}};
  EXPECT_THROW(JapaneseLabels(more, units, 500), std::runtime_error);
}

TEST(JapaneseLabels, UnitsAreFoundAgainPastPauses) {
  const auto units = JapaneseUnits({"aaka", {0, 2}});
  const std::vector<PhonemeLabel> labels = {{'-', 0}, {'a', 1}, {'a', 2},
                                            {'-', 3}, {'k', 4}, {'a', 5}};
  EXPECT_THAT(LabelsOfUnits(labels, units), ElementsAre(1, 4, 5));
}

// Every 40th word of the dictionary and all that is rare in it.
TEST(JapaneseSpeech, SaysWhatItIsFed) {
  EspeakSpeech espeak;
  espeak.SetVoice({"ja+f4", 200, 50, 50, 0});
  const CPhonemeSet& set = *PhonemeSetOf(kLanguageJapanese);
  std::set<std::string> pairs;  // of neighbouring symbols, all of which are tried
  std::set<std::string> tried;
  std::ifstream file(kDictionary);
  std::string line;
  std::getline(file, line);
  for (int number = 0; std::getline(file, line); ++number) {
    for (const JapaneseReading& reading : Texts().ReadingsOf(line.substr(0, line.find(' ')))) {
      bool fresh = number % 40 == 0;
      for (std::size_t i = 0; i + 1 < reading.compact.size(); ++i) {
        fresh |= pairs.insert(reading.compact.substr(i, 2)).second;
      }
      if (!fresh || !tried.insert(reading.compact).second) continue;
      const auto units = JapaneseUnits(reading);
      const SpokenText spoken = espeak.Speak("[[" + JapaneseFeed(units) + "]]");
      std::vector<PhonemeLabel> labels;
      ASSERT_NO_THROW(labels = JapaneseLabels(spoken.events, units,
                                              static_cast<std::int32_t>(spoken.samples.size())))
          << reading.compact;
      for (const PhonemeLabel& label : labels) {
        ASSERT_GE(set.GetPhonemeIndex(label.symbol), 0) << reading.compact;
      }
    }
  }
  EXPECT_GT(tried.size(), 1500u);
}

TEST(JapaneseTexts, HeldOutSentencesShareNoContentWordWithTraining) {
  Random random(1);
  std::set<std::string> training;
  for (int i = 0; i < 20000; ++i) {
    for (const JapaneseWord& word : Texts().Draw(random)) training.insert(word.text);
  }
  std::set<std::string> shared;
  for (int i = 0; i < 2000; ++i) {
    for (const JapaneseWord& word : Texts().DrawHeldOut(random)) {
      if (training.contains(word.text)) shared.insert(word.text);
    }
  }
  const std::set<std::string> function_words = {
      "、",   "は",   "が",     "を",       "に",       "で",     "の",   "と",
      "も",   "な",   "か",     "よ",       "から",     "まで",   "ます", "まし",
      "ませ", "た",   "ん",     "です",     "し",       "らしい", "なら", "でしょ",
      "う",   "そう", "として", "あんなに", "どんなに", "始め",   "置き"};
  for (const std::string& word : shared) EXPECT_TRUE(function_words.contains(word)) << word;
}

TEST(JapaneseTexts, ExactlyOneWordIsChanged) {
  Random random(2);
  const auto texts = HeldOutTextsOf(kLanguageJapanese, kDictionary);
  for (int i = 0; i < 300; ++i) {
    const std::string text = texts->Draw(random);
    const auto before = Words(text);
    const auto after = Words(texts->WithOneWordChanged(text, random));
    ASSERT_EQ(before.size(), after.size()) << text;
    int changed = 0;
    for (std::size_t w = 0; w < before.size(); ++w) changed += before[w] != after[w];
    EXPECT_EQ(changed, 1) << text;
  }
}

TEST(JapaneseTexts, NeedTheirDictionary) {
  EXPECT_THROW(JapaneseTexts("/no/such/file"), std::runtime_error);
  EXPECT_THROW(JapaneseTexts(std::string(VERAL3_SOURCE_DIR) + "/resources/KCN-UTF8Order.txt"),
               std::runtime_error);
}

// The dictionary must read the text as it was spoken, or aligning the text would go wrong.
TEST(JapaneseSpeaker, SaysOneOfTheReadingsThatTheDictionaryHas) {
  const VeralDictionary dictionary(kDictionary.c_str());
  for (const bool held_out : {false, true}) {
    const auto speaker = MakeJapaneseSpeaker({kDictionary, held_out});
    for (std::uint64_t number = 0; number < 60; ++number) {
      Random random(MixSeed(3, number));
      const Utterance utterance = speaker->Speak(random);
      std::string rest = PhonemesOf(utterance);
      WordSequence words;
      ASSERT_GE(dictionary.LookupSentence(CString(utterance.text), words), 0) << utterance.text;
      // Every word takes one of its readings from the front; which one may depend on the others.
      std::set<std::string> rests = {rest};
      for (int w = 0; w < words.Count(); ++w) {
        std::set<std::string> next;
        for (const Pronunciation& reading : words[w].pronunciations) {
          for (const std::string& one : rests) {
            if (one.starts_with(reading.phonemes)) next.insert(one.substr(reading.phonemes.size()));
          }
        }
        rests = std::move(next);
      }
      EXPECT_TRUE(rests.contains("")) << utterance.text << ": " << rest;
      EXPECT_TRUE(std::ranges::is_sorted(utterance.labels, {}, &PhonemeLabel::start));
      EXPECT_LT(utterance.labels.back().start, static_cast<std::int32_t>(utterance.samples.size()));
    }
  }
}

std::vector<std::int16_t> Tone(double hz, std::size_t count) {
  std::vector<std::int16_t> samples;
  for (std::size_t i = 0; i < count; ++i) {
    samples.push_back(static_cast<std::int16_t>(
        10000 * std::sin(2 * std::numbers::pi * hz * static_cast<double>(i) / kSampleRate)));
  }
  return samples;
}

TEST(Lengthen, KeepsPitchAndLevel) {
  const double hz = 150.0;
  std::vector<std::int16_t> samples = Tone(hz, 6000);
  const std::int32_t added = Lengthen(samples, 1000, 5000, 3000);
  EXPECT_NEAR(added, 3000, 500);
  ASSERT_EQ(samples.size(), 6000u + static_cast<std::size_t>(added));
  int crossings = 0;
  int largest_step = 0;
  for (std::size_t i = 1; i < samples.size(); ++i) {
    crossings += samples[i - 1] < 0 && samples[i] >= 0;
    largest_step = std::max(largest_step, std::abs(samples[i] - samples[i - 1]));
  }
  EXPECT_NEAR(crossings, static_cast<double>(samples.size()) * hz / kSampleRate, 1.5);
  EXPECT_LT(largest_step, 700);  // 430 in the tone itself: no clicks
}

TEST(Lengthen, LeavesWhatLiesOutside) {
  const std::vector<std::int16_t> before = Tone(150.0, 6000);
  std::vector<std::int16_t> samples = before;
  const auto added = static_cast<std::size_t>(Lengthen(samples, 1000, 5000, 2000));
  EXPECT_TRUE(std::equal(before.begin(), before.begin() + 1000, samples.begin()));
  EXPECT_TRUE(std::equal(before.begin() + 5000, before.end(),
                         samples.begin() + 5000 + static_cast<std::ptrdiff_t>(added)));
}

TEST(Lengthen, LeavesAStretchThatIsTooShortOrNotThere) {
  std::vector<std::int16_t> samples = Tone(150.0, 2000);
  EXPECT_EQ(Lengthen(samples, 500, 900, 1000), 0);
  EXPECT_EQ(Lengthen(samples, 500, 3000, 1000), 0);
  EXPECT_EQ(Lengthen(samples, 0, 2000, 0), 0);
  EXPECT_EQ(samples.size(), 2000u);
}

}  // namespace
}  // namespace veral3::training
