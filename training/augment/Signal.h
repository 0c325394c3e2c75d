#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "training/corpus/Utterance.h"

// An utterance's samples as floats in the range of 16 bit ones, which the steps of augmentation
// work on, and back.
namespace veral3::training {

std::vector<float> SignalOf(const Utterance& utterance);

// The utterance with other samples; text, labels and tones stay. A signal whose peak is beyond 16
// bits is made quieter as a whole, so that nothing is clipped that was not meant to be.
Utterance WithSignal(const Utterance& utterance, std::span<const float> signal);

// Moves all labels to `factor` times their place; the first one stays at 0.
void StretchLabels(std::vector<PhonemeLabel>& labels, double factor);

// The samples from the first phoneme to the end of the last, of `size`; all of them where the
// labels have no phoneme.
std::pair<std::size_t, std::size_t> SpeechEnds(std::span<const PhonemeLabel> labels,
                                               std::size_t size);
std::pair<std::size_t, std::size_t> SpeechEnds(const Utterance& utterance);

std::size_t SamplesOf(double seconds);  // rounded

}  // namespace veral3::training
