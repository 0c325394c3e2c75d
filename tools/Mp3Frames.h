#pragma once

#include <string>

#include "tools/InputFile.h"

// The frames of MPEG audio (MP3, MP2): a decoder finds its way past what is damaged or missing
// without a word.
namespace veral3::tools {

// Whether a file begins with a frame, be it behind an ID3v2 tag.
bool BeginsWithMpegFrame(const InputFile& file);

// Why the frames are not a whole recording, as far as that can be told: one that is cut off, bytes
// between them that belong to none, fewer than the first one announces. The rest of a sentence that
// begins with the file's name; "" when nothing is wrong.
std::string MpegProblem(const InputFile& file);

}  // namespace veral3::tools
