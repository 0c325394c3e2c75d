#include "SmallResources.h"

#include <sndfile.h>

#include <filesystem>
#include <utility>

#include "JsonSchema.h"
#include "SoundFiles.h"
#include "support/SmallEngine.h"

namespace veral3::tools::test {

SmallResources::SmallResources() {
  std::filesystem::create_directory(m_folder.Path() / "res");
  for (const auto& [from, to] : {
           std::pair{"dictionary/en.txt", "KEN-UTF8Order.txt"},
           std::pair{"dictionary/zh.txt", "KCN-UTF8Order.txt"},
           std::pair{"dictionary/ja.txt", "KJP-UTF8Order.txt"},
           std::pair{"models/frame_en.bin", "EnglishFrame.model"},
           std::pair{"models/frame_zh.bin", "ChineseFrame.model"},
           std::pair{"models/frame_ja.bin", "JapaneseFrame.model"},
           std::pair{"models/phon_en.bin", "EnglishPhon.model"},
           std::pair{"models/phon_zh.bin", "ChinesePhon.model"},
           std::pair{"models/phon_ja.bin", "JapanesePhon.model"},
           std::pair{"models/tone.bin", "ChineseTone.model"},
           std::pair{"models/good.bin", "UttGoodness.model"},
       }) {
    std::filesystem::copy_file(veral3::test::VectorPath(from), m_folder.Path() / "res" / to);
  }
  WriteWav("a.wav", veral3::test::NoiseBursts(22050, 7));
}

void SmallResources::WriteWav(const std::string& name,
                              const std::vector<std::int16_t>& samples) const {
  std::vector<double> values;
  for (const std::int16_t sample : samples) values.push_back(sample / 32768.0);
  WriteSoundFile(Path(name), values, 22050, 1, SF_FORMAT_WAV | SF_FORMAT_PCM_16);
}

ProcessResult SmallResources::Run(const std::string& command, const std::string& language,
                                  std::vector<std::string> arguments) const {
  arguments.insert(arguments.begin(), {command, "--lang", language, "--resources", Path("res")});
  return RunVeral3(arguments);
}

std::string SmallResources::SchemaErrorOf(const std::string& text, const std::string& schema) {
  return SchemaError(nlohmann::json::parse(text),
                     nlohmann::json::parse(veral3::test::ReadFile(
                         std::filesystem::path(VERAL3_SOURCE_DIR) / "docs/formats" / schema)));
}

}  // namespace veral3::tools::test
