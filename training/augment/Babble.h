#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

#include "training/common/Random.h"
#include "training/corpus/Utterance.h"

// Other people who talk all at once in the background.
namespace veral3::training {

inline constexpr int kFewestBabblers = 3;
inline constexpr int kMostBabblers = 8;

// `length` samples of so many voices at once, each as loud as the others by SpeechLevel. Each
// begins somewhere within an utterance and goes on with those after it. Utterances of the voice
// `except` are passed over unless there are no others, and no voice speaks twice as long as there
// are enough. Throws std::invalid_argument when `others` is empty.
std::vector<float> Babble(std::span<const Utterance> others, std::string_view except, int voices,
                          std::size_t length, Random& random);

// Mixes babble of 3 to 8 voices into the signal, over its whole length, with this root mean square.
void AddBabble(std::vector<float>& signal, std::span<const Utterance> others,
               std::string_view except, double rms, Random& random);

}  // namespace veral3::training
