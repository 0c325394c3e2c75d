#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "common/LanguageType.h"
#include "core/Goodness.h"
#include "training/corpus/Utterance.h"
#include "training/goodness/Passages.h"

// What the engine makes of a recording that may or may not be a reading of its sentence. The
// language's dictionary, frame model and phoneme model must be loaded. Several threads may ask at
// once.
namespace veral3::training {

struct Judgement {
  GoodnessFeatures features;
  double probability;  // of a good reading; 0 where no goodness model is loaded
};

// Nothing where the engine cannot align the recording (22050 Hz) to the sentence: an application
// never gets as far as its goodness.
std::optional<Judgement> Judge(LanguageType language, const std::string& sentence,
                               std::span<const std::int16_t> recording);

// The words of an utterance as the engine aligns it to its text. Empty when it can't.
std::vector<SpokenWord> SpokenWordsOf(LanguageType language, const Utterance& utterance);

// The utterances whose words the dictionary has and the engine finds, in their order.
std::vector<Passage> PassagesOf(LanguageType language, std::span<const Utterance> utterances,
                                int threads);

// The samples at which the words of an utterance begin, as the engine aligns it to its text. Empty
// when it can't.
std::vector<std::int32_t> WordStarts(LanguageType language, const Utterance& utterance);

// Whether the dictionary has every word of a sentence: what it lacks the engine would pass over,
// and a right reading would be judged against fewer words than were read.
bool KnowsAllWords(LanguageType language, const std::string& sentence);

}  // namespace veral3::training
