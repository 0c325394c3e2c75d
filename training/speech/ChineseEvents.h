#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "training/corpus/Utterance.h"
#include "training/speech/PhonemeEvents.h"

namespace veral3::training {

// What was spoken: the expanded phonemes of all syllables, and where in them each syllable begins.
struct SpokenSyllables {
  std::string_view phonemes;
  std::span<const std::int32_t> starts;
};

// The labels of a recording of `num_samples` samples that espeak-ng's pinyin voice gave phoneme
// events for. Its events are coarser than the set's phonemes and some have two readings ("iE" is i
// and E in tian, but E alone in yan behind its j), so they are matched against the phonemes that
// were asked for. The symbols of one event share its time; an event without one joins the phoneme
// before it, at a syllable's start the one after it. What follows a word boundary belongs to the
// next phoneme. Throws std::runtime_error, which names the place, where events and phonemes do not
// fit together.
std::vector<PhonemeLabel> ChineseLabels(std::span<const PhonemeEvent> events,
                                        const SpokenSyllables& spoken, std::int32_t num_samples);

// Phonemes whose closure espeak-ng leaves with the phoneme before.
inline constexpr std::string_view kChineseStops = "bpdtgkjqZCzc";

}  // namespace veral3::training
