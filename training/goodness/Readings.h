#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "recognition/CPhonemeSet.h"
#include "training/augment/Augment.h"
#include "training/common/Random.h"
#include "training/corpus/Utterance.h"

// Pairs of a recording and a sentence that it is, or is not, a reading of: what the
// utterance-goodness model learns from and is measured on.
//
//   const ReadingMaker maker(phoneme_set, utterances, utterances_of_other_languages);
//   Random random(MixSeed(seed, i));
//   Reading reading = maker.Make(i, ReadingKind::kWordsChanged, random);
namespace veral3::training {

enum class ReadingKind {
  kRight,            // the sentence as it stands
  kRightWithPauses,  // the same with up to three pauses of at most 0.6 s between words
  kMispronounced,    // the same with about one phoneme in eight exchanged for another of its kind
  kOtherSentence,    // an unrelated sentence is read
  kWordsChanged,     // one third of the words (at least one) are others than those read
  kCutOff,           // the recording ends between two fifths and three fifths of the speech
  kRepeated,         // the sentence is read twice
  kSpeechBefore,     // other speech, then the sentence
  kSpeechAfter,      // the sentence, then other speech
  kSilence,
  kNoise,
  kTones,
  kOtherLanguage,  // a sentence of another language is read
};

inline constexpr std::array kReadingKinds = {
    ReadingKind::kRight,         ReadingKind::kRightWithPauses, ReadingKind::kMispronounced,
    ReadingKind::kOtherSentence, ReadingKind::kWordsChanged,    ReadingKind::kCutOff,
    ReadingKind::kRepeated,      ReadingKind::kSpeechBefore,    ReadingKind::kSpeechAfter,
    ReadingKind::kSilence,       ReadingKind::kNoise,           ReadingKind::kTones,
    ReadingKind::kOtherLanguage,
};

// Whether the sentence was read, well or badly.
bool IsReading(ReadingKind kind);
std::string_view NameOf(ReadingKind kind);  // "one third of the words changed"

struct Reading {
  std::string sentence;               // as the engine is given it, words between blanks
  std::vector<std::int16_t> samples;  // 22050 Hz
};

class ReadingMaker {
 public:
  // Sentences, words and speech that do not belong come from `utterances` themselves, speech in
  // other languages from `foreign`, which may be empty. All must outlive the maker. Throws
  // std::runtime_error when there are fewer than two sentences or two words to choose from.
  ReadingMaker(const CPhonemeSet& set, std::span<const Utterance> utterances,
               std::span<const Utterance> foreign);

  // A reading made from the utterance of that number, augmented. Draws everything from `random`.
  // kOtherLanguage needs `foreign`, kRightWithPauses the samples at which words begin.
  Reading Make(std::size_t number, ReadingKind kind, const AugmentOptions& augment, Random& random,
               std::span<const std::int32_t> word_starts = {}) const;

  bool HasForeign() const { return !m_foreign.empty(); }

  // The sentence with one third of its words, at least one, exchanged.
  std::string WithWordsChanged(const std::string& sentence, Random& random) const;

 private:
  const Utterance& AnotherThan(const Utterance& one, Random& random) const;
  std::vector<std::int16_t> Mispronounced(const Utterance& one, Random& random) const;

  const CPhonemeSet& m_set;
  std::span<const Utterance> m_utterances;
  std::span<const Utterance> m_foreign;
  std::vector<std::string> m_words;  // each once
};

}  // namespace veral3::training
