#include "support/SmallEngine.h"

#include <filesystem>
#include <mutex>
#include <stdexcept>

#include "core/AnalyzedAudio.h"
#include "support/MessageCapture.h"
#include "support/Vectors.h"

namespace veral3::test {
namespace {

void LoadModel(const std::string& name, ModelFileType type) {
  if (AnalyzedAudio::LoadModelFile(VectorPath("models/" + name).c_str(), type) < 0) {
    throw std::runtime_error("cannot load " + name);
  }
}

void LoadAll() {
  const ScratchFolder folder;
  for (const auto& [from, to] :
       {std::pair{"en.txt", "KEN-UTF8Order.txt"}, std::pair{"zh.txt", "KCN-UTF8Order.txt"},
        std::pair{"ja.txt", "KJP-UTF8Order.txt"}}) {
    std::filesystem::copy_file(VectorPath(std::string("dictionary/") + from), folder.Path() / to);
  }
  AnalyzedAudio::LoadResourceInFolderPath((folder.Path().string() + "/").c_str());
  LoadModel("frame_en.bin", kFrameModelEnglish);
  LoadModel("frame_zh.bin", kFrameModelChinese);
  LoadModel("frame_ja.bin", kFrameModelJapanese);
  LoadModel("phon_en.bin", kPhonemeModelEnglish);
  LoadModel("phon_zh.bin", kPhonemeModelChinese);
  LoadModel("phon_ja.bin", kPhonemeModelJapanese);
  LoadModel("tone.bin", kToneModelChinese);
  LoadModel("good.bin", kUttGoodnessModel);
}

}  // namespace

void LoadSmallEngine() {
  static std::once_flag once;
  std::call_once(once, [] {
    const MessageCapture quiet;
    LoadAll();
  });
}

std::vector<std::int16_t> ChainRecording(const std::string& name) {
  return LoadVector<std::int16_t>("chain/" + name + ".s16");
}

std::vector<std::int16_t> NoiseBursts(int num_samples, std::uint32_t seed) {
  std::vector<std::int16_t> samples(static_cast<std::size_t>(num_samples));
  std::uint32_t state = seed * 2654435761u + 1u;
  for (int i = 0; i < num_samples; ++i) {
    state = state * 1664525u + 1013904223u;
    const int noise = static_cast<int>(state >> 17) - 16384;
    const bool burst = (i / 2205) % 3 != 0;
    samples[static_cast<std::size_t>(i)] = static_cast<std::int16_t>(burst ? noise : noise / 64);
  }
  return samples;
}

}  // namespace veral3::test
