#include "grading/RandomPairs.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "recognition/CPhonemeSet.h"

namespace veral3::test {
namespace {

constexpr int kFrame = 220;  // [samples]
constexpr std::size_t kWidth = 64;

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

Text MakeText(Generator& random, LanguageType language, bool odd = false) {
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
    const int consonants = odd && OneIn(random, 8) ? Below(random, 10) : Below(random, 3);
    const int before = Below(random, consonants + 1);
    for (int c = 0; c < before; ++c) text.phonemes += AnySymbol(random, *set, false);
    if (!odd || !OneIn(random, 30)) text.phonemes += AnySymbol(random, *set, true);
    if (odd && OneIn(random, 10)) text.phonemes += AnySymbol(random, *set, true);
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

// Values from everywhere, few of them equal.
void Spread(Generator& random, RecordingView& view) {
  for (int& pitch : view.syllable_pitch) pitch = 60 + Below(random, 340);
  for (int& duration : view.syllable_duration) duration = 1 + Below(random, 20000);
  for (double& intensity : view.syllable_intensity) intensity = Fraction(random) * 1e10;
  if (OneIn(random, 3)) {
    for (double& intensity : view.syllable_intensity) intensity *= intensity * 1e-10;
  }
}

}  // namespace

int Below(Generator& random, int limit) {
  return static_cast<int>(random() % static_cast<std::uint32_t>(limit));
}

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

Pair MakeOddPair(Generator& random) {
  const LanguageType language =
      Pick(random, {kLanguageEnglish, kLanguageChinese, kLanguageJapanese});
  const Text text = MakeText(random, language, true);
  Pair pair;
  pair.learner = Learner(random, Read(random, language, text), text);
  pair.tutor = Read(random, language, OneIn(random, 2) ? text : MakeText(random, language, true));
  if (!OneIn(random, 4)) {
    Spread(random, pair.learner);
    Spread(random, pair.tutor);
  }
  if (OneIn(random, 10)) pair.learner.words.num_syllables[0] = 0;
  if (OneIn(random, 20)) pair.learner.words = {};
  if (OneIn(random, 20)) pair.learner.goodness.pop_back();
  if (OneIn(random, 40)) pair.learner.syllable_start.clear();
  if (OneIn(random, 40)) {
    pair.tutor = {};
    pair.tutor.language = language;
  }
  if (OneIn(random, 40)) pair.tutor.language = Pick(random, {kLanguageEnglish, kLanguageChinese});
  if (OneIn(random, 3)) std::ranges::fill(pair.learner.goodness, 1.0);
  pair.probability = Pick(random, {1.0, Fraction(random), std::exp(-1.0), 1e-12, 0.0});
  return pair;
}

}  // namespace veral3::test
