#pragma once

#include <iosfwd>

#include "core/Goodness.h"
#include "core/Prosody.h"
#include "recognition/AlignmentResult.h"
#include "recognition/CPhonemeSet.h"

// Training examples for the classifiers, and figures about what is unusual in a recording, out of
// analysed recordings. Every function appends lines to streams that the caller opened. An example
// has a line of features in one stream and a line of labels, "1" and "0" columns, in another. The
// frame classifier's examples are in recognition/FrameExport.h.
namespace veral3 {

// The 16 features, separated by ","; "1.0, 0.0" for a good reading, "0.0, 1.0" for another.
void WriteGoodnessExample(const GoodnessFeatures& features, bool good, std::ostream& feature_lines,
                          std::ostream& label_lines);

// An example for each syllable: the 68 tone features, separated by ", "; a column for each of the
// tones 0 to 4, separated by ",". A third tone before another one is said as a second tone, and so
// labelled. Of three third tones in a row nobody can tell: the first two are skipped, which is
// reported, and the third is looked at anew.
void WriteToneExamples(const AlignmentResult& alignment, const PitchMeasures& pitch,
                       std::ostream& feature_lines, std::ostream& label_lines);

// An example for each phoneme: the classifier's 624 inputs (see PhonemeDistributions.h) and a
// column for each symbol of the set, separated by ",".
void WritePhonemeExamples(const CPhonemeSet& set, const AlignmentResult& alignment,
                          std::ostream& feature_lines, std::ostream& label_lines);

// For each syllable: intensity convexity, pitch segments, frames in gaps, voiced frames, and 1 for
// the last syllable, 0 for the others.
void WriteSyllableTraits(const AlignmentResult& alignment, const ProsodyResult& prosody,
                         std::ostream& lines);

// For each phoneme: its number, symbol, length [samples] and MFCC probability.
void WritePhonemeTraits(const AlignmentResult& alignment, std::ostream& lines);

// For each syllable but the first: its number, the loud frames and the MFCC probability of the gap
// before it.
void WritePauseTraits(const AlignmentResult& alignment, const GoodnessResult& goodness,
                      std::ostream& lines);

}  // namespace veral3
