#include "grading/RecordingView.h"

#include <algorithm>

namespace veral3 {

RecordingView ViewOf(AlignedAudio& audio) {
  RecordingView view;
  view.language = audio.GetLanguageType();
  const char* phonemes = audio.GetPhonemes();
  const std::size_t length = phonemes ? std::char_traits<char>::length(phonemes) : 0;
  const std::size_t count =
      std::min(length, static_cast<std::size_t>(std::max(audio.GetNumOfPhonemes(), 0)));
  view.phonemes.assign(phonemes ? phonemes : "", count);
  for (int i = 0; i < view.NumPhonemes(); ++i) {
    view.phoneme_start.push_back(audio.GetPhonemeStartSampleNum(i));
    view.phoneme_end.push_back(audio.GetPhonemeEndSampleNum(i));
  }
  for (int i = 0; i < audio.GetNumOfSyllables(); ++i) {
    view.syllable_start.push_back(audio.GetSyllableStartPosition(i));
    view.syllable_pitch.push_back(audio.GetSyllablePitch(i));
    view.syllable_duration.push_back(audio.GetSyllableDuration(i));
    view.syllable_intensity.push_back(audio.GetSyllableIntensity(i));
    ToneRow& row = view.tone_probability.emplace_back();
    for (int k = 0; k < kToneClasses; ++k) {
      row[static_cast<std::size_t>(k)] = audio.GetSylToneProb(i, k);
    }
  }
  view.pitch_segments = audio.GetUttNumOfPitchSegments();
  return view;
}

}  // namespace veral3
