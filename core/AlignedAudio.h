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
  // valid until its next analysis or its end.
  virtual const char* GetPhonemes() = 0;

  // The text of the sentence that the alignment chose.
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

  virtual int GetSyllablePitch(int syl) = 0;  // [Hz] highest of the syllable, 0 unvoiced

  // Probability of a tone class for a syllable; Chinese only.
  virtual double GetSylToneProb(int syl, int tone) = 0;

  // The syllable's tone (Chinese, 1 to 5) or stress (English, 0 to 2) in the pronunciation chosen.
  virtual int GetSyllableToneOrStress(int syl) = 0;

  virtual int GetSyllableDuration(int syl) = 0;      // [samples]
  virtual double GetSyllableIntensity(int syl) = 0;  // highest frame energy of the syllable

  virtual int GetUttNumOfPitchSegments() = 0;

  // Contours for display.
  virtual int GetWaveY(int i) = 0;             // i in 0..99, 0 to 29490
  virtual int GetPitchContour(int i) = 0;      // i in 0..127, 0 to 229
  virtual int GetIntensityContour(int i) = 0;  // i in 0..127, 0 to 229

  virtual int GetWordPitch(int word) = 0;  // [Hz] mean over the word's syllables

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
