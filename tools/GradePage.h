#pragma once

#include <string>
#include <vector>

#include "tools/GradeReport.h"

namespace veral3::tools {

// A page for a browser about learners who read one sentence, or one each: HTML with everything in
// it, no script, nothing to fetch, UTF-8. `tutor`: what to draw beside the learners; null after
// grading the pronunciation alone, or where the tutor could not be read.
std::string GradePage(const std::vector<GradeReport>& reports, const DrawnRecording* tutor);

}  // namespace veral3::tools
