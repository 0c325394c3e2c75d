#include <span>

#include "core/AnalysisState.h"
#include "core/AnalyzedAudio.h"

// The read side of AnalyzedAudio. Every index is checked against what the last alignment holds.
namespace {

using veral3::AlignmentResult;

const AlignmentResult& ResultOf(const veral3::AnalysisState* state) {
  static const AlignmentResult empty;
  return state && state->result ? *state->result : empty;
}

// The value at `index` of the first `count`, `otherwise` outside.
template <typename T>
T At(std::span<const T> values, int index, int count, T otherwise = T{}) {
  if (index < 0 || index >= count || static_cast<std::size_t>(index) >= values.size()) {
    return otherwise;
  }
  return values[static_cast<std::size_t>(index)];
}

template <std::size_t n>
int At(const std::array<std::int32_t, n>& values, int index, int count) {
  return At(std::span<const std::int32_t>(values), index, count);
}

double At(const std::vector<double>& values, int index) {
  return At(std::span<const double>(values), index, static_cast<int>(values.size()));
}

}  // namespace

double AnalyzedAudio::GetLogProbOfAlign() { return ResultOf(State()).log_probability; }

int AnalyzedAudio::GetMatchedSentenceIndex() { return ResultOf(State()).matched_sentence_index; }

CString AnalyzedAudio::GetWordOfMatchedSentence(int word) {
  const AlignmentResult& result = ResultOf(State());
  if (word < 0 || static_cast<std::size_t>(word) >= result.words.size()) return {};
  return result.words[static_cast<std::size_t>(word)];
}

int AnalyzedAudio::GetSizeOfPhonemeSet() {
  return State() && State()->phoneme_set ? State()->phoneme_set->GetSize() : 0;
}

double AnalyzedAudio::GetPhonMFCCProb(int phon) {
  return At(ResultOf(State()).phoneme_mfcc_prob, phon);
}

double AnalyzedAudio::GetPauseMFCCProb(int gap) {
  return At(ResultOf(State()).pause_mfcc_prob, gap);
}

LanguageType AnalyzedAudio::GetLanguageType() {
  return State() ? State()->language : LanguageType{};
}

const char* AnalyzedAudio::GetPhonemes() { return ResultOf(State()).phonemes.c_str(); }

CString AnalyzedAudio::GetMatchedSentence() {
  const int index = GetMatchedSentenceIndex();
  if (!State() || index < 0 || index >= State()->num_possible_sentences) return {};
  return State()->possible_sentences[static_cast<std::size_t>(index)];
}

int AnalyzedAudio::GetNumOfSamples() { return State() ? State()->num_samples : 0; }

int AnalyzedAudio::GetNumOfPhonemes() { return ResultOf(State()).NumPhonemes(); }

int AnalyzedAudio::GetNumOfSyllables() { return ResultOf(State()).num_syllables; }

int AnalyzedAudio::GetNumOfWords() { return ResultOf(State()).num_words; }

int AnalyzedAudio::GetPhonemeStartSampleNum(int phon) {
  const AlignmentResult& result = ResultOf(State());
  return At(result.phoneme_start, phon, result.NumPhonemes());
}

int AnalyzedAudio::GetPhonemeEndSampleNum(int phon) {
  const AlignmentResult& result = ResultOf(State());
  return At(result.phoneme_end, phon, result.NumPhonemes());
}

int AnalyzedAudio::GetUttStartSampleNum() { return GetPhonemeStartSampleNum(0); }

// Through the table, so that a derived class's phoneme count decides.
int AnalyzedAudio::GetUttEndSampleNum() { return GetPhonemeEndSampleNum(GetNumOfPhonemes() - 1); }

int AnalyzedAudio::GetSyllableStartPosition(int syl) {
  const AlignmentResult& result = ResultOf(State());
  return At(result.syllable_start, syl, result.num_syllables);
}

int AnalyzedAudio::GetWordStartPosition(int word) {
  const AlignmentResult& result = ResultOf(State());
  return At(result.word_start, word, result.num_words);
}

int AnalyzedAudio::GetSyllableToneOrStress(int syl) {
  const AlignmentResult& result = ResultOf(State());
  return At(result.syllable_mark, syl, result.num_syllables);
}

// Prosody is not measured yet.
int AnalyzedAudio::GetSyllablePitch(int) { return 0; }
double AnalyzedAudio::GetSylToneProb(int, int) { return 0.0; }
int AnalyzedAudio::GetSyllableDuration(int) { return 0; }
double AnalyzedAudio::GetSyllableIntensity(int) { return 0.0; }
int AnalyzedAudio::GetUttNumOfPitchSegments() { return 0; }
int AnalyzedAudio::GetWaveY(int) { return 0; }
int AnalyzedAudio::GetPitchContour(int) { return 0; }
int AnalyzedAudio::GetIntensityContour(int) { return 0; }
int AnalyzedAudio::GetWordPitch(int) { return 0; }
