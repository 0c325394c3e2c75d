#include "training/train/VectorSource.h"

#include <algorithm>
#include <stdexcept>

namespace veral3::training {

VectorSource::VectorSource(std::span<const VectorFile> files) : m_files(files) {
  if (files.empty()) throw std::runtime_error("no files of examples");
  for (std::uint32_t file = 0; file < files.size(); ++file) {
    if (files[file].NumInputs() != files[0].NumInputs() ||
        files[file].NumClasses() != files[0].NumClasses()) {
      throw std::runtime_error("files of examples with other inputs or classes");
    }
    for (std::uint32_t row = 0; row < files[file].NumExamples(); ++row) {
      m_examples.emplace_back(file, row);
    }
  }
}

int VectorSource::NumInputs() const { return m_files[0].NumInputs(); }
int VectorSource::NumClasses() const { return m_files[0].NumClasses(); }

void VectorSource::Fill(std::span<const std::uint32_t> examples, std::span<float> inputs,
                        std::span<std::int64_t> classes) const {
  const auto columns = static_cast<std::size_t>(NumInputs());
  for (std::size_t i = 0; i < examples.size(); ++i) {
    const auto [file, row] = m_examples[examples[i]];
    std::ranges::copy(m_files[file].Row(row),
                      inputs.begin() + static_cast<std::ptrdiff_t>(i * columns));
    classes[i] = m_files[file].Class(row);
  }
}

}  // namespace veral3::training
