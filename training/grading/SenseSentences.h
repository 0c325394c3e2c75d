#pragma once

#include <span>

#include "training/grading/SenseReadings.h"

namespace veral3::training {

// Short sentences of the language whose words the dictionary has with the pronunciation that is
// spoken. Throws std::runtime_error for an unknown language.
std::span<const SenseSentence> SenseSentencesOf(LanguageType language);

}  // namespace veral3::training
