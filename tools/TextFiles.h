#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "tools/Result.h"

// Sentences from files: UTF-8, one line each; a byte-order mark, CR LF line ends, blank lines and a
// missing last line end do no harm. Files of more than 16 MiB are refused.
namespace veral3::tools {

inline constexpr std::size_t kMaxCandidates = 8;  // sentences that one recording is compared with

// True for well-formed UTF-8 without zero bytes.
bool IsUtf8(std::string_view text);

// All lines that are not blank, without the blanks around them; at least one.
Result<std::vector<std::string>> ReadLines(const std::filesystem::path& path);

// Candidate sentences, one a line, 1 to kMaxCandidates.
Result<std::vector<std::string>> ReadSentences(const std::filesystem::path& path);

struct ListEntry {
  std::string audio;  // path, relative ones already below the list's folder; "-" standard input
  std::vector<std::string> sentences;
  int line = 0;  // in the list, from 1
};

// Recordings with their sentences: a line holds the path of a recording, a tab and the sentence;
// further candidates follow behind further tabs.
Result<std::vector<ListEntry>> ReadList(const std::filesystem::path& path);

}  // namespace veral3::tools
