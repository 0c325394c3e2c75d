#include "tools/TextFiles.h"

#include <utf8proc.h>

#include <fstream>
#include <functional>
#include <vector>

namespace veral3::tools {
namespace {

constexpr std::size_t kMaxFileBytes = 16u << 20;
constexpr std::string_view kBlanks = " \t";

std::string_view Trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

Result<std::string> ReadText(const std::filesystem::path& path) {
  using Failure = Result<std::string>;
  std::error_code error;
  if (std::filesystem::is_directory(path, error)) return Failure::Failure("is a folder");
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    return Failure::Failure(std::filesystem::exists(path, error) ? "cannot be opened"
                                                                 : "does not exist");
  }
  // What a device or a pipe holds is known only when it has been read.
  std::string text;
  std::vector<char> block(1u << 16);
  while (file.read(block.data(), static_cast<std::streamsize>(block.size())) || file.gcount() > 0) {
    text.append(block.data(), static_cast<std::size_t>(file.gcount()));
    if (text.size() > kMaxFileBytes) {
      return Failure::Failure("is larger than " + std::to_string(kMaxFileBytes >> 20) + " MiB");
    }
  }
  if (file.bad()) return Failure::Failure("cannot be read");
  if (text.starts_with("\xEF\xBB\xBF")) text.erase(0, 3);
  return text;
}

// Calls `take` with each line that is not blank, until it gives a failure.
std::string ForEachLine(std::string_view text,
                        const std::function<std::string(std::string_view, int)>& take) {
  int number = 0;
  while (!text.empty()) {
    ++number;
    const std::size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (!IsUtf8(line)) {
      return "is not UTF-8 in line " + std::to_string(number) + "; save it as UTF-8";
    }
    if (Trimmed(line).empty()) continue;
    if (std::string error = take(line, number); !error.empty()) return error;
  }
  return {};
}

}  // namespace

bool IsUtf8(std::string_view text) {
  auto* bytes = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
  auto left = static_cast<utf8proc_ssize_t>(text.size());
  while (left > 0) {
    utf8proc_int32_t c = 0;
    const utf8proc_ssize_t used = utf8proc_iterate(bytes, left, &c);
    if (used <= 0 || c == 0) return false;
    bytes += used;
    left -= used;
  }
  return true;
}

Result<std::vector<std::string>> ReadLines(const std::filesystem::path& path) {
  using Failure = Result<std::vector<std::string>>;
  const Result<std::string> text = ReadText(path);
  if (!text) return Failure::Failure(text.Error());
  std::vector<std::string> lines;
  const std::string error = ForEachLine(*text, [&](std::string_view line, int) -> std::string {
    lines.emplace_back(Trimmed(line));
    return {};
  });
  if (!error.empty()) return Failure::Failure(error);
  if (lines.empty()) return Failure::Failure("has no text");
  return lines;
}

Result<std::vector<std::string>> ReadSentences(const std::filesystem::path& path) {
  using Failure = Result<std::vector<std::string>>;
  const Result<std::string> text = ReadText(path);
  if (!text) return Failure::Failure(text.Error());
  std::vector<std::string> sentences;
  const std::string error = ForEachLine(*text, [&](std::string_view line, int) -> std::string {
    if (sentences.size() == kMaxCandidates) {
      return "has more than " + std::to_string(kMaxCandidates) +
             " sentences; one recording is compared with at most that many (for a sentence of its "
             "own for each recording use --list)";
    }
    sentences.emplace_back(Trimmed(line));
    return {};
  });
  if (!error.empty()) return Failure::Failure(error);
  if (sentences.empty()) return Failure::Failure("has no sentence");
  return sentences;
}

Result<std::vector<ListEntry>> ReadList(const std::filesystem::path& path) {
  using Failure = Result<std::vector<ListEntry>>;
  const Result<std::string> text = ReadText(path);
  if (!text) return Failure::Failure(text.Error());
  std::vector<ListEntry> entries;
  const std::string error =
      ForEachLine(*text, [&](std::string_view line, int number) -> std::string {
        const std::string where = " in line " + std::to_string(number);
        ListEntry entry;
        entry.line = number;
        std::size_t tab = line.find('\t');
        const std::string_view audio = Trimmed(line.substr(0, tab));
        if (tab == std::string_view::npos) {
          return "has no tab" + where + "; each line is a path, a tab and a sentence";
        }
        if (audio.empty()) return "has no path before the tab" + where;
        entry.audio = audio == "-" ? "-" : (path.parent_path() / audio).string();
        while (tab != std::string_view::npos) {
          line = line.substr(tab + 1);
          tab = line.find('\t');
          const std::string_view sentence = Trimmed(line.substr(0, tab));
          if (!sentence.empty()) entry.sentences.emplace_back(sentence);
        }
        if (entry.sentences.empty()) return "has no sentence behind the tab" + where;
        if (entry.sentences.size() > kMaxCandidates) {
          return "has more than " + std::to_string(kMaxCandidates) + " sentences" + where;
        }
        entries.push_back(std::move(entry));
        return {};
      });
  if (!error.empty()) return Failure::Failure(error);
  if (entries.empty()) return Failure::Failure("is an empty list");
  return entries;
}

}  // namespace veral3::tools
