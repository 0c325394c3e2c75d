#pragma once

#include <string>
#include <vector>

#include "common/LanguageType.h"
#include "tools/AlignJobs.h"

// Making sure, before any audio is read, that the engine can use every sentence.
namespace veral3::tools {

struct SentencePlan {
  bool usable = true;
  std::string messages;  // lines: what makes sentences unusable, or what will not be aligned
};

// Prepares the sentences of all jobs (AlignJob::prepared) and looks them up in the dictionary,
// which is loaded. A sentence is unusable when it is empty, has nothing that can be aligned, an
// inline pronunciation that does not parse, more words than the engine takes, or, unless
// `skip_unknown`, words or numbers that the engine would pass over.
SentencePlan PlanSentences(std::vector<AlignJob>& jobs, LanguageType language, bool skip_unknown);

}  // namespace veral3::tools
