#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "common/LanguageType.h"
#include "grading/TotalScore.h"

// Grades one recording against another, before and after the utterance-goodness factor.
namespace veral3::training {

struct SenseGrades {
  ComponentScores components;  // 0 to 100, before the factor
  int total = 0;               // before the factor
  bool syllables_good = true;  // no syllable of the learner is marked down
};

// Makes the process's goodness model one that is certain of everything, so that its factor is 1.
// Throws std::runtime_error where no temporary file can be written.
void LoadCertainGoodness();

// Nothing where a recording cannot be aligned or graded. LoadEngine and LoadCertainGoodness come
// first.
std::optional<SenseGrades> GradeOne(LanguageType language, const std::string& text,
                                    std::span<const std::int16_t> tutor,
                                    std::span<const std::int16_t> learner);

}  // namespace veral3::training
