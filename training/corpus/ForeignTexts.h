#pragma once

#include <span>
#include <string>
#include <string_view>

#include "training/common/Random.h"

// What the recorded voices of other languages read: words of their own language, strung together
// without sense. Their sounds are what is wanted of them, and in their own words they sound best.
namespace veral3::training {

enum class ForeignLanguage { kCatalan, kCzech, kFinnish, kItalian, kRussian, kTelugu };

// The words of a language, in UTF-8.
std::span<const std::string_view> ForeignWords(ForeignLanguage language);

// One to eight words, in one text of five a single one; some have a comma, all end with a full
// stop.
std::string DrawForeignText(ForeignLanguage language, Random& random);

}  // namespace veral3::training
