#pragma once

#include <cstdint>
#include <iosfwd>
#include <memory>

#include "core/AlignedAudio.h"
#include "recognition/ModelFileType.h"

namespace veral3 {
struct AnalysisState;
}

// One recording of a speaker who reads a sentence, aligned and measured.
//
//   AnalyzedAudio::LoadResourceInFolderPath("resources/");   // once a process; mind the slash
//   AnalyzedAudio::LoadModelFile("resources/EnglishFrame.model", kFrameModelEnglish);
//
//   AnalyzedAudio audio(kLanguageEnglish);
//   audio.AddPossibleSentence(L"Good morning");              // up to 8 candidates
//   int matched = audio.Align(num_samples, samples);         // index of the sentence, or negative
//   if (matched >= 0) {
//     for (int i = 0; i < audio.GetNumOfPhonemes(); ++i) {
//       use(audio.GetPhonemes()[i], audio.GetPhonemeStartSampleNum(i));
//     }
//   }
//
// Samples are 16 bit, mono, 22050 Hz, at least 551 of them; they stay the caller's. A failure
// writes a message (see common/Messages.h) and returns a negative number, as a rule: where it does
// so silently, the operation says it. Nothing throws. Memory that runs out is a failure like any
// other. Two failures end the process instead; common/Messages.h tells which, and how an
// application stays alive.
//
// Threads: load first. Afterwards any number of threads may each analyse with objects of their
// own, also against one shared tutor; one object serves one thread at a time. The results are the
// same to the last bit whatever runs beside them.
//
// A copy shares the results of its source, and neither is changed by what becomes of the other.
//
// Memory: where it runs out, an operation writes a message and answers negative, and can be tried
// again; an assignment leaves its target as it was, and an object that could not be made or copied
// refuses every operation. What the front end takes for its own heaps is the exception: there the
// process ends, with status 5105.
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

class VERAL3_API AnalyzedAudio : public AlignedAudio {
 public:
  // Another value than the three languages is reported, and every operation of the object then
  // answers with a message and a negative number.
  explicit AnalyzedAudio(LanguageType language);
  AnalyzedAudio(const AnalyzedAudio& other);
  AnalyzedAudio& operator=(const AnalyzedAudio& other);
  ~AnalyzedAudio();

  // Loads the three dictionaries KEN-UTF8Order.txt, KCN-UTF8Order.txt and KJP-UTF8Order.txt. The
  // file names are put directly behind `folder` (UTF-8), so it must end with its separator. What
  // is missing is reported; the others load. Objects made before keep the dictionary they had.
  // Where memory runs out, all three stay as they were.
  static void LoadResourceInFolderPath(const char* folder);

  // Loads one network (docs/formats/model.md) in the place of the one of its type. Returns its
  // version as the file has it; -1 with a message when the file can't be read as one, after which
  // there is no model of that type, and without a path or while an analysis runs, which changes
  // nothing. A type that names no model comes back as it is, and nothing is loaded. Takes files
  // that must not be used: call veral3::CheckModelFile (recognition/CheckModelFile.h) first, since
  // the first use of a model with an activation code that there is none of ends the process.
  static int LoadModelFile(const char* path, ModelFileType type);

  // Adds a candidate sentence. Chinese and Japanese come with blanks between the words of the
  // dictionary: veral3::PrepareSentence (text/PrepareSentence.h) makes them of text as people write
  // it, and tells which words are unknown. Returns the number of sentences so far (1 to 8); -1 when
  // there are 8 already; -101 for a text that begins with a bar and a blank, -200 and -300 for a
  // bad inline pronunciation or an unknown inline segment, -400 for bad inline digits, -500 for
  // more than 256 words; -1 also when memory runs out. A word that the dictionary lacks is reported
  // and passed over. Whether what is read is too long for the aligner, too, shows in Align. Silent
  // are -101, -300, an inline pronunciation (-200) that is malformed behind a good beginning, and
  // inline digits (-400) without the blank that they begin with.
  int AddPossibleSentence(CString sentence);

  // Finds the sentence that was read and where each of its phonemes lies. The samples are
  // high-pass filtered in place (80 Hz) before anything is checked. Returns the index of the
  // sentence, in the order added, or a negative number: without a sentence or a frame model, for
  // fewer than 551 samples or a recording too short for its sentence, and when the reading found
  // has more than 512 phonemes or 512 syllables (a sentence has at most 256 words). The results of
  // an earlier alignment are gone either way, unless the object is of no language or the samples
  // are none at all (null, or more than 2^31 - 1): that changes nothing.
  int Align(std::uint32_t num_samples, std::int16_t* samples);

  // The same against the sentences of `tutor`, which any number of learners may use at once. The
  // samples are taken as they are: not filtered. GetMatchedSentence then gives this object's own
  // sentence of that index, empty where it has none; GetWordOfMatchedSentence gives the tutor's
  // words.
  int AlignAgainstTutor(const AnalyzedAudio* tutor, std::uint32_t num_samples,
                        std::int16_t* samples);

