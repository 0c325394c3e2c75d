#pragma once

#include <memory>
#include <string>
#include <vector>

#include "common/LanguageType.h"
#include "tools/AlignJobs.h"
#include "tools/GradeReport.h"
#include "tools/Result.h"
#include "tools/TutorFile.h"

class AlignedAudio;

// What learners are graded against: a tutor file, or a plain recording that is analysed now.
namespace veral3::tools {

struct Tutor {
  std::shared_ptr<AlignedAudio> audio;
  std::string sentence;  // that was read, as the teacher or the user gave it
  std::string teacher;   // "" where the file does not say
  DrawnRecording drawn;
};

// A tutor from a tutor file. The failure is the rest of a sentence that begins with the file's
// name: unreadable, of another language, silent.
Result<Tutor> StoredTutor(const std::string& file, TutorFile tutor, LanguageType language);

// A tutor from the recording of a job, which is `input`, analysed now; the resources of `language`
// are loaded. Appends lines for the user to `messages`.
Result<Tutor> AnalyzedTutor(const AlignJob& job, const InputFile& input, LanguageType language,
                            std::string& messages);

}  // namespace veral3::tools
