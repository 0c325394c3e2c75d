#pragma once

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <span>
#include <vector>

// Plain examples on disk: rows of inputs as the engine would give them to a classifier, each with
// its class, or with the weight of each class where none is the whole truth. In the file: eight
// bytes of magic, the number of inputs and of classes (32 bits each), then all rows and then the
// weights of all rows, one a class (32-bit floats); little-endian.
//
//   VectorWriter writer("work/tone.vectors", 68, 5);
//   writer.Write(row, 3);
//   writer.Close();
namespace veral3::training {

// Writes to a temporary name and renames it by Close. Throws std::runtime_error where the disk
// refuses, std::invalid_argument for a row, a class or weights that do not fit the counts.
class VectorWriter {
 public:
  VectorWriter(std::filesystem::path path, int inputs, int classes);
  void Write(std::span<const float> row, int example_class);
  // `weights`: one a class, none below 0, 1 together.
  void Write(std::span<const float> row, std::span<const float> weights);
  void Close();
  std::size_t NumExamples() const { return m_weights.size() / static_cast<std::size_t>(m_classes); }

 private:
  std::filesystem::path m_path;
  std::ofstream m_file;
  int m_inputs;
  int m_classes;
  std::vector<float> m_weights;
};

struct VectorFile {
  int inputs = 0;
  int classes = 0;
  std::vector<float> rows;     // inputs x examples
  std::vector<float> weights;  // classes x examples

  std::size_t NumExamples() const {
    return classes < 1 ? 0 : weights.size() / static_cast<std::size_t>(classes);
  }

  std::span<const float> Row(std::size_t example) const {
    const auto width = static_cast<std::size_t>(inputs);
    return std::span(rows).subspan(example * width, width);
  }
  std::span<const float> Weights(std::size_t example) const {
    const auto width = static_cast<std::size_t>(classes);
    return std::span(weights).subspan(example * width, width);
  }
  // The class of the greatest weight.
  int ClassOf(std::size_t example) const;
};

// Throws std::runtime_error for what is no whole file of vectors.
VectorFile ReadVectorFile(const std::filesystem::path& path);

}  // namespace veral3::training