  // Measures the recording just aligned: pronunciation, pitch, timing, loudness, contours.
  // `samples`: the buffer that the alignment was given, as it left it; its length is the one given
  // then, whatever `num_samples` says. Returns 0; -1 when there is no alignment or memory runs out,
  // and what was measured before is still there. A model that is not loaded is reported, and what
  // it would have told reads 0.
  int Analyze(std::uint32_t num_samples, std::int16_t* samples);

  // The same without pitch, timing and contours: what grading the pronunciation alone needs. Those
  // of an earlier Analyze stay.
  int AnalyzePronunOnly(std::int16_t* samples);

  // The steps of both, for those who want one alone. Each needs an alignment and what the steps
  // before it measured, puts its results in the place of earlier ones and returns 0; -1 with a
  // message, and nothing changed, where something is missing. In the order of an analysis:
  //
  // What each phoneme sounds like (GetPhonProbDistrArry, GetSoundsLikePhonemes).
  int CalculatePhonProbDistr();

  // That, and how well the utterance was pronounced as a whole (for GetProbOfGoodAlignment).
  int CalculateUttPronunProb();

  // The pitch of each frame and syllable, and the tones in Chinese. `samples` as Analyze takes
  // them.
  int AnalyzePitch(const std::int16_t* samples);

  // The pitch of each frame [Hz], 0 where unvoiced, of any samples and without an alignment. Writes
  // (num_samples - 551) / 220 + 1 values, none for fewer than 551 samples; all are 0 for fewer than
  // 660. Nothing of the object changes.
  int CalculateFramePitch_PraAC(const std::int16_t* samples, std::uint32_t num_samples,
                                int* frame_pitch);

  // Counts what GetUttNumOfPitchSegments gives after an analysis, out of pitch and intensity: 0,
  // which is reported, or more. The stored count stays.
  int CountUttPichSegments();

  // Loud frames in the gaps between syllables, and, with them, ProbGoodSyllable; out of pitch and
  // intensity. The intensity is measured by Analyze and AnalyzePronunOnly alone.
  int MarkBadSpaces();
  int MarkBadSyllables();

  // The same by the rules of AnalyzePronunOnly, out of the intensity.
  int MarkBadSpacesPronunOnly();
  int MarkBadSyllablesPronunOnly();

  // Natural logarithm of the best path's probability, plus the 1.0 that every path begins with.
  // A failed alignment may leave that of its best path.
  double GetLogProbOfAlign();

  int GetMatchedSentenceIndex();  // 0-based; -1 while nothing is aligned
  CString GetWordOfMatchedSentence(int word);
  int GetSizeOfPhonemeSet();  // symbols of the language, the pause among them

  // Geometric mean over its frames of what the frame classifier gave a phoneme, the sum of its
  // three states' scores; and the same for the gaps: before the first phoneme, between two, after
  // the last (1.0 for an empty gap; one more gap than phonemes). A likeness from 0 to 1, but not a
  // probability to rely on: each score is raised to 1e-6 at least, so that a sum may pass 1 a
  // little, and with a model whose scores are no probabilities it may be anything above 0.
  double GetPhonMFCCProb(int phon);
  double GetPauseMFCCProb(int gap);

  // What each phoneme sounds like by the phoneme classifier: always GetNumOfPhonemes() + 1
  // characters, one symbol a phoneme and the closing zero, all zero where no phoneme model told
  // them. Owned by the object, valid until its next alignment or analysis. And the symbol's part of
  // the sum of the phoneme's values, 0 to 1; where all values are 0, the part that the analysis
  // before told for that index.
  const char* GetSoundsLikePhonemes();
  double GetSoundsLikePhonProb(int phon);

  // A phoneme's values by the phoneme classifier in the order of the phoneme set, 64 of which those
  // beyond the set are 0; from 0 to 1, about 1 together, where the model gives probabilities.
  // Owned by the object, valid as above; all 0 for a phoneme that has none, never null.
  const double* GetPhonProbDistrArry(int phon);

  // Goodness of a syllable, above 0 to 1: below 1 after a noise in an unlikely pause, or for a
  // broken pitch. 0 until an analysis.
  double ProbGoodSyllable(int syl);

  int GetSylNumOfPitchSegments(int syl);  // voiced stretches of the syllable

  // Energy of the syllables / of the whole recording, 0 to 1. Of a recording all of whose samples
  // are 0 it is the object's ratio before, divided by 1e-20: 0 for a fresh object, else huge, and
  // infinite after several.
  double GetSpeechUttEnergyRatio();

  // Mean power of speech / mean power of what lies around it, not in dB: 0 or above; 0 until
  // computed, and where the surroundings are silent or missing. Computed from the samples that were
  // aligned, by the analysis or here; once it is above 0, `samples` are not looked at again until
  // the next alignment. 0 with a message when nothing is aligned.
  double CalculateSignalNoiseRatio(const std::int16_t* samples);
  double GetSignalNoiseRatio();

  // Writes the NUM_UTT_GOODNESS_FEATURES inputs of the goodness classifier; nothing, after a
  // message, for an object of no language. What was not measured is 0.
  void PrepareUttGoodnessFeatures(double* features);

