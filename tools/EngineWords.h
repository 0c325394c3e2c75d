#pragma once

#include <string>
#include <string_view>

// What the engine writes, as the command says it. The engine's texts are part of its interface and
// stay as they are; a person reads what they mean.
namespace veral3::tools {

// The line that the engine writes when no path leads through a sentence in the time there is.
inline constexpr std::string_view kNoPath =
    "ERROR! No Winner Token  in VTokenList::GetWinnerToken().";

// The line that the engine writes when no voiced stretch is louder than the end of the recording,
// which may be because no frame is voiced at all.
inline constexpr std::string_view kNoPitchSegments = "Error! nNumPitchSegments==0";

// What that line means where some frame is voiced all the same.
inline constexpr std::string_view kNoVoiceStandsOut =
    "no voice stands out from the end of the recording";

// One line of the engine's, without its end, in words; one that says enough stays as it is. A
// limit that was hit is named with its number. What the line quotes is shortened.
std::string InWords(std::string_view line);

// Every line of `text` in words, each with its end. Of words that the dictionary lacks, and of
// pronunciations that cannot be aligned, the first ten are named and the others counted.
std::string LinesInWords(std::string_view text);

}  // namespace veral3::tools
