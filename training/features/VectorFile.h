#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <span>
#include <vector>

// Plain examples on disk: rows of inputs as the engine would give them to a classifier, each with
// its class. In the file: eight bytes of magic, the number of inputs and of classes (32 bits each),
// then all rows (32-bit floats), then all classes (8 bits); little-endian.
//
//   VectorWriter writer("work/tone.vectors", 68, 5);
//   writer.Write(row, 3);
//   writer.Close();
namespace veral3::training {

// Writes to a temporary name and renames it by Close. Throws std::runtime_error where the disk
// refuses, std::invalid_argument for a row or a class that does not fit the counts.
class VectorWriter {
 public:
  VectorWriter(std::filesystem::path path, int inputs, int classes);
  void Write(std::span<const float> row, int example_class);
  void Close();
  std::size_t NumExamples() const { return m_classes.size(); }

 private:
  std::filesystem::path m_path;
  std::ofstream m_file;
  int m_inputs;
  int m_num_classes;
  std::vector<std::uint8_t> m_classes;
};

struct VectorFile {
  int inputs = 0;
  int classes = 0;
  std::vector<float> rows;             // inputs x examples
  std::vector<std::uint8_t> class_of;  // one an example, below `classes`

  std::span<const float> Row(std::size_t example) const {
    const auto width = static_cast<std::size_t>(inputs);
    return std::span(rows).subspan(example * width, width);
  }
};

// Throws std::runtime_error for what is no whole file of vectors.
VectorFile ReadVectorFile(const std::filesystem::path& path);

}  // namespace veral3::training
