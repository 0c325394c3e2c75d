#pragma once

#include <string>

#include "grading/GradedAudio.h"
#include "storage/AnnotatedAudio.h"
#include "storage/SavedAlignedAudio.h"

// Everything that an object answers, as one string of bytes to compare with another's.
namespace veral3::test {

std::string ReadingsOf(GradedAudio& audio);
std::string ReadingsOf(SavedAlignedAudio& audio);
std::string ReadingsOf(const AnnotatedAudio& audio);

// What the models of a type that are loaded make of a fixed input; without one a few zeros.
std::string ReadingsOfModel(ModelFileType type);

}  // namespace veral3::test
