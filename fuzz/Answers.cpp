#include "Answers.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>

#include "Require.h"
#include "common/MessageWriter.h"
#include "grading/GradedAudio.h"

namespace veral3::fuzz {
namespace {

constexpr int kBelow = -2;   // first index asked
constexpr int kBeyond = 12;  // indices asked behind the last

template <typename... Number>
double Sum(Number... numbers) {
  return (0.0 + ... + static_cast<double>(numbers));
}

// Keeps what was read from being thought unused.
void Use(double sum) { Require(!std::to_string(sum).empty()); }

void AskContours(AlignedAudio& audio) {
  for (int i = kBelow; i < 128 + kBeyond; ++i) {
    Require(audio.GetPitchContour(i) >= 0 && audio.GetPitchContour(i) <= 255);
    Require(audio.GetIntensityContour(i) >= 0 && audio.GetIntensityContour(i) <= 255);
    Require(audio.GetWaveY(i) >= 0 && audio.GetWaveY(i) <= 255 * 128);
  }
}

void AskTops(AlignedAudio& audio) {
  const int syllables = audio.GetNumOfSyllables();
  std::array<int, 3> top{};
  const auto check = [&] {
    Require(std::ranges::all_of(top, [&](int i) { return i >= -1 && i < syllables; }));
  };
  audio.FindHighPitchSyallbles(&top[0], &top[1], &top[2]);
  check();
  audio.FindHighIntensitySyallbles(&top[0], &top[1], &top[2]);
  check();
  audio.FindLongDurationSyallbles(&top[0], &top[1], &top[2]);
  check();
}

}  // namespace

void AskRecording(AlignedAudio& audio) {
  const int phonemes = audio.GetNumOfPhonemes();
  const int syllables = audio.GetNumOfSyllables();
  const int words = audio.GetNumOfWords();
  Require(phonemes >= 0 && syllables >= 0 && words >= 0);
  Require(std::strlen(audio.GetPhonemes()) <= static_cast<std::size_t>(phonemes) + 128);
  double sum = Sum(audio.GetUttStartSampleNum(), audio.GetUttEndSampleNum(),
                   audio.GetUttAveragePitch(), audio.GetNumOfSamples(),
                   audio.GetUttNumOfPitchSegments(), audio.GetMatchedSentence().GetLength());
  for (int i = kBelow; i < phonemes + kBeyond; ++i) {
    sum += Sum(audio.GetPhonemeStartSampleNum(i), audio.GetPhonemeEndSampleNum(i));
  }
  for (int i = kBelow; i < syllables + kBeyond; ++i) {
    sum += Sum(audio.GetSyllableStartPosition(i), audio.GetSyllablePitch(i),
               audio.GetSyllableToneOrStress(i), audio.GetSyllableDuration(i),
               audio.GetSyllableIntensity(i));
    for (int tone = -1; tone < 7; ++tone) sum += audio.GetSylToneProb(i, tone);
  }
  for (int i = kBelow; i < words + kBeyond; ++i) {
    sum += Sum(audio.GetWordStartPosition(i), audio.GetWordPitch(i));
  }
  AskContours(audio);
  AskTops(audio);
  Use(sum);
}

void AskAnalysis(AnalyzedAudio& audio) {
  AskRecording(audio);
  const int phonemes = audio.GetNumOfPhonemes();
  const int set_size = audio.GetSizeOfPhonemeSet();
  double sum = Sum(audio.GetLogProbOfAlign(), audio.GetMatchedSentenceIndex(),
                   audio.GetSpeechUttEnergyRatio(), audio.GetSignalNoiseRatio(),
                   audio.GetProbOfGoodAlignment());
  const char* const sounds_like = audio.GetSoundsLikePhonemes();
  for (int i = 0; i < phonemes && sounds_like != nullptr && sounds_like[i] != '\0'; ++i) {
    sum += sounds_like[i];
  }
  for (int i = kBelow; i < phonemes + kBeyond; ++i) {
    sum += audio.GetPhonMFCCProb(i) + audio.GetPauseMFCCProb(i) + audio.GetSoundsLikePhonProb(i);
    const double* const row = audio.GetPhonProbDistrArry(i);
    for (int k = 0; row != nullptr && k < set_size; ++k) sum += row[k];
  }
  for (int i = kBelow; i < audio.GetNumOfSyllables() + kBeyond; ++i) {
    sum += audio.ProbGoodSyllable(i) + audio.GetSylNumOfPitchSegments(i);
  }
  for (int i = kBelow; i < audio.GetNumOfWords() + kBeyond; ++i) {
    sum += audio.GetWordOfMatchedSentence(i).GetLength();
  }
  std::array<double, AnalyzedAudio::NUM_UTT_GOODNESS_FEATURES> features{};
  audio.PrepareUttGoodnessFeatures(features.data());
  for (const double feature : features) sum += feature;
  Use(sum);

  audio.PrintAlignmentResult();
  std::ostringstream lines;
  std::ostringstream labels;
  audio.SaveUttGoodnessTrainData(true, lines, labels);
  audio.SaveSylCTToneData(lines, labels);
  audio.SavePhonMFCCDataToFiles(lines, labels);
  audio.SaveFrameMFCCDataToFiles(lines, labels, 0.1);
  audio.SaveAdjustedFrameMFCCDataToFiles(lines, labels);
  audio.SaveSylBadTraits(lines);
  audio.SavePhonBadTraits(lines);
  audio.SaveSylPauseBadTraits(lines);
}

void AskScores(GradedAudio& audio, bool sound_models) {
  const auto score = [&](int value) { Require(!sound_models || (value >= 0 && value <= 100)); };
  const auto letter = [&](char value, std::string_view documented) {
    Require(value == '\0' || documented.find(value) != std::string_view::npos);
  };
  score(audio.GetTotalScore());
  score(audio.GetPronunScore());
  score(audio.GetPitchScore());
  score(audio.GetTimingScore());
  score(audio.GetIntensityScore());
  for (int i = kBelow; i < audio.GetNumOfPhonemes() + kBeyond; ++i) {
    score(audio.GetPhonemePonunScore(i));
  }
  const bool chinese = audio.GetLanguageType() == kLanguageChinese;
  for (int i = kBelow; i < audio.GetNumOfSyllables() + kBeyond; ++i) {
    score(audio.GetSyllablePronunScore(i));
    score(audio.GetSyllablePitchScore(i));
    score(audio.GetSyllableTimingScore(i));
    score(audio.GetSyllableIntensityScore(i));
    score(audio.GetSyllableTimingPercent(i));
    letter(audio.GetSyllablePitchAdvice(i), chinese ? "-01234" : "-hHlL");
    letter(audio.GetSyllableTimingAdvice(i), "-lLsS");
    letter(audio.GetSyllableIntensityAdvice(i), "-hHlL");
    audio.GetSyllableUnnecessaryPause(i);
    Require(audio.GetCorrectTone(i) >= 0 && audio.GetCorrectTone(i) <= 4);
    Require(audio.GetStudentTone(i) >= 0 && audio.GetStudentTone(i) <= 4);
  }
  double sum = 0.0;
  for (int i = kBelow; i < audio.GetNumOfWords() + kBeyond; ++i) {
    score(audio.GetWordPronunScore(i));
    score(audio.GetWordPitchScore(i));
    score(audio.GetWordTimingScore(i));
    score(audio.GetWordIntensityScore(i));
    score(audio.GetWordScore(i));
    score(audio.GetWordIntensityPercent(i));
    sum += audio.GetWordPitchConstrast(i) + audio.GetWordTimingConstrast(i) +
           audio.GetWordIntensityConstrast(i);
  }
  Use(sum);
  audio.PrintScores();
  static std::ofstream nowhere("/dev/null");
  audio.SaveUttMismatchTraits(&nowhere);
  audio.SaveSylMismatchTraits(&nowhere);
  audio.SaveWordMismatchTraits(&nowhere);
}

}  // namespace veral3::fuzz
