#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "common/LanguageType.h"
#include "core/PitchSegments.h"
#include "recognition/AlignmentResult.h"

// The goodness of a syllable, 0 to 1: 1.0 unless something went wrong beside its sounds.
namespace veral3 {

// A pause before the syllable that is not silent (`loud_gaps`, see BadSpaces.h) and an unlikely
// pause takes from it; so does a pitch in more than 2 segments over an intensity that rises twice.
// One value a syllable. A language that is none of the three is reported.
std::vector<double> SyllableGoodness(LanguageType language, const AlignmentResult& alignment,
                                     std::span<const std::int32_t> loud_gaps,
                                     std::span<const double> convexity,
                                     std::span<const PitchSegmentCounts> segments);

// The pause alone.
std::vector<double> SyllableGoodnessPronunOnly(LanguageType language,
                                               const AlignmentResult& alignment,
                                               std::span<const std::int32_t> loud_gaps);

}  // namespace veral3
