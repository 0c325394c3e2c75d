#pragma once

#include <string>

#include "signal/CWaveFrameDef.h"

// Numbers as the command prints them: no locale, no exponent.
namespace veral3::tools {

// `value` with `decimals` digits behind the point, rounded; "inf", "-inf" or "nan" for what is no
// number.
std::string Fixed(double value, int decimals);

// `text` behind as many blanks as make it `width` characters (ASCII).
std::string Right(const std::string& text, int width);

// [s] of a sample number.
constexpr double Seconds(int sample) { return static_cast<double>(sample) / kSampleRate; }

}  // namespace veral3::tools
