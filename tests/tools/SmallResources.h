#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "Process.h"
#include "support/Vectors.h"

namespace veral3::tools::test {

// A scratch folder with the small dictionaries and all the small models of the vectors in res/, and
// some recordings. What the command finds with them means nothing, but everything around it is
// real.
class SmallResources : public testing::Test {
 protected:
  SmallResources();

  std::string Path(const std::string& name) const { return m_folder.Path() / name; }

  // 16 bit mono at 22050 Hz.
  void WriteWav(const std::string& name, const std::vector<std::int16_t>& samples) const;

  // `veral3 COMMAND --lang LANGUAGE --resources res ARGUMENTS`.
  ProcessResult Run(const std::string& command, const std::string& language,
                    std::vector<std::string> arguments) const;

  // "" when the text is JSON that fits docs/formats/SCHEMA.
  static std::string SchemaErrorOf(const std::string& text, const std::string& schema);

  const veral3::test::ScratchFolder m_folder;
};

}  // namespace veral3::tools::test
