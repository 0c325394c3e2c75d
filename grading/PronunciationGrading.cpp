#include "grading/PronunciationGrading.h"

#include <algorithm>
#include <numeric>

#include "common/MessageWriter.h"
#include "grading/PhonProbGrader.h"
#include "grading/Scores.h"

namespace veral3 {
namespace {

constexpr std::size_t kMostPhonemes = 7;  // in a syllable

// Scores of phonemes of one kind.
struct Group {
  int sum = 0;
  int count = 0;

  void Add(int score) {
    sum += score;
    ++count;
  }
  int Average() const { return count > 0 ? sum / count : 0; }
};

bool MayLackVowel(LanguageType language, int consonants) {
  if (language == kLanguageJapanese) return consonants == 1;
  return language == kLanguageEnglish && consonants >= 1;
}

}  // namespace

std::vector<int> GradePhonemes(const LearnerView& learner) {
  std::vector<int> scores(static_cast<std::size_t>(learner.NumPhonemes()), 0);
  const PhonProbGrader* grader = PhonProbGraderOf(learner.language);
  for (int i = 0; i < learner.NumPhonemes(); ++i) {
    if (!grader) {
      // Named after the operation that grades a single phoneme.
      Message(MessageStream::kError)
          << "Unkonwn Language Type in GradedAudio::GradePhonemePronunMFCC()\n";
      continue;
    }
    const auto at = static_cast<std::size_t>(i);
    scores[at] = grader->ComputePhonScore(learner.phonemes[at], learner.Distribution(i));
  }
  return scores;
}

int CombineSyllable(const CPhonemeSet& set, LanguageType language, std::string_view phonemes,
                    std::span<const int> scores) {
  if (phonemes.size() > kMostPhonemes) {
    Message(MessageStream::kError)
        << "WARNING! Too many phonemes in a syllable:" << phonemes.size() << "\n";
    phonemes = phonemes.substr(0, kMostPhonemes);
  }
  Group onset, vowels, coda;
  for (std::size_t i = 0; i < phonemes.size(); ++i) {
    const int score = i < scores.size() ? scores[i] : 0;
    if (set.IsVowel(static_cast<wchar_t>(static_cast<unsigned char>(phonemes[i])))) {
      vowels.Add(score);
    } else if (vowels.count == 0) {
      onset.Add(score);
    } else {
      coda.Add(score);
    }
  }
  if (vowels.count == 0) return MayLackVowel(language, onset.count) ? onset.Average() : -1;
  const int v = vowels.Average();
  if (onset.count > 0 && coda.count > 0) {
    return Truncate(0.25 * onset.Average() + 0.5 * v + 0.25 * coda.Average());
  }
  if (onset.count > 0) return Truncate(0.4 * onset.Average() + 0.6 * v);
  if (coda.count > 0) return Truncate(0.4 * coda.Average() + 0.6 * v);
  return v;
}

SyllablePronunciation GradeSyllables(const LearnerView& learner, const CPhonemeSet& set,
                                     std::span<const int> phoneme_scores) {
  SyllablePronunciation result;
  const int num_syllables = learner.NumSyllables();
  result.score.assign(static_cast<std::size_t>(num_syllables), 0);
  const std::string_view phonemes(learner.phonemes);
  for (int s = 0; s < num_syllables; ++s) {
    const int begin = std::clamp(learner.SyllableStart(s), 0, learner.NumPhonemes());
    const int next = s + 1 < num_syllables ? learner.SyllableStart(s + 1) : learner.NumPhonemes();
    const auto first = static_cast<std::size_t>(begin);
    const auto count =
        static_cast<std::size_t>(std::clamp(next, begin, learner.NumPhonemes()) - begin);
    const int score = CombineSyllable(set, learner.language, phonemes.substr(first, count),
                                      phoneme_scores.subspan(first, count));
    if (score < 0) {
      result.failed = true;
      result.score.resize(static_cast<std::size_t>(s));
      return result;
    }
    result.score[static_cast<std::size_t>(s)] = Scaled(score, learner.Goodness(s));
  }
  return result;
}

int UtterancePronunciation(std::span<const int> syllable_scores) {
  if (syllable_scores.empty()) return -1;
  const long long sum = std::accumulate(syllable_scores.begin(), syllable_scores.end(), 0LL);
  return AtLeastZero(static_cast<int>(sum / static_cast<long long>(syllable_scores.size())));
}

}  // namespace veral3
