#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/AlignmentReport.h"

// An alignment as text: a table to read, and the formats of docs/command.md for other programs. All
// text is UTF-8. Pure functions; a report with an error gives text in JSON only, and "" otherwise.
namespace veral3::tools {

enum class Format { kTable, kJson, kTextGrid, kCtm, kCsv, kAudacity };
enum class Tier { kWords, kSyllables, kPhonemes };

// By the names that the command line takes ("table", "json", ...; "words", ...).
std::optional<Format> FormatOf(std::string_view name);
std::optional<Tier> TierOf(std::string_view name);
std::string_view NameOf(Tier tier);

// ".txt", ".json", ".TextGrid", ".ctm", ".csv", ".labels.txt".
std::string_view ExtensionOf(Format format);

// True for formats whose texts for several recordings may follow one another in one file (JSON as
// an array; the others have no place for a file name).
bool HoldsSeveralFiles(Format format);

// Words, below them their syllables, below these their phonemes, with pauses, in seconds and
// samples.
std::string Table(const AlignmentReport& report);

// One object, indented by two blanks, no line end after it (docs/formats/align.schema.json).
std::string Json(const AlignmentReport& report);

// Praat's long text format: the tiers words, syllables and phonemes from 0 to the recording's end,
// pauses as intervals with an empty text. Or some of the tiers only.
std::string TextGrid(const AlignmentReport& report);
std::string TextGrid(const AlignmentReport& report, const std::vector<Tier>& tiers);

// NIST time marks of one tier, a line a segment: `recording` (without blanks), channel 1, start and
// duration in seconds, text, confidence.
std::string Ctm(const AlignmentReport& report, std::string_view recording, Tier tier);

// RFC 4180: file, tier, text, start and end in samples, then in seconds. All tiers without `tier`.
// The header line stands on its own.
std::string CsvHeader();
std::string Csv(const AlignmentReport& report, std::optional<Tier> tier);

// A label track for Audacity: start, end in seconds, text, parted by tabs.
std::string AudacityLabels(const AlignmentReport& report, Tier tier);

}  // namespace veral3::tools
