// Writes the recordings with which the tests check that grading makes sense: for each language two
// sentences, each read by a tutor, by another voice, and by the tutor's voice with one fault at a
// time. FLAC, 16 bit, 22050 Hz, and readings.json that tells what each of them is. All of it is
// spoken by espeak-ng, in voices that no model was trained on.
//
//   make-sense-recordings tests/vectors/sense

#include <sndfile.h>

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "recognition/Languages.h"
#include "signal/CWaveFrameDef.h"
#include "training/grading/SenseReadings.h"

namespace veral3::training {
namespace {

void WriteFlac(const std::filesystem::path& path, const std::vector<std::int16_t>& samples) {
  SF_INFO info{};
  info.samplerate = kSampleRate;
  info.channels = 1;
  info.format = SF_FORMAT_FLAC | SF_FORMAT_PCM_16;
  SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
  if (file == nullptr) throw std::runtime_error("cannot write " + path.string());
  const auto count = static_cast<sf_count_t>(samples.size());
  const bool whole = sf_write_short(file, samples.data(), count) == count;
  if (sf_close(file) != 0 || !whole) throw std::runtime_error("cannot write " + path.string());
}

// The faults that need a synthesiser; silence and other sentences the tests make themselves.
constexpr std::pair<SenseFault, const char*> kSpoken[] = {
    {SenseFault::kNone, "tutor"},
    {SenseFault::kOtherVoice, "other_voice"},
    {SenseFault::kConsonants, "consonants"},
    {SenseFault::kFlat, "flat"},
    {SenseFault::kTones, "tones"},
    {SenseFault::kShortVowels, "short_vowels"},
};

void WriteLanguage(LanguageType language, const std::string& tag,
                   const std::filesystem::path& folder, EspeakSpeech& espeak,
                   nlohmann::ordered_json& all) {
  constexpr std::size_t kSentences = 2;
  constexpr std::size_t kVoice = 0;
  const SenseReadings readings(language, espeak);
  for (std::size_t sentence = 0; sentence < kSentences; ++sentence) {
    const SenseSentence& texts = readings.Sentences()[sentence];
    nlohmann::ordered_json entry = {
        {"language", tag},
        {"text", texts.text},
        {"voice", "espeak-ng " + readings.VoiceName(kVoice, SenseFault::kNone)},
        {"other_voice", "espeak-ng " + readings.VoiceName(kVoice, SenseFault::kOtherVoice)},
        {"readings", nlohmann::ordered_json::object()}};
    for (const auto& [fault, name] : kSpoken) {
      if ((fault == SenseFault::kTones && texts.tones.empty()) ||
          (fault == SenseFault::kShortVowels && texts.short_vowels.empty())) {
        continue;
      }
      const std::string file = tag + std::to_string(sentence + 1) + "_" + name + ".flac";
      WriteFlac(folder / file, readings.Speak(sentence, kVoice, fault));
      entry["readings"][name] = file;
    }
    all.push_back(std::move(entry));
  }
}

void Run(const std::filesystem::path& folder) {
  std::filesystem::create_directories(folder);
  EspeakSpeech espeak;
  nlohmann::ordered_json all = nlohmann::ordered_json::array();
  for (const LanguageRow& row : Languages()) {
    WriteLanguage(row.language, row.code, folder, espeak, all);
  }
  std::ofstream file(folder / "readings.json");
  file << all.dump(1) << "\n";
  if (!file) throw std::runtime_error("cannot write into " + folder.string());
}

}  // namespace
}  // namespace veral3::training

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: make-sense-recordings FOLDER\n");
    return 2;
  }
  try {
    veral3::training::Run(argv[1]);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "make-sense-recordings: %s\n", error.what());
    return 1;
  }
  return 0;
}
