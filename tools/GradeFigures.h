#pragma once

#include <string>
#include <vector>

#include "tools/GradeReport.h"

// The figures of a graded recording as inline SVG, without any text in them: they stretch to the
// width of their place, and what they show is said beside them.
namespace veral3::tools {

// Smallest and largest sample of each of `columns` equal parts of a span, in -1 to 1 of the largest
// sample of the whole utterance. A span of no samples gives zeros.
struct Envelope {
  std::vector<double> low;
  std::vector<double> high;
};
Envelope EnvelopeOf(const DrawnRecording& recording, DrawnRecording::Span span, int columns);

// The sound of a span, as an outline around the middle. With `words`, a line at each word's start.
// `css_class` selects its colour, `label` says to a screen reader what it is.
std::string WaveFigure(const DrawnRecording& recording, DrawnRecording::Span span, bool words,
                       const std::string& css_class, const std::string& label);

// Which curve of a recording.
enum class Curve { kPitch, kIntensity };

// A curve of the learner's utterance over the tutor's (null: none), whose words are stretched to
// lie where the learner's do. Unvoiced stretches of a pitch curve are left out.
std::string CurveFigure(const DrawnRecording& learner, const DrawnRecording* tutor, Curve curve,
                        const std::string& label);

// Where a time of the tutor's utterance lies in the learner's, both in 0 to 1 of the utterance:
// word by word in proportion. With other numbers of words, as it is.
double WarpedTime(const DrawnRecording& tutor, const DrawnRecording& learner, double time);

// Two bars, the learner's above the tutor's, as shares (0 to 1) of the width.
std::string BarsFigure(double learner, double tutor, const std::string& label);

}  // namespace veral3::tools
