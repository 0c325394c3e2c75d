#pragma once

#include <optional>

#include "recognition/AlignmentResult.h"
#include "recognition/CPhonemeSet.h"
#include "recognition/WordEntry.h"
#include "training/corpus/Utterance.h"

namespace veral3::training {

// The phonemes of an utterance as words for the aligner, which allows a pause only between words: a
// word ends at each labelled pause.
WordSequence WordsOfLabels(const Utterance& utterance);

// Aligns a recording to its own labelled phonemes as the engine would. Nothing when it can't, as
// with an unused stretch, of which nobody knows the phonemes. Several threads may align at once;
// the frame model must be loaded.
std::optional<AlignmentResult> AlignToLabels(const Utterance& utterance, const CPhonemeSet& set);

// The labels that an alignment gives, pauses included.
std::vector<PhonemeLabel> LabelsOf(const AlignmentResult& result);

}  // namespace veral3::training
