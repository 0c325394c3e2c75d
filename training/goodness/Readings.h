#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "recognition/CPhonemeSet.h"
#include "training/common/Random.h"
#include "training/corpus/Utterance.h"
#include "training/goodness/Passages.h"

// Recordings with sentences of which a known share is read otherwise than it stands there: what the
// utterance-goodness model learns from and is measured on.
//
//   const PassageDrawer drawer(recordings);
//   const ReadingMaker maker(phoneme_set, drawer, utterances_of_other_languages);
//   Random random(MixSeed(seed, i));
//   const Reading reading = maker.Make(drawer.Draw(10, random), ReadingKind::kReplaced, 0.3, random);
namespace veral3::training {

enum class ReadingKind {
  kRight,            // the sentence as it stands
  kRightWithPauses,  // the same with up to three pauses of at most 0.6 s between words
  kTrimmed,          // the same, up to 100 ms of the first word lost, nothing behind the last one
  kMispronounced,    // the same with about one phoneme in eight exchanged for another of its kind
  kReplaced,         // words are others than those that stand there
  kOmitted,          // words are left out
  kInserted,         // words are said that do not stand there
  kSwapped,          // neighbouring words change places
  kCutOff,           // the recording ends early
  kBegunLate,        // the recording begins late
  kRepeated,         // the sentence is read twice
  kSpeechBefore,     // other speech, then the sentence
  kSpeechAfter,      // the sentence, then other speech
  kOtherSentence,    // an unrelated sentence is read
  kOtherLanguage,    // a sentence of another language is read
  kSilence,
  kNoise,
  kTones,
};

inline constexpr std::array kReadingKinds = {
    ReadingKind::kRight,         ReadingKind::kRightWithPauses, ReadingKind::kTrimmed,
    ReadingKind::kMispronounced, ReadingKind::kReplaced,        ReadingKind::kOmitted,
    ReadingKind::kInserted,      ReadingKind::kSwapped,         ReadingKind::kCutOff,
    ReadingKind::kBegunLate,     ReadingKind::kRepeated,        ReadingKind::kSpeechBefore,
    ReadingKind::kSpeechAfter,   ReadingKind::kOtherSentence,   ReadingKind::kOtherLanguage,
    ReadingKind::kSilence,       ReadingKind::kNoise,           ReadingKind::kTones,
};

std::string_view NameOf(ReadingKind kind);  // "words replaced"

// Whether the share that is asked for makes a difference: from kReplaced to kBegunLate, and
// kSpeechBefore and kSpeechAfter.
bool IsGraded(ReadingKind kind);

struct Reading {
  std::string sentence;               // as the engine is given it, words between blanks
  std::vector<std::int16_t> samples;  // 22050 Hz
  // 0 to 1, by phonemes: those that are read otherwise, left out or too many, of those that stand
  // there or are said. A sound said wrongly is no other word: kMispronounced is 0. Of two words
  // that change places one is wrong.
  double wrong = 0.0;
};

// A reading as augmentation takes it: what is not silence at its ends is labelled as one phoneme.
// Without any speech it has no labels.
Utterance RecordingOf(const Reading& reading, ReadingKind kind, const std::string& voice);

// The probability that the model should give a reading of which the share `wrong` is wrong. The
// factor 1 / (1 - ln p) that it leaves of the scores is 1 / (1 + (wrong / 0.27)^1.5): .82 for a
// tenth, .61 for a fifth, .28 for a half, .12 for all. That is harsher than the scores should be:
// where the features leave doubt the model answers between this and a right reading's.
double WantedProbability(double wrong);

class ReadingMaker {
 public:
  // Words and speech that do not belong come from the drawer's recordings, speech in other
  // languages from `foreign`, which may be empty. All must outlive the maker. Throws
  // std::runtime_error when there are fewer than two recordings or two words to choose from.
  ReadingMaker(const CPhonemeSet& set, const PassageDrawer& drawer,
               std::span<const Utterance> foreign);

  // A reading of what `passage` says, or of something near it, of which about `share` (0 to 1, one
  // word at least) is wrong where the kind is graded. Draws everything from `random`.
  // kOtherLanguage needs `foreign`: std::runtime_error.
  Reading Make(const Passage& passage, ReadingKind kind, double share, Random& random) const;

  bool HasForeign() const { return !m_foreign.empty(); }

 private:
  struct Word {
    std::string text;
    int phonemes;
  };

  Word AnotherThan(const std::string& text, Random& random) const;
  Passage OtherSpeech(const Passage& passage, int words, Random& random) const;
  Reading Replaced(const Passage& passage, double share, Random& random) const;
  Reading Omitted(const Passage& passage, double share, Random& random) const;
  Reading WithSpeech(const Passage& passage, bool before, double share, Random& random) const;
  std::vector<std::int16_t> Mispronounced(const Passage& passage, Random& random) const;

  const CPhonemeSet& m_set;
  const PassageDrawer& m_drawer;
  std::span<const Utterance> m_foreign;
  std::vector<Word> m_words;  // each once
};

}  // namespace veral3::training
