#pragma once

#include <string>

#include "common/LanguageType.h"
#include "tools/AlignmentFormats.h"
#include "tools/AlignmentReport.h"

// The phonemes of a recording without a sentence, and their texts.
namespace veral3::tools {

struct AnnotateOutcome {
  AlignmentReport report;  // phonemes only, without words and syllables; pauses are the symbol "-"
  std::string messages;    // for the user, lines
};

// Reads and annotates one recording. The frame model of `language` is loaded. Nothing throws: what
// goes wrong is the report's error.
AnnotateOutcome RunAnnotateJob(const std::string& file, LanguageType language);

// A table, JSON (docs/formats/annotate.schema.json), a TextGrid, CSV or Audacity labels. A report
// with an error gives text in JSON only. Pauses are "-" in a table, JSON and CSV, empty intervals
// in a TextGrid, and no label in Audacity.
std::string AnnotationText(const AlignmentReport& report, Format format);

}  // namespace veral3::tools
