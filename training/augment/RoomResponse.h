#pragma once

#include <span>
#include <vector>

#include "training/common/Random.h"

// Rooms with a real tail, where AddReverb of Augment.h has early echoes only.
//
//   Reverberate(signal, RoomResponse(0.5, 4.0, random));
namespace veral3::training {

// What a microphone in a room hears of one pulse: the direct sound (1, the first sample), ten early
// echoes within 40 ms, and noise that dies away by 60 dB in `rt60` seconds, dulled a little as by
// carpets and curtains. All that follows the direct sound is `direct_db` weaker than it, in energy.
std::vector<float> RoomResponse(double rt60, double direct_db, Random& random);

// The signal heard in a room. The length stays: what of the tail lies beyond is cut off.
void Reverberate(std::vector<float>& signal, std::span<const float> response);

}  // namespace veral3::training
