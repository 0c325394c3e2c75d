#pragma once

#include "common/CString.h"
#include "common/Export.h"
#include "common/LanguageType.h"

// One recording that has been aligned to a sentence: which phonemes were spoken where, how they
// group into syllables and words, and the prosody of each syllable. A recording analysed now
// (AnalyzedAudio) and a stored one read back (SavedAlignedAudio) answer the same questions, so
// that either can be a tutor.
//
// Indices start at 0; times are samples at 22050 Hz from the start of the recording. An index out
// of range, and a value that no step has measured yet, reads 0 (empty text). Pauses are no
// phonemes: they show as a gap between the end of one phoneme and the start of the next.
//
// The ranges are those of a recording analysed now. A stored one answers what its record holds,
// which another program may have written: see storage/SavedAlignedAudio.h.
//
// An object is destroyed through its own class, never through this one.
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

class VERAL3_API AlignedAudio {
 public:
  AlignedAudio() = default;
  AlignedAudio(const AlignedAudio&) {}
  AlignedAudio(AlignedAudio&&) noexcept {}
  AlignedAudio& operator=(const AlignedAudio&) { return *this; }
  AlignedAudio& operator=(AlignedAudio&&) noexcept { return *this; }

  virtual LanguageType GetLanguageType() = 0;

  // Zero-terminated, one character of the language's phoneme set a phoneme. Owned by the object,
  // valid until its next alignment or loading, or its end.
  virtual const char* GetPhonemes() = 0;

  // The text of the sentence that the alignment chose, as it was given.
  virtual CString GetMatchedSentence() = 0;

  virtual int GetNumOfSamples() = 0;
  virtual int GetNumOfPhonemes() = 0;   // at most 512
  virtual int GetNumOfSyllables() = 0;  // at most 512
  virtual int GetNumOfWords() = 0;      // at most 256

  // [samples] The end is the start of whatever follows, a phoneme or a pause.
  virtual int GetPhonemeStartSampleNum(int phon) = 0;
  virtual int GetPhonemeEndSampleNum(int phon) = 0;
  virtual int GetUttStartSampleNum() = 0;  // start of the first phoneme
  virtual int GetUttEndSampleNum() = 0;    // end of the last phoneme

  // Index of the phoneme with which a syllable or a word begins.
  virtual int GetSyllableStartPosition(int syl) = 0;
  virtual int GetWordStartPosition(int word) = 0;

  // [Hz] The highest of the syllable's frames, 75 to 450; 0 where none is voiced.
  virtual int GetSyllablePitch(int syl) = 0;

  // Probability of a tone for a syllable, 0 to 1 where the model gives probabilities. `tone`: 1 to
  // 4, and 0 for the neutral tone, which is 5 in GetSyllableToneOrStress. All 0 for a syllable that
  // was not classified (its voice is broken in more than two pieces, or no model is loaded) and in
  // other languages than Chinese.
  virtual double GetSylToneProb(int syl, int tone) = 0;

  // The syllable's tone (Chinese, 1 to 4, and 5 for the neutral tone) or stress (English, 0 none, 1
  // primary, 2 secondary) in the pronunciation that was aligned, as the dictionary has it. In
  // Japanese it means nothing.
  virtual int GetSyllableToneOrStress(int syl) = 0;

  virtual int GetSyllableDuration(int syl) = 0;  // [samples]

  // Energy of the syllable's loudest frame: the sum of its 551 squared samples, each from -32768 to
  // 32767; 0 to 5.92e11. Not in dB.
  virtual double GetSyllableIntensity(int syl) = 0;

  virtual int GetUttNumOfPitchSegments() = 0;  // voiced stretches of the whole recording

  // Contours for display, from the start of the first phoneme to the end of the last. The waveform
  // has 100 points, mean magnitudes scaled so that the largest is 29490 (29489 where rounding has
  // it so): 0 to 29490. Pitch and intensity have 128 points, scaled so that each runs from 0 to
  // 229; one that never changes is all 0. Silence, and a sentence without words, give all 0.
  virtual int GetWaveY(int i) = 0;
  virtual int GetPitchContour(int i) = 0;
  virtual int GetIntensityContour(int i) = 0;

  // [Hz] Mean over the word's syllables, the unvoiced ones among them, cut to a whole number.
  virtual int GetWordPitch(int word) = 0;

  // The most prominent, second and third syllable by pitch, loudness and length, for highlighting;
  // -1 where there are fewer syllables. Of equals the later one counts for pitch, the earlier one
  // for loudness and length. Null arguments are passed over.
  void FindHighPitchSyallbles(int* first, int* second, int* third);
  void FindHighIntensitySyallbles(int* first, int* second, int* third);
  void FindLongDurationSyallbles(int* first, int* second, int* third);

  int GetUttAveragePitch();  // [Hz] mean over the syllables, cut to a whole number; 0 without any

 protected:
  ~AlignedAudio() = default;
};

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif
