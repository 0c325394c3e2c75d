#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "common/LanguageType.h"
#include "recognition/CPhonemeSet.h"
#include "training/measure/Exchanges.h"

namespace veral3::training {

// A mispronunciation that learners of a language are known for.
struct LearnerError {
  std::string_view name;      // "th said as f"
  std::string_view expected;  // symbols of the set that it happens to
  std::string_view said;      // what is said for each of them; empty where they are dropped
  enum class Place { kAnywhere, kNotBeforeVowel, kWordEnd } place = Place::kAnywhere;
};

// Those of a language, in the order in which they are reported.
std::span<const LearnerError> LearnerErrorsOf(LanguageType language);

// How an error is written: "th said as f (T > f)"; one of several phonemes has its name only.
std::string Written(const LearnerError& error);

// Whether an error can happen to the phoneme at a place of an utterance, seen from where it stands.
bool CanHappen(const LearnerError& error, const CPhonemeSet& set, std::string_view phonemes,
               std::span<const std::size_t> word_ends, std::size_t place);

// Where recordings can be taken for such errors: occurrences of what is said, expected to be what
// should be said, at most `most` of each error, chosen at random. `word_ends`: the places of each
// utterance's phonemes that end a word. The group is the error's place in `errors`.
std::vector<Exchange> ErrorsIn(const CPhonemeSet& set, std::span<const std::string> phonemes,
                               std::span<const std::vector<std::size_t>> word_ends,
                               std::span<const LearnerError> errors, std::size_t most,
                               Random& random);

}  // namespace veral3::training
