#pragma once

#include <vector>

namespace veral3::training {

// Cuts off what is louder than the peak less that many dB, as an input that is turned up too far.
void Clip(std::vector<float>& signal, double db);

}  // namespace veral3::training
