#include "Readings.h"

#include <span>
#include <type_traits>
#include <utility>
#include <vector>

#include "recognition/CPhonemeSet.h"
#include "recognition/Models.h"

namespace veral3::test {
namespace {

class Bytes {
 public:
  template <typename T>
  requires std::is_arithmetic_v<T> || std::is_enum_v<T>
  void Put(T value) { m_all.append(reinterpret_cast<const char*>(&value), sizeof value); }
  void Put(std::string_view text) {
    Put(text.size());
    m_all += text;
  }
  void Put(const CString& text) { Put(std::string_view(text.Utf8())); }

  // value(i) for i below `count` and a few beyond.
  template <typename Value>
  void List(int count, Value value) {
    for (int i = 0; i < count + 2; ++i) Put(value(i));
  }

  std::string Take() { return std::move(m_all); }

 private:
  std::string m_all;
};

void PutAligned(Bytes& out, AlignedAudio& audio) {
  out.Put(audio.GetLanguageType());
  out.Put(std::string_view(audio.GetPhonemes()));
  out.Put(audio.GetMatchedSentence());
  for (const int value :
       {audio.GetNumOfSamples(), audio.GetNumOfPhonemes(), audio.GetNumOfSyllables(),
        audio.GetNumOfWords(), audio.GetUttStartSampleNum(), audio.GetUttEndSampleNum(),
        audio.GetUttNumOfPitchSegments(), audio.GetUttAveragePitch()}) {
    out.Put(value);
  }
  out.List(audio.GetNumOfPhonemes(), [&](int i) { return audio.GetPhonemeStartSampleNum(i); });
  out.List(audio.GetNumOfPhonemes(), [&](int i) { return audio.GetPhonemeEndSampleNum(i); });
  const int syllables = audio.GetNumOfSyllables();
  out.List(syllables, [&](int i) { return audio.GetSyllableStartPosition(i); });
  out.List(syllables, [&](int i) { return audio.GetSyllablePitch(i); });
  out.List(syllables, [&](int i) { return audio.GetSyllableToneOrStress(i); });
  out.List(syllables, [&](int i) { return audio.GetSyllableDuration(i); });
  out.List(syllables, [&](int i) { return audio.GetSyllableIntensity(i); });
  for (int tone = 0; tone < 5; ++tone) {
    out.List(syllables, [&](int i) { return audio.GetSylToneProb(i, tone); });
  }
  out.List(audio.GetNumOfWords(), [&](int i) { return audio.GetWordStartPosition(i); });
  out.List(audio.GetNumOfWords(), [&](int i) { return audio.GetWordPitch(i); });
  out.List(100, [&](int i) { return audio.GetWaveY(i); });
  out.List(128, [&](int i) { return audio.GetPitchContour(i); });
  out.List(128, [&](int i) { return audio.GetIntensityContour(i); });
  int top[9] = {};
  audio.FindHighPitchSyallbles(top, top + 1, top + 2);
  audio.FindHighIntensitySyallbles(top + 3, top + 4, top + 5);
  audio.FindLongDurationSyallbles(top + 6, top + 7, top + 8);
  for (const int syllable : top) out.Put(syllable);
}

void PutAnalysed(Bytes& out, AnalyzedAudio& audio) {
  out.Put(audio.GetMatchedSentenceIndex());
  out.Put(audio.GetLogProbOfAlign());
  out.Put(audio.GetSpeechUttEnergyRatio());
  out.Put(audio.GetSignalNoiseRatio());
  out.Put(std::string_view(audio.GetSoundsLikePhonemes()));
  out.List(audio.GetNumOfWords(), [&](int i) { return audio.GetWordOfMatchedSentence(i); });
  const int phonemes = audio.GetNumOfPhonemes();
  out.List(phonemes, [&](int i) { return audio.GetPhonMFCCProb(i); });
  out.List(phonemes + 1, [&](int i) { return audio.GetPauseMFCCProb(i); });
  out.List(phonemes, [&](int i) { return audio.GetSoundsLikePhonProb(i); });
  for (int i = 0; i < phonemes; ++i) {
    for (int k = 0; k < 64; ++k) out.Put(audio.GetPhonProbDistrArry(i)[k]);
  }
  out.List(audio.GetNumOfSyllables(), [&](int i) { return audio.ProbGoodSyllable(i); });
  out.List(audio.GetNumOfSyllables(), [&](int i) { return audio.GetSylNumOfPitchSegments(i); });
  double features[AnalyzedAudio::NUM_UTT_GOODNESS_FEATURES] = {};
  audio.PrepareUttGoodnessFeatures(features);
  for (const double feature : features) out.Put(feature);
}

void PutScores(Bytes& out, GradedAudio& audio) {
  for (const int score : {audio.GetTotalScore(), audio.GetPronunScore(), audio.GetPitchScore(),
                          audio.GetTimingScore(), audio.GetIntensityScore()}) {
    out.Put(score);
  }
  out.List(audio.GetNumOfPhonemes(), [&](int i) { return audio.GetPhonemePonunScore(i); });
  const int syllables = audio.GetNumOfSyllables();
  out.List(syllables, [&](int i) { return audio.GetSyllablePronunScore(i); });
  out.List(syllables, [&](int i) { return audio.GetSyllablePitchScore(i); });
  out.List(syllables, [&](int i) { return audio.GetSyllableTimingScore(i); });
  out.List(syllables, [&](int i) { return audio.GetSyllableIntensityScore(i); });
  out.List(syllables, [&](int i) { return audio.GetSyllableUnnecessaryPause(i); });
  out.List(syllables, [&](int i) { return audio.GetSyllablePitchAdvice(i); });
  out.List(syllables, [&](int i) { return audio.GetSyllableTimingAdvice(i); });
  out.List(syllables, [&](int i) { return audio.GetSyllableIntensityAdvice(i); });
  out.List(syllables, [&](int i) { return audio.GetCorrectTone(i); });
  out.List(syllables, [&](int i) { return audio.GetStudentTone(i); });
  const int words = audio.GetNumOfWords();
  out.List(words, [&](int i) { return audio.GetWordPronunScore(i); });
  out.List(words, [&](int i) { return audio.GetWordPitchScore(i); });
  out.List(words, [&](int i) { return audio.GetWordTimingScore(i); });
  out.List(words, [&](int i) { return audio.GetWordIntensityScore(i); });
  out.List(words, [&](int i) { return audio.GetWordScore(i); });
  out.List(words, [&](int i) { return audio.GetWordPitchConstrast(i); });
  out.List(words, [&](int i) { return audio.GetWordTimingConstrast(i); });
  out.List(words, [&](int i) { return audio.GetWordIntensityConstrast(i); });
}

void PutAll(Bytes& out, std::span<const double> values) {
  for (const double value : values) out.Put(value);
}

}  // namespace

std::string ReadingsOf(GradedAudio& audio) {
  Bytes out;
  PutAligned(out, audio);
  PutAnalysed(out, audio);
  PutScores(out, audio);
  return out.Take();
}

std::string ReadingsOf(SavedAlignedAudio& audio) {
  Bytes out;
  PutAligned(out, audio);
  return out.Take();
}

std::string ReadingsOf(const AnnotatedAudio& audio) {
  Bytes out;
  out.Put(std::string_view(audio.GetPhonemes()));
  out.List(audio.GetNumOfPhonemes(), [&](int i) { return audio.GetPhonemeStartSample(i); });
  out.List(audio.GetNumOfPhonemes(), [&](int i) { return audio.GetPhonemeEndSample(i); });
  return out.Take();
}

std::string ReadingsOfModel(ModelFileType type) {
  Bytes out;
  std::vector<double> outputs(512);
  if (type == kToneModelChinese) {
    const std::vector<int> features(DLCTToneClassifier::kInputs, 3);
    out.Put(ToneClassifier().ClassifyTone(features.data(), outputs.data()));
  } else if (type == kUttGoodnessModel) {
    const std::vector<double> features(UGClassifier::kInputs, 0.25);
    outputs[0] = GoodnessClassifier().ClassifyUtteranceGoodness(features.data());
  } else {
    const bool frame = type <= kFrameModelJapanese;
    const auto language =
        static_cast<LanguageType>((frame ? type : type - kPhonemeModelEnglish) + 1);
    const CPhonemeSet& set = *PhonemeSetOf(language);
    constexpr int kFrameInputs = 195;
    constexpr int kPhonemeInputs = 624;
    const std::vector<float> input(kPhonemeInputs, 0.125F);
    out.Put(frame
                ? FrameClassifierOf(set.GetIdentifier())
                      ->ClassifyFrame(input.data(), kFrameInputs, outputs.data(), 3 * set.GetSize())
                : PhonClassifierOf(set.GetIdentifier())
                      ->ClassifyPhon(input.data(), kPhonemeInputs, outputs.data(), set.GetSize()));
  }
  PutAll(out, outputs);
  return out.Take();
}

}  // namespace veral3::test
