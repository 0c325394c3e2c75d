#pragma once

#include <cstdint>
#include <memory>

#include "common/Export.h"
#include "common/LanguageType.h"

namespace veral3 {
struct Annotation;
}

// Which phonemes a recording holds, without any sentence: each frame says the phoneme that it most
// resembles, and runs of frames become segments. A rough transcription, for recordings whose text
// is not known yet; AnalyzedAudio is far more exact where it is.
//
//   AnalyzedAudio::LoadModelFile("resources/EnglishFrame.model", kFrameModelEnglish);   // once
//
//   AnnotatedAudio audio;
//   if (audio.LoadAndAnnotate(num_samples, samples, kLanguageEnglish) == 0) {
//     for (int i = 0; i < audio.GetNumOfPhonemes(); ++i) {
//       use(audio.GetPhonemes()[i], audio.GetPhonemeStartSample(i), audio.GetPhonemeEndSample(i));
//     }
//   }
//
// Segments follow one another without gaps; a pause is the phoneme '-'. At most 4096 are kept: the
// last one then lasts to the end. A copy has the segments of its source and keeps them. Any number
// of threads may annotate with objects of their own.
class VERAL3_API AnnotatedAudio {
 public:
  // Annotates 16-bit mono samples at 22050 Hz, which stay the caller's and as they are: nothing is
  // filtered, though the models know voices without what lies below 80 Hz. What an
  // earlier recording left is gone either way. Returns 0, also for a recording of fewer than 551
  // samples, which has no frames; -1 after a message without samples, without a frame model of the
  // language, or for more than 2^31 - 1 samples. An unknown language is reported and English taken.
  int LoadAndAnnotate(unsigned long num_samples, const std::int16_t* samples,
                      LanguageType language);

  // One symbol of the language's phoneme set a segment, zero-terminated; never null, and valid
  // until the next annotation or the object's end. For reading: copies of the object share it.
  char* GetPhonemes();
  const char* GetPhonemes() const;
  int GetNumOfPhonemes() const;

  // [samples] The end of a segment is the start of the next, that of the last one the number of
  // samples. A negative index and one without a segment reads 0; one of 4096 or more reads what
  // 4095 does.
  int GetPhonemeStartSample(int i) const;
  int GetPhonemeEndSample(int i) const;

 private:
  std::shared_ptr<veral3::Annotation> m_annotation;  // null before the first one
  char m_no_phonemes[1] = {};
};
