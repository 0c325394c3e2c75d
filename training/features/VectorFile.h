#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <span>
#include <vector>

// Examples of a small classifier on disk: rows of as many single-precision inputs as the file says,
// each with the number of its class. Little-endian, read by these programs only. Written to a
// temporary name and renamed by Close, so that a file under its own name is whole.
//
//   VectorWriter writer("work/goodness.vectors", 16, 2);
//   writer.Write(row, 0);
//   writer.Close();
//
//   VectorFile file("work/goodness.vectors");
//   for (std::size_t i = 0; i < file.NumExamples(); ++i) use(file.Row(i), file.Class(i));
//
// All throw std::runtime_error, which names the file, when it cannot be written or read.
namespace veral3::training {

class VectorWriter {
 public:
  VectorWriter(std::filesystem::path path, int inputs, int classes);
  // Throws std::invalid_argument for a row of another size or a class that the file does not have.
  void Write(std::span<const float> row, int its_class);
  void Close();
  std::size_t NumExamples() const { return m_count; }

 private:
  std::filesystem::path m_path;
  std::ofstream m_file;
  int m_inputs;
  int m_classes;
  std::size_t m_count = 0;
};

// The whole file in memory.
class VectorFile {
 public:
  explicit VectorFile(const std::filesystem::path& path);

  int NumInputs() const { return m_inputs; }
  int NumClasses() const { return m_classes; }
  std::size_t NumExamples() const { return m_labels.size(); }
  std::span<const float> Row(std::size_t example) const {
    return std::span(m_rows).subspan(example * static_cast<std::size_t>(m_inputs),
                                     static_cast<std::size_t>(m_inputs));
  }
  int Class(std::size_t example) const { return m_labels[example]; }

 private:
  int m_inputs = 0;
  int m_classes = 0;
  std::vector<float> m_rows;
  std::vector<std::uint8_t> m_labels;
};

}  // namespace veral3::training
