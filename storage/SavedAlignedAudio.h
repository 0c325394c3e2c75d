#pragma once

#include <memory>

#include "core/AlignedAudio.h"
#include "storage/HLYFile.h"

namespace veral3 {
struct SavedRecording;
}

// A recording that was aligned and analysed earlier, read back from its alignment record: a tutor
// that need not be analysed again.
//
//   SavedAlignedAudio tutor(kLanguageEnglish);
//   if (tutor.LoadFromHLY(&file) == 0) learner.GradeAgainstTutor(&tutor);
//
// Answers what the analysis answered, as exactly as the record keeps it (see
// docs/formats/alignment-record.md): times in whole frames, intensities in single precision, tone
// probabilities in hundredths, the waveform in steps of 128. Tone or stress, and tone
// probabilities, are kept for Chinese only, and read 0 elsewhere. A syllable of more than 32767
// samples reads a wrong duration, a phoneme beyond 5.4 minutes a wrong time. An index beyond the
// counts reads 0, as everything does before a record is loaded. Copies are independent.
//
// Nothing but counts and the finiteness of intensities is checked: of a record that something else
// wrote, positions, pitches, durations, tones and intensities may be any number of their width,
// negative ones too.
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

class VERAL3_API SavedAlignedAudio : public AlignedAudio {
 public:
  // The language is what is said here: records do not know theirs.
  explicit SavedAlignedAudio(LanguageType language);
  SavedAlignedAudio(const SavedAlignedAudio& other);
  SavedAlignedAudio& operator=(const SavedAlignedAudio& other);
  ~SavedAlignedAudio();

  // Takes over the sentence and the record of `file`, which may be gone afterwards. Returns 0, or
  // -1 with a message: for a version below 5, a record shorter than 2544 bytes (a longer one is
  // warned of and read), counts that no record can have, a syllable's intensity that is infinite or
  // not a number, or a null argument. What was loaded before then stays, but for the sentence,
  // which is taken before the record is looked at.
  int LoadFromHLY(HLYFile* file);

  // Says every value, in messages for standard error. Lines that begin with an operation's name
  // hold what the operation answers, those that begin with m_ what the record holds.
  void DumpData();

  LanguageType GetLanguageType() override;
  const char* GetPhonemes() override;
  CString GetMatchedSentence() override;
  int GetNumOfSamples() override;
  int GetNumOfPhonemes() override;   // at most 128
  int GetNumOfSyllables() override;  // at most 64
  int GetNumOfWords() override;      // at most 64
  int GetPhonemeStartSampleNum(int phon) override;
  int GetPhonemeEndSampleNum(int phon) override;
  int GetUttStartSampleNum() override;
  int GetUttEndSampleNum() override;
  int GetSyllableStartPosition(int syl) override;
  int GetWordStartPosition(int word) override;
  int GetSyllablePitch(int syl) override;
  double GetSylToneProb(int syl, int tone) override;  // in hundredths
  int GetSyllableToneOrStress(int syl) override;
  int GetSyllableDuration(int syl) override;
  double GetSyllableIntensity(int syl) override;
  int GetUttNumOfPitchSegments() override;
  int GetWaveY(int i) override;             // 0 to 32640; to 29440 in records of ours
  int GetPitchContour(int i) override;      // 0 to 255; to 229 in records of ours
  int GetIntensityContour(int i) override;  // likewise
  int GetWordPitch(int word) override;

 private:
  const veral3::SavedRecording& Recording() const;  // an empty one before the first

  LanguageType m_nLanguage;
  CString m_strMatchedSentence;
  std::shared_ptr<const veral3::SavedRecording> m_recording;
};

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif
