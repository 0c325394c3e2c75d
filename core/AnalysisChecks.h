#pragma once

#include <cstdint>

#include "core/AnalysisState.h"

// What an operation of AnalyzedAudio needs before it can start. Where the answer is no, one message
// in the operation's name has said why.
namespace veral3 {

// The object is of one of the three languages.
bool IsUsable(const AnalysisState* state, const char* operation);

// There are as many samples as is said, and not too many: counts are ints throughout, for which 27
// hours of sound fit.
bool AreSamples(std::uint32_t num_samples, const std::int16_t* samples, const char* operation);

// A usable object holds an alignment.
bool IsAligned(const AnalysisState* state, const char* operation);

// The same, and `samples`, which are those aligned, are there.
bool IsAligned(const AnalysisState* state, const std::int16_t* samples, const char* operation);

// Whether the frames of an aligned recording have their intensity, their pitch; says nothing.
bool HasIntensity(const AnalysisState& state);
bool HasPitch(const AnalysisState& state);

}  // namespace veral3
