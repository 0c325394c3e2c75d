#pragma once

#include <string>

#include "common/LanguageType.h"
#include "tools/AlignJobs.h"
#include "tools/Result.h"
#include "tools/TutorFile.h"

namespace veral3::tools {

// Reads, aligns and analyses the recording of a job of one sentence, whose language's resources are
// loaded, the tone model among them for Chinese. Teacher and date of the tutor are left to fill in.
// Appends to `messages` what the user should know of the recording.
//
// The failure is the rest of a sentence that begins with the recording's name: what ReadAndAlign
// says, a silent recording, or one that an alignment record does not hold (5.4 minutes, 127
// phonemes, 64 syllables, 64 words, 1.49 seconds a syllable).
Result<TutorFile> MakeTutor(const AlignJob& job, LanguageType language, std::string& messages);

}  // namespace veral3::tools
