#pragma once

#include <string>

#include "tools/AlignmentJson.h"
#include "tools/AnalysisReport.h"

// An analysis as text, UTF-8: docs/command.md describes each form. A report whose alignment has an
// error gives text in JSON only, and "" otherwise. No number is infinite or none in any of them.
namespace veral3::tools {

inline constexpr int kAnalysisSchemaVersion = 1;

// Words, below them their syllables, below these their phonemes, with what was measured of each; a
// dash stands for what was not.
std::string AnalysisTable(const AnalysisReport& report);

// What docs/formats/analyze.schema.json describes.
OrderedJson AnalysisJson(const AnalysisReport& report);

// A line for the recording, each word, syllable, phoneme and pause; empty fields where a column
// says nothing of a tier.
std::string AnalysisCsvHeader();
std::string AnalysisCsv(const AnalysisReport& report);

}  // namespace veral3::tools
