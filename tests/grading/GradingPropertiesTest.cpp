// What holds for every grading, on random pairs of recordings: many ties, zeros and missing peaks,
// tutors of the same and of another text, pauses about as long as those that count.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "grading/GradedResult.h"
#include "recognition/CPhonemeSet.h"
#include "support/MessageCapture.h"

namespace veral3 {
namespace {

constexpr int kPairs = 12000;
constexpr int kFrame = 220;  // [samples]
constexpr std::size_t kWidth = 64;

using Generator = std::mt19937;  // the same numbers everywhere, unlike the standard distributions

int Below(Generator& random, int limit) {
  return static_cast<int>(random() % static_cast<std::uint32_t>(limit));
}
bool OneIn(Generator& random, int n) { return Below(random, n) == 0; }
double Fraction(Generator& random) { return static_cast<double>(random() >> 8) / (1 << 24); }

template <typename T>
T Pick(Generator& random, std::initializer_list<T> values) {
  return values.begin()[Below(random, static_cast<int>(values.size()))];
}

ToneRow Tones(Generator& random) {
  ToneRow row{};
  switch (Below(random, 5)) {
    case 0:
      row.fill(0.2);  // all alike
      break;
    case 1:
      row[static_cast<std::size_t>(Below(random, kToneClasses))] = 1.0;
      break;
    case 2:
      break;  // nothing was measured
    default: {
      double sum = 0.0;
      for (double& value : row) sum += value = OneIn(random, 4) ? 0.0 : Fraction(random);
      if (sum > 0.0) {
        for (double& value : row) value /= sum;
      }
    }
  }
  return row;
}

// Texts: phonemes and where syllables and words begin.
struct Text {
  std::string phonemes;
  std::vector<int> syllable_start;
  WordSpans words;
};

char AnySymbol(Generator& random, const CPhonemeSet& set, bool vowel) {
  const std::string_view symbols = set.GetFullSet();
  for (;;) {
    const char symbol =
        symbols[static_cast<std::size_t>(Below(random, static_cast<int>(symbols.size()) - 1))];
    if (set.IsVowel(static_cast<unsigned char>(symbol)) == vowel) return symbol;
  }
}

Text MakeText(Generator& random, LanguageType language) {
  const CPhonemeSet* const set = PhonemeSetOf(language);
  Text text;
  const int num_syllables = 1 + Below(random, 12);
  for (int s = 0; s < num_syllables; ++s) {
    const bool new_word = s == 0 || language == kLanguageChinese || OneIn(random, 2);
    if (new_word) {
      text.words.first_syllable.push_back(s);
      text.words.num_syllables.push_back(0);
    }
    ++text.words.num_syllables.back();
    text.syllable_start.push_back(static_cast<int>(text.phonemes.size()));
    // A vowel among up to two consonants: without one a syllable has no score.
    const int consonants = Below(random, 3);
    const int before = Below(random, consonants + 1);
    for (int c = 0; c < before; ++c) text.phonemes += AnySymbol(random, *set, false);
    text.phonemes += AnySymbol(random, *set, true);
    for (int c = before; c < consonants; ++c) text.phonemes += AnySymbol(random, *set, false);
  }
  return text;
}

// A reading of the text; values come from few so that many are equal.
RecordingView Read(Generator& random, LanguageType language, const Text& text) {
  RecordingView view;
  view.language = language;
  view.phonemes = text.phonemes;
  view.syllable_start = text.syllable_start;
  const auto num_syllables = text.syllable_start.size();
  int now = Pick(random, {0, 0, 5 * kFrame, 50 * kFrame});
  const bool empty = OneIn(random, 40);  // every phoneme of no length
  for (std::size_t p = 0; p < text.phonemes.size(); ++p) {
    if (std::ranges::find(text.syllable_start, static_cast<int>(p)) != text.syllable_start.end()) {
      now += Pick(random, {0, 0, 0, 0, kFrame, 5511, 5512, 5513, 11024, 11025, 11026, 22050});
    }
    view.phoneme_start.push_back(now);
    if (!empty) now += Pick(random, {0, kFrame, 5 * kFrame, 10 * kFrame, 30 * kFrame});
    view.phoneme_end.push_back(now);
  }
  const bool voiceless = OneIn(random, 20);
  const bool silent = OneIn(random, 20);
  for (std::size_t s = 0; s < num_syllables; ++s) {
    view.syllable_pitch.push_back(voiceless ? 0 : Pick(random, {0, 100, 120, 120, 180, 250}));
    view.syllable_duration.push_back(Pick(random, {0, 1100, 2200, 2200, 4400, 8800}));
    view.syllable_intensity.push_back(silent ? 0.0 : Pick(random, {0.0, 1.5, 40.0, 40.0, 900.25}));
    if (language == kLanguageChinese) view.tone_probability.push_back(Tones(random));
  }
  view.pitch_segments = Below(random, 6);
  return view;
}

LearnerView Learner(Generator& random, const RecordingView& reading, const Text& text) {
  LearnerView learner;
  static_cast<RecordingView&>(learner) = reading;
  learner.words = text.words;
  for (std::size_t s = 0; s < text.syllable_start.size(); ++s) {
    learner.goodness.push_back(Pick(random, {1.0, 1.0, 1.0, 0.5, 0.0, 0.987}));
  }
  const std::string_view symbols = PhonemeSetOf(reading.language)->GetFullSet();
  learner.distribution_width = kWidth;
  learner.distributions.assign(text.phonemes.size() * kWidth, 0.0);
  for (std::size_t p = 0; p < text.phonemes.size(); ++p) {
    double* const row = learner.distributions.data() + p * kWidth;
    if (OneIn(random, 10)) continue;  // the classifier said nothing
    double sum = 0.0;
    for (std::size_t c = 0; c < symbols.size(); ++c) {
      sum += row[c] = OneIn(random, 3) ? Fraction(random) : 0.0;
    }
    for (std::size_t c = 0; sum > 0.0 && c < symbols.size(); ++c) row[c] /= sum;
  }
  return learner;
}

LearnerView WithoutFaults(LearnerView learner) {
  std::ranges::fill(learner.goodness, 1.0);
  return learner;
}

struct Pair {
  LearnerView learner;
  RecordingView tutor;
  double probability = 1.0;  // that the learner read the sentence at all
};

Pair MakePair(Generator& random) {
  const LanguageType language =
      Pick(random, {kLanguageEnglish, kLanguageChinese, kLanguageJapanese});
  const Text text = MakeText(random, language);
  Pair pair;
  pair.learner = Learner(random, Read(random, language, text), text);
  switch (Below(random, 4)) {
    case 0:
      pair.tutor = pair.learner;
      break;
    case 1:
      pair.tutor = Read(random, language, MakeText(random, language));
      break;
    default:
      pair.tutor = Read(random, language, text);
  }
  pair.probability = Pick(random, {1.0, 1.0, 0.9, std::exp(-1.0), 1e-12, 0.0});
  return pair;
}

int Grade(const Pair& pair, GradedResult& graded) {
  return GradeAgainstTutor(
      pair.learner, pair.tutor, [&] { return pair.probability; }, graded);
}

using Scores = std::vector<const std::vector<int>*>;
Scores ScoresOf(const GradedResult& graded) {
  return {&graded.phoneme_pronunciation, &graded.syllable_pronunciation,
          &graded.syllable_pitch,        &graded.syllable_timing,
          &graded.syllable_intensity,    &graded.words.pronunciation,
          &graded.words.pitch,           &graded.words.timing,
          &graded.words.intensity,       &graded.words.total};
}

void ExpectScore(int score, const char* what) {
  EXPECT_GE(score, 0) << what;
  EXPECT_LE(score, 100) << what;
}

void ExpectLetters(std::string_view advice, std::string_view letters, std::size_t count) {
  EXPECT_EQ(advice.size(), count);
  EXPECT_EQ(advice.find_first_not_of(letters), std::string_view::npos) << advice;
}

void ExpectContrasts(const std::vector<double>& contrasts) {
  for (const double contrast : contrasts) {
    EXPECT_TRUE(contrast >= 0.0 && contrast <= 1e10) << contrast;
  }
}

void ExpectInRange(const Pair& pair, const GradedResult& graded) {
  const LearnerView& learner = pair.learner;
  const auto syllables = static_cast<std::size_t>(learner.NumSyllables());
  const auto words = static_cast<std::size_t>(learner.NumWords());
  ExpectScore(graded.total, "total");
  ExpectScore(graded.components.pronunciation, "pronunciation");
  ExpectScore(graded.components.pitch, "pitch");
  ExpectScore(graded.components.timing, "timing");
  ExpectScore(graded.components.intensity, "intensity");
  for (const std::vector<int>* scores : ScoresOf(graded)) {
    for (const int score : *scores) ExpectScore(score, "array");
  }
  EXPECT_EQ(graded.phoneme_pronunciation.size(), learner.phonemes.size());
  EXPECT_EQ(graded.syllable_pitch.size(), syllables);
  EXPECT_EQ(graded.syllable_timing.size(), syllables);
  EXPECT_EQ(graded.unnecessary_pause.size(), syllables);
  EXPECT_EQ(graded.words.total.size(), words);
  for (const int percent : graded.syllable_timing_percent) EXPECT_GE(percent, 0);
  for (const int percent : graded.syllable_intensity_percent) EXPECT_GE(percent, 0);
  EXPECT_TRUE(graded.goodness_factor >= 0.0 && graded.goodness_factor <= 1.0);
  EXPECT_TRUE(graded.prob_good_timing >= 0.0 && graded.prob_good_timing <= 1.0);
  for (const double trait : graded.timing_traits) EXPECT_TRUE(trait >= 0.0 && trait <= 1.0);

  if (learner.language == kLanguageChinese) {
    const auto graded_tones = static_cast<std::size_t>(pair.tutor.NumSyllables());
    ExpectLetters(graded.pitch_advice, "01234", graded_tones);
  } else {
    ExpectLetters(graded.pitch_advice, "-hHlL", syllables);
  }
  ExpectLetters(graded.timing_advice, "-lLsS", syllables);
  ExpectLetters(graded.intensity_advice, "-hHlL", syllables);
  ExpectContrasts(graded.word_pitch_contrast);
  ExpectContrasts(graded.word_timing_contrast);
  ExpectContrasts(graded.word_intensity_contrast);
}

// No score of `lower` is above that of `higher`.
void ExpectNowhereHigher(const GradedResult& lower, const GradedResult& higher) {
  EXPECT_LE(lower.total, higher.total);
  EXPECT_LE(lower.components.pronunciation, higher.components.pronunciation);
  EXPECT_LE(lower.components.pitch, higher.components.pitch);
  EXPECT_LE(lower.components.timing, higher.components.timing);
  EXPECT_LE(lower.components.intensity, higher.components.intensity);
  const Scores low = ScoresOf(lower);
  const Scores high = ScoresOf(higher);
  for (std::size_t i = 0; i < low.size(); ++i) {
    ASSERT_EQ(low[i]->size(), high[i]->size()) << i;
    for (std::size_t k = 0; k < low[i]->size(); ++k) EXPECT_LE((*low[i])[k], (*high[i])[k]) << i;
  }
}

template <typename Check>
void ForEachPair(std::uint32_t seed, const Check& check) {
  const test::MessageCapture messages;
  Generator random(seed);
  for (int number = 0; number < kPairs; ++number) {
    SCOPED_TRACE("pair " + std::to_string(number));
    check(MakePair(random));
    if (testing::Test::HasFailure()) return;
  }
}

TEST(GradingProperties, EverythingIsInItsRange) {
  int graded_pairs = 0;
  ForEachPair(1, [&](const Pair& pair) {
    GradedResult graded;
    const int total = Grade(pair, graded);
    ASSERT_GE(total, 0);
    EXPECT_EQ(total, graded.total);
    ExpectInRange(pair, graded);
    ++graded_pairs;
  });
  EXPECT_EQ(graded_pairs, kPairs);
}

TEST(GradingProperties, TheTutorHimselfHasNoFault) {
  ForEachPair(2, [](const Pair& pair) {
    const Pair same = {WithoutFaults(pair.learner), pair.learner, 1.0};
    GradedResult graded;
    ASSERT_GE(Grade(same, graded), 0);
    EXPECT_EQ(graded.components.pitch, 100);
    EXPECT_EQ(graded.components.timing, 100);
    EXPECT_EQ(graded.components.intensity, 100);
    for (const auto* scores :
         {&graded.syllable_pitch, &graded.syllable_timing, &graded.syllable_intensity}) {
      EXPECT_EQ(std::ranges::count(*scores, 100), std::ssize(*scores));
    }
    EXPECT_EQ(std::ranges::count(graded.unnecessary_pause, true), 0);
    EXPECT_EQ(graded.timing_advice.find_first_not_of('-'), std::string::npos);
    EXPECT_EQ(graded.intensity_advice.find_first_not_of('-'), std::string::npos);
  });
}

TEST(GradingProperties, GoodnessOfTheReadingOnlyLowers) {
  ForEachPair(3, [](const Pair& pair) {
    GradedResult graded;
    Grade(pair, graded);
    Pair certain = pair;
    certain.probability = 1.0;
    GradedResult unscaled;
    Grade(certain, unscaled);
    ExpectNowhereHigher(graded, unscaled);
    EXPECT_EQ(graded.syllable_pronunciation, unscaled.syllable_pronunciation);
    EXPECT_EQ(graded.pitch_advice, unscaled.pitch_advice);
  });
}

TEST(GradingProperties, FaultsOfSyllablesOnlyLower) {
  ForEachPair(4, [](const Pair& pair) {
    GradedResult graded;
    Grade(pair, graded);
    Pair faultless = pair;
    faultless.learner = WithoutFaults(pair.learner);
    GradedResult better;
    Grade(faultless, better);
    ExpectNowhereHigher(graded, better);
  });
}

// A pause that the tutor makes too costs nothing; one that he does not make never helps.
TEST(GradingProperties, PausesOnlyLowerTiming) {
  ForEachPair(5, [](const Pair& pair) {
    Pair paused = {WithoutFaults(pair.learner), pair.learner, 1.0};
    if (paused.learner.NumSyllables() < 2) return;
    const int at = paused.learner.syllable_start[1];
    for (int p = at; p < paused.learner.NumPhonemes(); ++p) {
      paused.learner.phoneme_start[static_cast<std::size_t>(p)] += 11026;
      paused.learner.phoneme_end[static_cast<std::size_t>(p)] += 11026;
    }
    const int tutors_pause = paused.tutor.PhonemeStart(at) - paused.tutor.PhonemeEnd(at - 1);
    GradedResult graded;
    ASSERT_GE(Grade(paused, graded), 0);
    EXPECT_EQ(graded.unnecessary_pause[1], tutors_pause <= 5512);
    if (tutors_pause <= 5512) {
      EXPECT_EQ(graded.syllable_timing[1], 0);
      EXPECT_LE(graded.components.timing, 70);
    }
    EXPECT_EQ(graded.components.pitch, 100);
    EXPECT_EQ(graded.components.intensity, 100);
  });
}

TEST(GradingProperties, GradingTwiceAndInBetweenGivesTheSame) {
  ForEachPair(6, [](const Pair& pair) {
    GradedResult once;
    Grade(pair, once);
    GradedResult twice;
    GradePronunciationOnly(
        pair.learner, [&] { return pair.probability; }, twice);
    Grade(pair, twice);
    EXPECT_EQ(once.total, twice.total);
    const Scores first = ScoresOf(once);
    const Scores second = ScoresOf(twice);
    for (std::size_t i = 0; i < first.size(); ++i) EXPECT_EQ(*first[i], *second[i]) << i;
    EXPECT_EQ(once.pitch_advice, twice.pitch_advice);
  });
}

// A syllable without a vowel ends a grading where the language has none such; what was made before
// stays in range.
TEST(GradingProperties, SyllablesWithoutVowelsEndAGradingCleanly) {
  int refused = 0;
  ForEachPair(7, [&](const Pair& pair) {
    Pair broken = pair;
    for (char& symbol : broken.learner.phonemes) symbol = 's';
    GradedResult graded;
    const int total = Grade(broken, graded);
    if (total >= 0) return;
    ++refused;
    EXPECT_EQ(total, -1);
    EXPECT_FALSE(graded.complete);
    for (const std::vector<int>* scores : ScoresOf(graded)) {
      for (const int score : *scores) ExpectScore(score, "array");
    }
  });
  EXPECT_GT(refused, 2000);
}

}  // namespace
}  // namespace veral3
