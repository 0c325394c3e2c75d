#pragma once

#include <nlohmann/json.hpp>

#include "grading/RecordingView.h"

namespace veral3::test {

// A recording as tests/vectors/grading_*.json writes it.
RecordingView TutorOf(const nlohmann::json& tutor);
LearnerView LearnerOf(const nlohmann::json& learner);

}  // namespace veral3::test
