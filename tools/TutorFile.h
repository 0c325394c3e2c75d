#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "common/LanguageType.h"
#include "storage/HLYFile.h"
#include "tools/InputFile.h"
#include "tools/Result.h"

// A tutor's recording in a file: a WAV file that any player plays, with what was found in it beside
// the sound, so that learners are graded against it without analysing it again.
// docs/formats/tutor-file.md has it to the byte.
//
//   Result<TutorFile> tutor = LoadTutor(path);
//   if (!tutor) ...                                    // path + " " + tutor.Error()
//   HLYFile file = AsHLYFile(*tutor);
//   SavedAlignedAudio saved(tutor->language);
//   saved.LoadFromHLY(&file);
namespace veral3::tools {

inline constexpr std::uint32_t kTutorFileVersion = 1;
inline constexpr std::size_t kMaxTeacherBytes = 1024;
inline constexpr std::size_t kMaxSentenceBytes = 16384;
inline constexpr std::size_t kMaxTutorSamples = 7208959;  // the alignment record counts no further

struct TutorFile {
  LanguageType language = kLanguageEnglish;
  HLYFile::SubL2Type variety = HLYFile::kSubL2American;
  std::string teacher;                // UTF-8, may be empty
  std::string sentence;               // UTF-8, as a teacher writes it
  std::uint32_t date = 0;             // year x 10000 + month x 100 + day
  std::vector<std::int16_t> samples;  // 22050 Hz, mono, as it was before the alignment filtered it
  std::array<unsigned char, 2544> record{};  // docs/formats/alignment-record.md
};

// The variety of a language that the engine knows.
HLYFile::SubL2Type VarietyOf(LanguageType language);

// Writes a tutor file, whole or not at all. Returns what went wrong as the rest of a sentence that
// begins with the path, "" when nothing did. The same tutor makes the same bytes.
std::string WriteTutor(const std::filesystem::path& path, const TutorFile& tutor);

// Reads one. The failure is the rest of a sentence that begins with the path: not there, no tutor
// file, made by a later version, damaged. What is read is what was written: checksums cover the
// sound and everything else.
Result<TutorFile> LoadTutor(const std::filesystem::path& path);
Result<TutorFile> LoadTutor(const InputFile& file);

// Whether a file is a tutor file, be it a damaged one or of a later version, and no plain
// recording.
bool IsTutorFile(const InputFile& file);

// The tutor as the engine takes it. Refers to the samples and the record of `tutor`, which must
// outlive it.
HLYFile AsHLYFile(TutorFile& tutor);

}  // namespace veral3::tools
