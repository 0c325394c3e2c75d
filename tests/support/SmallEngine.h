#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "common/LanguageType.h"

namespace veral3::test {

// Loads the small dictionaries and models of tests/vectors into the process, as an application
// would: once, before any analysis. Further calls do nothing.
void LoadSmallEngine();

// A recording of tests/vectors/chain, e.g. "en_learner".
std::vector<std::int16_t> ChainRecording(const std::string& name);

// Reproducible noise in bursts, loud enough to be taken for speech. `seed` selects it.
std::vector<std::int16_t> NoiseBursts(int num_samples, std::uint32_t seed);

}  // namespace veral3::test
