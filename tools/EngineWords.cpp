#include "tools/EngineWords.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "tools/Shortened.h"

namespace veral3::tools {
namespace {

constexpr std::string_view kTooManyToAlign = "ERROR in ViterbiAligner::Align(), more than ";
constexpr std::string_view kTooManyToKeep = "ERROR in AnalyzedAudio::GetAlignInfo(), ";
// A line about a word, which stands between two texts.
struct WordLine {
  std::string_view before;
  std::string_view after;
  std::string_view more;  // behind the number of further ones
};

constexpr WordLine kMissingWord = {"*** Error: Word <",
                                   "> not found in VeralDictionary::LookupWord()",
                                   " more words that the dictionary lacks"};
constexpr WordLine kBadPronunciation = {"ERROR in ViterbiAligner::Align(), pronunciation ", "",
                                        " more pronunciations that cannot be aligned"};

bool IsOf(const WordLine& kind, std::string_view line) {
  return line.size() >= kind.before.size() + kind.after.size() && line.starts_with(kind.before) &&
         line.ends_with(kind.after);
}

// The line with what stands from `begin` to `end` shortened.
std::string WithShortened(std::string_view line, std::size_t begin, std::size_t end) {
  std::string text(line.substr(0, begin));
  text += Shortened(line.substr(begin, end - begin));
  return text += line.substr(end);
}

}  // namespace

std::string InWords(std::string_view line) {
  if (line == kNoPitchSegments) return "no voice was found";
  if (line == kNoPath) return "no reading of the sentence fits the recording";
  if (line.starts_with(kTooManyToAlign)) {
    return "the sentence has more than " + std::string(line.substr(kTooManyToAlign.size())) +
           ", the most that are aligned at once";
  }
  if (const std::size_t comma = line.find(", more than ");
      line.starts_with(kTooManyToKeep) && comma != std::string_view::npos) {
    // "130 phonemes, more than 127"
    return "it has " + std::string(line.substr(kTooManyToKeep.size())) +
           ", the most that a tutor file holds";
  }
  if (IsOf(kMissingWord, line)) {
    return WithShortened(line, kMissingWord.before.size(), line.size() - kMissingWord.after.size());
  }
  if (IsOf(kBadPronunciation, line)) {
    constexpr std::string_view kWord = " of word [";
    const std::size_t word = line.find(kWord);
    // "] cannot be used", "] has the unknown phoneme [~]"
    const std::size_t end = std::max(line.rfind("] cannot") + 1, line.rfind("] has") + 1);
    if (word != std::string_view::npos && end > word + kWord.size()) {
      return WithShortened(line, word + kWord.size(), end - 1);
    }
  }
  return std::string(line);
}

std::string LinesInWords(std::string_view text) {
  std::string lines;
  std::size_t missing = 0;
  std::size_t bad = 0;
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    const std::string_view line = text.substr(0, end);
    text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    if (IsOf(kMissingWord, line) && ++missing > kMostQuotedItems) continue;
    if (IsOf(kBadPronunciation, line) && ++bad > kMostQuotedItems) continue;
    lines += InWords(line) + "\n";
  }
  for (const auto& [count, kind] :
       {std::pair{missing, kMissingWord}, std::pair{bad, kBadPronunciation}}) {
    if (count <= kMostQuotedItems) continue;
    lines += "and " + std::to_string(count - kMostQuotedItems) + std::string(kind.more) + "\n";
  }
  return lines;
}

}  // namespace veral3::tools
