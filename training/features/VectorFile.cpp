#include "training/features/VectorFile.h"

#include <array>
#include <stdexcept>
#include <string>
#include <utility>

namespace veral3::training {
namespace {

constexpr std::array<char, 8> kMagic = {'V', '3', 'V', 'E', 'C', 'S', '1', '\n'};
constexpr std::int32_t kMostInputs = 4096;
constexpr std::int32_t kMostClasses = 256;  // a class is one byte

std::filesystem::path Unfinished(const std::filesystem::path& path) {
  return path.string() + ".part";
}

std::runtime_error Failure(const char* what, const std::filesystem::path& path) {
  return std::runtime_error(std::string(what) + " " + path.string());
}

}  // namespace

VectorWriter::VectorWriter(std::filesystem::path path, int inputs, int classes)
    : m_path(std::move(path)),
      m_file(Unfinished(m_path), std::ios::binary),
      m_inputs(inputs),
      m_classes(classes) {
  if (inputs < 1 || inputs > kMostInputs || classes < 1 || classes > kMostClasses) {
    throw std::invalid_argument("no such size of examples");
  }
  m_file.write(kMagic.data(), kMagic.size());
  for (const std::int32_t value : {inputs, classes}) {
    m_file.write(reinterpret_cast<const char*>(&value), sizeof value);
  }
}

void VectorWriter::Write(std::span<const float> row, int its_class) {
  if (row.size() != static_cast<std::size_t>(m_inputs) || its_class < 0 || its_class >= m_classes) {
    throw std::invalid_argument("an example of another size or class than the file's");
  }
  m_file.write(reinterpret_cast<const char*>(row.data()),
               static_cast<std::streamsize>(row.size_bytes()));
  m_file.put(static_cast<char>(its_class));
  ++m_count;
}

void VectorWriter::Close() {
  m_file.close();
  if (!m_file) throw Failure("cannot write", m_path);
  std::filesystem::rename(Unfinished(m_path), m_path);
}

VectorFile::VectorFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::array<char, 8> magic{};
  std::array<std::int32_t, 2> sizes{};
  file.read(magic.data(), magic.size());
  file.read(reinterpret_cast<char*>(sizes.data()), sizeof sizes);
  if (!file || magic != kMagic || sizes[0] < 1 || sizes[0] > kMostInputs || sizes[1] < 1 ||
      sizes[1] > kMostClasses) {
    throw Failure("no examples in", path);
  }
  m_inputs = sizes[0];
  m_classes = sizes[1];
  std::vector<float> row(static_cast<std::size_t>(m_inputs));
  while (file.read(reinterpret_cast<char*>(row.data()),
                   static_cast<std::streamsize>(row.size() * sizeof(float)))) {
    const int its_class = file.get();
    if (its_class < 0 || its_class >= m_classes) throw Failure("damaged:", path);
    m_rows.insert(m_rows.end(), row.begin(), row.end());
    m_labels.push_back(static_cast<std::uint8_t>(its_class));
  }
  if (file.gcount() != 0) throw Failure("cut short:", path);
}

}  // namespace veral3::training
