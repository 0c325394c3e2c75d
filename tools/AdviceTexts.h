#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "common/LanguageType.h"

// The letters that grading gives as advice, in words.
namespace veral3::tools {

enum class AdviceKind { kPitch, kTiming, kIntensity };

// "pitch", "timing", "loudness".
std::string_view NameOf(AdviceKind kind);

struct AdviceText {
  char letter;
  std::string text;
};

// Every letter that `kind` has in a language, with its meaning; '-' first where there is one.
std::vector<AdviceText> AdviceTextsOf(AdviceKind kind, LanguageType language);

// "tone 1" to "tone 4" of the tone classes 1 to 4, "the neutral tone" of class 0.
std::string ToneText(int tone_class);

// Whether advice on a syllable's length says otherwise than lengths that stand beside it: too long
// where the learner's is no longer than the tutor's, too short where it is no shorter.
bool ContradictsLengths(char timing_letter, int learner, int tutor);

// What such advice adds: grading compares which syllables are the longest of each reading.
inline constexpr std::string_view kAgainstOwnReading =
    ", measured against the other syllables of the same reading";

// What a letter means; "" for one that says nothing ('-', none, or a letter there is none of).
std::string AdviceOf(AdviceKind kind, LanguageType language, char letter);

}  // namespace veral3::tools
