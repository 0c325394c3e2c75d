#include <array>
#include <span>
#include <vector>

#include "core/AnalysisState.h"
#include "core/AnalyzedAudio.h"

// The read side of AnalyzedAudio. Every index is checked against what the last alignment holds.
namespace {

using veral3::AlignmentOf;
using veral3::AlignmentResult;
using veral3::GoodnessOf;
using veral3::PronunciationOf;
using veral3::ProsodyOf;

// The value at `index` of the first `count`, 0 outside.
template <typename T>
T At(std::span<const T> values, int index, int count) {
  if (index < 0 || index >= count || static_cast<std::size_t>(index) >= values.size()) return T{};
  return values[static_cast<std::size_t>(index)];
}

template <typename T>
T At(std::span<const T> values, int index) {
  return At(values, index, static_cast<int>(values.size()));
}

template <typename T>
T At(const std::vector<T>& values, int index) {
  return At(std::span<const T>(values), index);
}

template <std::size_t n>
int At(const std::array<std::int32_t, n>& values, int index, int count) {
  return At(std::span<const std::int32_t>(values), index, count);
}

}  // namespace

double AnalyzedAudio::GetLogProbOfAlign() { return AlignmentOf(State()).log_probability; }

int AnalyzedAudio::GetMatchedSentenceIndex() { return AlignmentOf(State()).matched_sentence_index; }

CString AnalyzedAudio::GetWordOfMatchedSentence(int word) {
  const AlignmentResult& result = AlignmentOf(State());
  if (word < 0 || static_cast<std::size_t>(word) >= result.words.size()) return {};
  return result.words[static_cast<std::size_t>(word)];
}

int AnalyzedAudio::GetSizeOfPhonemeSet() {
  return State() && State()->phoneme_set ? State()->phoneme_set->GetSize() : 0;
}

double AnalyzedAudio::GetPhonMFCCProb(int phon) {
  return At(AlignmentOf(State()).phoneme_mfcc_prob, phon);
}

double AnalyzedAudio::GetPauseMFCCProb(int gap) {
  return At(AlignmentOf(State()).pause_mfcc_prob, gap);
}

LanguageType AnalyzedAudio::GetLanguageType() {
  return State() ? State()->language : LanguageType{};
}

const char* AnalyzedAudio::GetPhonemes() { return AlignmentOf(State()).phonemes.c_str(); }

CString AnalyzedAudio::GetMatchedSentence() {
  const int index = GetMatchedSentenceIndex();
  if (!State() || index < 0 || index >= State()->num_possible_sentences) return {};
  return State()->possible_sentences[static_cast<std::size_t>(index)];
}

int AnalyzedAudio::GetNumOfSamples() { return State() ? State()->num_samples : 0; }

int AnalyzedAudio::GetNumOfPhonemes() { return AlignmentOf(State()).NumPhonemes(); }

int AnalyzedAudio::GetNumOfSyllables() { return AlignmentOf(State()).num_syllables; }

int AnalyzedAudio::GetNumOfWords() { return AlignmentOf(State()).num_words; }

int AnalyzedAudio::GetPhonemeStartSampleNum(int phon) {
  const AlignmentResult& result = AlignmentOf(State());
  return At(result.phoneme_start, phon, result.NumPhonemes());
}

int AnalyzedAudio::GetPhonemeEndSampleNum(int phon) {
  const AlignmentResult& result = AlignmentOf(State());
  return At(result.phoneme_end, phon, result.NumPhonemes());
}

int AnalyzedAudio::GetUttStartSampleNum() { return GetPhonemeStartSampleNum(0); }

// Through the table, so that a derived class's phoneme count decides.
int AnalyzedAudio::GetUttEndSampleNum() { return GetPhonemeEndSampleNum(GetNumOfPhonemes() - 1); }

int AnalyzedAudio::GetSyllableStartPosition(int syl) {
  const AlignmentResult& result = AlignmentOf(State());
  return At(result.syllable_start, syl, result.num_syllables);
}

int AnalyzedAudio::GetWordStartPosition(int word) {
  const AlignmentResult& result = AlignmentOf(State());
  return At(result.word_start, word, result.num_words);
}

int AnalyzedAudio::GetSyllableToneOrStress(int syl) {
  const AlignmentResult& result = AlignmentOf(State());
  return At(result.syllable_mark, syl, result.num_syllables);
}

const char* AnalyzedAudio::GetSoundsLikePhonemes() {
  static constexpr std::array<char, veral3::kMaxPhonemes + 1> kNone{};
  const std::string& symbols = PronunciationOf(State()).phonemes.sounds_like;
  return static_cast<int>(symbols.size()) < AlignmentOf(State()).NumPhonemes() ? kNone.data()
                                                                               : symbols.c_str();
}

double AnalyzedAudio::GetSoundsLikePhonProb(int phon) {
  return At(PronunciationOf(State()).phonemes.sounds_like_prob, phon);
}

const double* AnalyzedAudio::GetPhonProbDistrArry(int phon) {
  static constexpr std::array<double, veral3::kDistributionWidth> kNone{};
  const auto row = PronunciationOf(State()).phonemes.Row(phon);
  return row.size() < kNone.size() ? kNone.data() : row.data();
}

double AnalyzedAudio::ProbGoodSyllable(int syl) {
  return At(GoodnessOf(State()).good_syllable, syl);
}

int AnalyzedAudio::GetSylNumOfPitchSegments(int syl) {
  const auto& segments = ProsodyOf(State()).pitch.segments;
  if (syl < 0 || static_cast<std::size_t>(syl) >= segments.size()) return 0;
  return segments[static_cast<std::size_t>(syl)].segments;
}

double AnalyzedAudio::GetSpeechUttEnergyRatio() {
  return ProsodyOf(State()).intensity.speech_to_utterance;
}

double AnalyzedAudio::GetSignalNoiseRatio() { return State() ? State()->signal_noise_ratio : 0.0; }

int AnalyzedAudio::GetSyllablePitch(int syl) { return At(ProsodyOf(State()).pitch.syllable, syl); }

double AnalyzedAudio::GetSylToneProb(int syl, int tone) {
  const auto& tones = ProsodyOf(State()).pitch.tones;
  if (syl < 0 || static_cast<std::size_t>(syl) >= tones.size()) return 0.0;
  if (tone < 0 || tone >= veral3::kToneClassCount) return 0.0;
  return tones[static_cast<std::size_t>(syl)][static_cast<std::size_t>(tone)];
}

int AnalyzedAudio::GetSyllableDuration(int syl) {
  return At(ProsodyOf(State()).syllable_duration, syl);
}

double AnalyzedAudio::GetSyllableIntensity(int syl) {
  return At(ProsodyOf(State()).intensity.syllable, syl);
}

int AnalyzedAudio::GetUttNumOfPitchSegments() {
  return ProsodyOf(State()).utterance_pitch_segments;
}

int AnalyzedAudio::GetWaveY(int i) {
  return State() && State()->waveform ? At(std::span<const int>(*State()->waveform), i) : 0;
}

int AnalyzedAudio::GetPitchContour(int i) {
  return At(std::span<const int>(ProsodyOf(State()).pitch_contour), i);
}

int AnalyzedAudio::GetIntensityContour(int i) {
  return At(std::span<const int>(ProsodyOf(State()).intensity_contour), i);
}

int AnalyzedAudio::GetWordPitch(int word) {
  const auto& prosody = ProsodyOf(State());
  return veral3::WordPitch(prosody.words, prosody.pitch.syllable, word);
}
