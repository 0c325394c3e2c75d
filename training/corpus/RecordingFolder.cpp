#include "training/corpus/RecordingFolder.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace veral3::training {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";

std::string Trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(kBlanks) - first + 1));
}

// A table of Kaldi's: what follows the first field of each line, by that field.
using Table = std::map<std::string, std::string>;

Table ReadTable(const std::filesystem::path& path) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error("cannot read " + path.string());
  Table table;
  for (std::string line; std::getline(file, line);) {
    const std::string trimmed = Trimmed(line);
    const std::size_t blank = trimmed.find_first_of(kBlanks);
    if (trimmed.empty()) continue;
    table[trimmed.substr(0, blank)] =
        blank == std::string::npos ? "" : Trimmed(std::string_view(trimmed).substr(blank));
  }
  return table;
}

Table ReadTableIfThere(const std::filesystem::path& path) {
  return std::filesystem::exists(path) ? ReadTable(path) : Table{};
}

// Where an entry of wav.scp lies; nothing, and the reason, where it is no file.
std::optional<std::filesystem::path> AudioOf(const std::string& entry,
                                             const std::filesystem::path& folder,
                                             std::string& reason) {
  if (entry.ends_with('|')) {
    reason = "its wav.scp entry is a command; write the files first";
    return std::nullopt;
  }
  for (const std::filesystem::path& path : {std::filesystem::path(entry), folder / entry}) {
    if (std::filesystem::is_regular_file(path)) return path;
  }
  reason = "there is no file " + entry;
  return std::nullopt;
}

RecordingFolder ReadKaldi(const std::filesystem::path& folder) {
  const Table recordings = ReadTable(folder / "wav.scp");
  const Table texts = ReadTable(folder / "text");
  const Table segments = ReadTableIfThere(folder / "segments");
  const Table speakers = ReadTableIfThere(folder / "utt2spk");
  RecordingFolder result;
  for (const auto& [id, text] : texts) {
    FolderEntry entry{id, {}, text, {}, 0.0, std::nullopt};
    std::string recording = id;
    std::string reason;
    if (!segments.empty()) {
      const auto segment = segments.find(id);
      double end = 0.0;
      std::istringstream fields(segment == segments.end() ? "" : segment->second);
      fields.imbue(std::locale::classic());
      if (!(fields >> recording >> entry.begin >> end) || !(entry.begin >= 0.0)) {
        result.refused.push_back(id + ": no usable line in segments");
        continue;
      }
      // Kaldi writes -1 for the recording's end.
      if (end >= 0.0) entry.end = end;
    }
    const auto place = recordings.find(recording);
    if (place == recordings.end()) {
      result.refused.push_back(id + ": wav.scp has no recording " + recording);
      continue;
    }
    const auto audio = AudioOf(place->second, folder, reason);
    if (!audio) {
      result.refused.push_back(id + ": " + reason);
      continue;
    }
    entry.audio = *audio;
    if (const auto speaker = speakers.find(id); speaker != speakers.end()) {
      entry.speaker = speaker->second;
    }
    result.entries.push_back(std::move(entry));
  }
  return result;
}

bool IsAudio(const std::filesystem::path& path) {
  const std::string extension = path.extension().string();
  return extension == ".wav" || extension == ".flac" || extension == ".ogg" ||
         extension == ".opus" || extension == ".mp3" || extension == ".aiff" || extension == ".au";
}

RecordingFolder ReadPairs(const std::filesystem::path& folder) {
  RecordingFolder result;
  for (const auto& file : std::filesystem::recursive_directory_iterator(folder)) {
    if (!file.is_regular_file() || !IsAudio(file.path())) continue;
    const std::string id =
        std::filesystem::relative(file.path(), folder).replace_extension().string();
    const std::filesystem::path text_path =
        std::filesystem::path(file.path()).replace_extension(".txt");
    std::ifstream text(text_path);
    if (!text) {
      result.refused.push_back(id + ": there is no " + text_path.filename().string());
      continue;
    }
    const std::string content(std::istreambuf_iterator<char>(text), {});
    const std::filesystem::path parent =
        std::filesystem::relative(file.path().parent_path(), folder);
    result.entries.push_back({id, file.path(), Trimmed(content),
                              parent == "." ? "" : parent.string(), 0.0, std::nullopt});
  }
  return result;
}

}  // namespace

RecordingFolder ReadRecordingFolder(const std::filesystem::path& folder) try {
  const bool kaldi =
      std::filesystem::exists(folder / "wav.scp") && std::filesystem::exists(folder / "text");
  RecordingFolder result = kaldi ? ReadKaldi(folder) : ReadPairs(folder);
  // Whatever order the file system has.
  std::ranges::sort(result.entries, {}, &FolderEntry::id);
  std::ranges::sort(result.refused);
  return result;
} catch (const std::filesystem::filesystem_error& error) {
  throw std::runtime_error("cannot read the folder " + folder.string() + ": " +
                           error.code().message());
}

}  // namespace veral3::training
