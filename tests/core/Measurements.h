#pragma once

#include <map>
#include <string>
#include <vector>

#include "core/AnalyzedAudio.h"

namespace veral3::test {

// What an analysis measures, by kind, as its getters tell it.
using Measurements = std::map<std::string, std::vector<double>>;

inline Measurements MeasurementsOf(AnalyzedAudio& audio) {
  Measurements all;
  for (int s = 0; s < audio.GetNumOfSyllables(); ++s) {
    all["pitch"].push_back(audio.GetSyllablePitch(s));
    all["segments"].push_back(audio.GetSylNumOfPitchSegments(s));
    all["duration"].push_back(audio.GetSyllableDuration(s));
    all["intensity"].push_back(audio.GetSyllableIntensity(s));
    all["goodness"].push_back(audio.ProbGoodSyllable(s));
    for (int tone = 0; tone < 5; ++tone) all["tones"].push_back(audio.GetSylToneProb(s, tone));
  }
  for (int w = 0; w < audio.GetNumOfWords(); ++w) {
    all["word pitch"].push_back(audio.GetWordPitch(w));
  }
  for (int p = 0; p < audio.GetNumOfPhonemes(); ++p) {
    all["sounds like"].push_back(audio.GetSoundsLikePhonemes()[p]);
    all["sounds like probability"].push_back(audio.GetSoundsLikePhonProb(p));
    const double* const row = audio.GetPhonProbDistrArry(p);
    all["distribution"].insert(all["distribution"].end(), row, row + 64);
  }
  for (int i = 0; i < 128; ++i) {
    all["pitch contour"].push_back(audio.GetPitchContour(i));
    all["intensity contour"].push_back(audio.GetIntensityContour(i));
  }
  for (int i = 0; i < 100; ++i) all["waveform"].push_back(audio.GetWaveY(i));
  all["utterance segments"].push_back(audio.GetUttNumOfPitchSegments());
  all["energy ratio"].push_back(audio.GetSpeechUttEnergyRatio());
  all["noise ratio"].push_back(audio.GetSignalNoiseRatio());
  return all;
}

}  // namespace veral3::test
