#pragma once

#include <memory>
#include <string>

#include "common/LanguageType.h"
#include "training/common/Random.h"

namespace veral3::training {

// The held-out sentences of a language as text, for measures that need others than were read.
class HeldOutTexts {
 public:
  virtual ~HeldOutTexts() = default;
  virtual std::string Draw(Random& random) const = 0;
  // The sentence with one content word changed for another of the same kind.
  virtual std::string WithOneWordChanged(const std::string& sentence, Random& random) const = 0;
};

// `dictionary`: the file of the language's dictionary. Throws std::runtime_error where it is
// missing, or for a value that names no language.
std::unique_ptr<HeldOutTexts> HeldOutTextsOf(LanguageType language, const std::string& dictionary);

}  // namespace veral3::training