  // Probability that the recording is a reading of the sentence at all, 0 to 1 where the model
  // gives probabilities; 0 with a message without a model, -1 when memory runs out.
  double GetProbOfGoodAlignment();

  static constexpr int NUM_UTT_GOODNESS_FEATURES = 16;

  // Suppresses steady noise in place, before an alignment. `policy`: 0 (mild) to 3 (strong). The
  // samples are 22050 Hz as everywhere; the suppressor, which is made for 16000 Hz, takes them for
  // such in blocks of 160. What is left behind the last whole block, num_samples % 160 samples,
  // stays as it is. Returns 1. -1 with the samples unchanged: without samples, silently; for
  // another policy, with a message that goes to standard output.
  static int NoiseReduction(std::int16_t* samples, std::uint32_t num_samples, int policy);

  // The alignment record: this recording in 2544 bytes, from which a SavedAlignedAudio reads it
  // back as a tutor (docs/formats/alignment-record.md). `buffer` has room for GetSizeOfAlignInfo()
  // bytes. Returns 0; -1 with a message, and the buffer as it was, when nothing is aligned, for
  // more than 127 phonemes, 64 syllables or 64 words, or without a buffer.
  static int GetSizeOfAlignInfo();
  int GetAlignInfo(unsigned char* buffer);

  // Prints the result for inspection: a message for standard output. Returns 0, or -1 with a
  // message when nothing is aligned.
  int PrintAlignmentResult();

  // Training examples for the classifiers, appended to streams that the caller opened: a line of
  // features in one stream, a line of "1" and "0" columns in the other. Numbers are in the classic
  // locale and six digits, whatever the streams are set to; a line end is the one character 10.
  // Each returns 0, or -1 with a message: when nothing is aligned, when an analysis is needed and
  // there was none (nothing is written in both cases), when a stream does not take it.
  int SaveUttGoodnessTrainData(bool good, std::ostream& features, std::ostream& labels);
  int SaveSylCTToneData(std::ostream& features, std::ostream& labels);
  int SavePhonMFCCDataToFiles(std::ostream& features, std::ostream& labels);

  // Frames that the path is sure of (`threshold`: least sum of its phoneme's three scores) and
  // whose loudness fits, labelled by the path; all frames, labelled by their place in phoneme or
  // pause.
  int SaveFrameMFCCDataToFiles(std::ostream& features, std::ostream& labels, double threshold);
  int SaveAdjustedFrameMFCCDataToFiles(std::ostream& features, std::ostream& labels);

  // Figures about what is unusual, likewise: a line a syllable (intensity convexity, pitch
  // segments, frames in gaps, voiced frames, 1 for the last), a line a phoneme (number, symbol,
  // samples, MFCC probability), a line for each syllable but the first (number, loud frames and
  // MFCC probability of the gap before it).
  int SaveSylBadTraits(std::ostream& lines);
  int SavePhonBadTraits(std::ostream& lines);
  int SaveSylPauseBadTraits(std::ostream& lines);

  // Gives memory back: the pitch, intensity, duration, tones and pitch segments of frames,
  // syllables and words read 0 afterwards, and so does the number of the utterance's pitch
  // segments. All else stays until the next alignment, contours and energy ratio included.
  void ReleaseMemory();

  LanguageType GetLanguageType() override;
  const char* GetPhonemes() override;
  CString GetMatchedSentence() override;
  int GetNumOfSamples() override;
  int GetNumOfPhonemes() override;
  int GetNumOfSyllables() override;
  int GetNumOfWords() override;
  int GetPhonemeStartSampleNum(int phon) override;
  int GetPhonemeEndSampleNum(int phon) override;
  int GetUttStartSampleNum() override;
  int GetUttEndSampleNum() override;
  int GetSyllableStartPosition(int syl) override;
  int GetWordStartPosition(int word) override;
  int GetSyllablePitch(int syl) override;
  double GetSylToneProb(int syl, int tone) override;
  int GetSyllableToneOrStress(int syl) override;
  int GetSyllableDuration(int syl) override;
  double GetSyllableIntensity(int syl) override;
  int GetUttNumOfPitchSegments() override;
  int GetWaveY(int i) override;
  int GetPitchContour(int i) override;
  int GetIntensityContour(int i) override;
  int GetWordPitch(int word) override;

 protected:
  // What the engine's own derived classes read; null only if memory ran out at construction.
  const veral3::AnalysisState* State() const { return m_state.get(); }

  // Assigns `other` for `operation`; false, after a message and with nothing changed, when memory
  // ran out.
  bool Assign(const char* operation, const AnalyzedAudio& other);

 private:
  int AnalyzeTiming();
  int AnalyzeIntensity(const std::int16_t* samples);
  int GenerarteWaveformContour(const std::int16_t* samples);
  int GeneratePitchAndIntensityContour();
  static void HighPassFilter(std::int16_t* samples, std::uint32_t num_samples, double cutoff_hz,
                             double sample_rate);

  std::unique_ptr<veral3::AnalysisState> m_state;
};

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif
