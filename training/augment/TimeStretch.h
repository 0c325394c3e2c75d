#pragma once

#include <span>
#include <vector>

namespace veral3::training {

// Speech `tempo` times as fast (0.7 is slower), all its frequencies, pitch and formants alike,
// `pitch` times as high; both from 0.3 to 3. By SoundTouch, in steps of 30 ms: sounds keep their
// place (divided by the tempo) to within 10 ms, half of that at a typical one. The length is the
// signal's divided by the tempo, rounded.
std::vector<float> TimeStretch(std::span<const float> signal, double tempo, double pitch);

}  // namespace veral3::training
