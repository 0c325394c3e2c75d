#pragma once

#include <string>

#include "common/Export.h"
#include "recognition/ModelFileType.h"

// Whether a model file can be used, before it is loaded:
//
//   const std::string fault = veral3::CheckModelFile(path, kFrameModelEnglish);
//   if (!fault.empty()) {
//     std::fprintf(stderr, "%s\n", fault.c_str());
//   } else if (AnalyzedAudio::LoadModelFile(path, kFrameModelEnglish) < 0) {
//     give_up();  // gone or changed in between, memory ran out, or an analysis was running
//   }
//
// LoadModelFile takes every file that it can make layers of. Some of them end the process when they
// are used first, take gigabytes, or give scores that mean nothing. Applications call this first,
// as the `veral3` command does.
namespace veral3 {

// Returns "" when the file may be loaded as `type`. Else one sentence in English, without a full
// stop or a line end, that begins with `path` and says what is wrong and what to do about it:
//
//     resources/EnglishFrame.model cannot be used as the English frame model: it has 195 inputs
//     and 99 outputs like the Chinese frame model, not 195 inputs and 111 outputs; load it as what
//     it is, or give a file that was made as the English frame model
//
// What it finds:
// - a file that is missing, not a regular file, unreadable, cut off or damaged in its structure;
// - kinds of layer and activation codes that there are none of;
// - no layers, layers without inputs or outputs, layers that do not fit one another, kinds that a
//   classifier can do nothing with (anything but dense and dropout layers, a dense one first);
// - a number of inputs or outputs that is not that of `type`. Those of the eight types all differ,
//   so that a model of another language or use is told;
// - a last layer that does not give probabilities: softmax for frame and tone models, whose outputs
//   must sum to 1; softmax or sigmoid for phoneme and goodness models;
// - weights and biases that are infinite or not a number, or so large that results may become so;
// - more than 100 layers, 65,536 inputs or outputs of a layer, 67,108,864 numbers in all;
// - a negative version, which LoadModelFile could not tell from a failure;
// - a null path, and a `type` that names no model.
//
// What no file tells, and this does not find: whether the numbers are those of a good model, or
// were changed into other finite ones; whether its outputs stand in the order of the phoneme set;
// which features it was trained on. Bytes behind the last layer are not looked at.
//
// Reads the file once, with less than 2 MB of memory whatever its size. Writes no message, never
// throws, never ends the process; any thread may call it at any time. When memory runs out the
// sentence is "out of memory".
VERAL3_API std::string CheckModelFile(const char* path, ModelFileType type) noexcept;

}  // namespace veral3
