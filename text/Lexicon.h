#pragma once

#include "common/LanguageType.h"
#include "text/Segmentation.h"
#include "text/TextPreparation.h"

namespace veral3 {

// The loaded dictionary of a language as text preparation asks for it. What is asked is silent.
struct Lexicon {
  WordCost cost;  // words without a number of their own cost 100
  HasWord has_word;
};

// Holds the dictionary that is loaded now; without one nothing is known.
Lexicon LexiconOf(LanguageType language);

}  // namespace veral3
