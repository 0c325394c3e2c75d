#include "training/features/VectorFile.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <stdexcept>
#include <utility>

namespace veral3::training {
namespace {

constexpr std::array<char, 8> kMagic = {'V', '3', 'V', 'E', 'C', 'T', '2', '\n'};
constexpr std::size_t kHeader = kMagic.size() + 2 * sizeof(std::int32_t);
constexpr std::int32_t kMost = 1 << 14;  // inputs; more is damage
constexpr std::int32_t kMostClasses = 256;

std::filesystem::path Unfinished(const std::filesystem::path& path) {
  return path.string() + ".part";
}

// None below 0, 1 together.
bool AreWeights(std::span<const float> weights) {
  double sum = 0.0;
  for (const float weight : weights) {
    if (!(weight >= 0.0f)) return false;
    sum += double{weight};
  }
  return std::abs(sum - 1.0) < 1e-4;
}

}  // namespace

VectorWriter::VectorWriter(std::filesystem::path path, int inputs, int classes)
    : m_path(std::move(path)),
      m_file(Unfinished(m_path), std::ios::binary),
      m_inputs(inputs),
      m_classes(classes) {
  if (inputs < 1 || inputs > kMost || classes < 1 || classes > kMostClasses) {
    throw std::invalid_argument("no such number of inputs or classes");
  }
  const std::int32_t counts[] = {inputs, classes};
  m_file.write(kMagic.data(), kMagic.size());
  m_file.write(reinterpret_cast<const char*>(counts), sizeof counts);
  if (!m_file) throw std::runtime_error("cannot write " + m_path.string());
}

void VectorWriter::Write(std::span<const float> row, int example_class) {
  if (example_class < 0 || example_class >= m_classes) {
    throw std::invalid_argument("an example does not fit " + m_path.string());
  }
  std::vector<float> weights(static_cast<std::size_t>(m_classes), 0.0f);
  weights[static_cast<std::size_t>(example_class)] = 1.0f;
  Write(row, weights);
}

void VectorWriter::Write(std::span<const float> row, std::span<const float> weights) {
  if (row.size() != static_cast<std::size_t>(m_inputs) ||
      weights.size() != static_cast<std::size_t>(m_classes) || !AreWeights(weights)) {
    throw std::invalid_argument("an example does not fit " + m_path.string());
  }
  m_file.write(reinterpret_cast<const char*>(row.data()),
               static_cast<std::streamsize>(row.size_bytes()));
  m_weights.insert(m_weights.end(), weights.begin(), weights.end());
  if (!m_file) throw std::runtime_error("cannot write " + m_path.string());
}

void VectorWriter::Close() {
  m_file.write(reinterpret_cast<const char*>(m_weights.data()),
               static_cast<std::streamsize>(m_weights.size() * sizeof(float)));
  m_file.close();
  if (!m_file) throw std::runtime_error("cannot write " + m_path.string());
  std::filesystem::rename(Unfinished(m_path), m_path);
}

VectorFile ReadVectorFile(const std::filesystem::path& path) {
  const auto refuse = [&]() -> VectorFile {
    throw std::runtime_error(path.string() + " holds no vectors");
  };
  std::ifstream file(path, std::ios::binary | std::ios::ate);
  if (!file) return refuse();
  const auto size = static_cast<std::size_t>(file.tellg());
  file.seekg(0);
  std::array<char, 8> magic{};
  std::int32_t counts[2] = {};
  file.read(magic.data(), magic.size());
  file.read(reinterpret_cast<char*>(counts), sizeof counts);
  const bool fits =
      counts[0] >= 1 && counts[0] <= kMost && counts[1] >= 1 && counts[1] <= kMostClasses;
  if (!file || magic != kMagic || !fits) return refuse();
  VectorFile vectors{counts[0], counts[1], {}, {}};
  const auto width = static_cast<std::size_t>(counts[0]);
  const auto classes = static_cast<std::size_t>(counts[1]);
  const std::size_t bytes_each = (width + classes) * sizeof(float);
  if ((size - kHeader) % bytes_each != 0) return refuse();
  const std::size_t examples = (size - kHeader) / bytes_each;
  vectors.rows.resize(examples * width);
  vectors.weights.resize(examples * classes);
  file.read(reinterpret_cast<char*>(vectors.rows.data()),
            static_cast<std::streamsize>(vectors.rows.size() * sizeof(float)));
  file.read(reinterpret_cast<char*>(vectors.weights.data()),
            static_cast<std::streamsize>(vectors.weights.size() * sizeof(float)));
  if (!file) return refuse();
  for (std::size_t i = 0; i < examples; ++i) {
    if (!AreWeights(vectors.Weights(i))) return refuse();
  }
  return vectors;
}

int VectorFile::ClassOf(std::size_t example) const {
  const auto own = Weights(example);
  return static_cast<int>(std::ranges::max_element(own) - own.begin());
}

}  // namespace veral3::training
