#pragma once

#include <string>

#include "tools/AlignmentJson.h"
#include "tools/GradeReport.h"

// A grading as text, UTF-8: docs/command.md describes each form. A report whose alignment has an
// error gives text in JSON only, and "" otherwise. What was not graded is null or a dash.
namespace veral3::tools {

inline constexpr int kGradeSchemaVersion = 1;

// The sentence, advice letters under its syllables, scores, and what the letters mean.
std::string GradeTable(const GradeReport& report);

// What docs/formats/grade.schema.json describes.
OrderedJson GradeJson(const GradeReport& report);

// A line for the recording, each word, syllable and phoneme; empty fields where a column says
// nothing of a tier.
std::string GradeCsvHeader();
std::string GradeCsv(const GradeReport& report);

}  // namespace veral3::tools
