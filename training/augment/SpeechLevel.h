#pragma once

#include <span>

#include "training/corpus/Utterance.h"

// How loud speech is, so that noises can be set that many dB below it.
namespace veral3::training {

double RootMeanSquare(std::span<const float> signal);  // 0 for nothing

// Root mean square of the speech alone: of all samples under phonemes, pauses left out. Where the
// labels have no phoneme, of those stretches of 20 ms that are at most 30 dB below the loudest
// one. 0 for digital silence. `signal` is that of `labels`, whole.
double SpeechLevel(std::span<const float> signal, std::span<const PhonemeLabel> labels);

// What an amplitude is multiplied by to become that many dB louder.
double FactorOfDb(double db);

}  // namespace veral3::training
