#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

// Folders of recordings and what is read in them, in either of two layouts:
//
// - pairs NAME.wav (or .flac, .ogg, .mp3, ...) and NAME.txt, the text in UTF-8; folders below are
//   looked into, and the folder that a pair lies in is its speaker;
// - a Kaldi data folder: wav.scp ("RECORDING PATH"), text ("UTTERANCE WORDS..."), and where they
//   are, segments ("UTTERANCE RECORDING BEGIN END", seconds) and utt2spk ("UTTERANCE SPEAKER").
namespace veral3::training {

struct FolderEntry {
  std::string id;
  std::filesystem::path audio;
  std::string text;     // UTF-8, as written
  std::string speaker;  // "" where nothing says
  double begin = 0.0;   // [s] in the recording
  std::optional<double> end;
};

struct RecordingFolder {
  std::vector<FolderEntry> entries;  // by id
  std::vector<std::string> refused;  // lines: what could not be used, and why
};

// Reads either layout; a folder with a wav.scp and a text is Kaldi's. Relative paths in wav.scp
// are taken from the working folder, as Kaldi does, else from the data folder. A wav.scp entry that
// is a command ("sox ... |") is refused: nothing of a data folder is run. Throws std::runtime_error
// when the folder cannot be read.
RecordingFolder ReadRecordingFolder(const std::filesystem::path& folder);

}  // namespace veral3::training
