#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>

#include "training/corpus/Utterance.h"

// A corpus on disk: utterances one after the other, little-endian, in a file that only these
// programs read. Written to a temporary name and renamed by Close, so that a file under its own
// name is whole. Files of the first version, which had no tones, are read as well.
//
//   CorpusWriter writer("work/espeak.corpus");
//   writer.Write(utterance);
//   writer.Close();
//
//   CorpusReader reader("work/espeak.corpus");
//   while (auto utterance = reader.Next()) ...
//
// Both throw std::runtime_error, which names the file, when it cannot be written or read.
namespace veral3::training {

class CorpusWriter {
 public:
  explicit CorpusWriter(std::filesystem::path path);
  void Write(const Utterance& utterance);
  void Close();

 private:
  std::filesystem::path m_path;
  std::ofstream m_file;
};

class CorpusReader {
 public:
  explicit CorpusReader(std::filesystem::path path);
  std::optional<Utterance> Next();

 private:
  std::filesystem::path m_path;
  std::ifstream m_file;
  bool m_has_tones = false;
};

}  // namespace veral3::training
