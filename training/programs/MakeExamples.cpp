// Writes the recordings of examples/audio: three English sentences by voices that no model was
// trained on, each as a WAV file with its text and phoneme times in a JSON file beside it.
//
//   make-examples examples/audio

#include <sndfile.h>

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>

#include "signal/CWaveFrameDef.h"
#include "training/corpus/Utterance.h"
#include "training/speech/EnglishEvents.h"
#include "training/speech/EspeakSpeech.h"

namespace veral3::training {
namespace {

struct Example {
  const char* name;
  const char* text;
  EspeakVoice voice;
};

void WriteWav(const std::filesystem::path& path, const std::vector<std::int16_t>& samples) {
  SF_INFO info{};
  info.samplerate = kSampleRate;
  info.channels = 1;
  info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
  SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
  if (file == nullptr) throw std::runtime_error("cannot write " + path.string());
  const auto count = static_cast<sf_count_t>(samples.size());
  const bool whole = sf_write_short(file, samples.data(), count) == count;
  if (sf_close(file) != 0 || !whole) throw std::runtime_error("cannot write " + path.string());
}

void Run(const std::filesystem::path& folder) {
  const Example examples[] = {
      {"english-train", "please call me when the train arrives", {"en-us+f4", 145, 55, 55, 0}},
      {"english-weather", "the weather is lovely this morning", {"en-us+m4", 150, 45, 50, 0}},
      {"english-bread", "she sells fresh bread near the river", {"en-us+linda", 140, 50, 60, 0}},
  };
  std::filesystem::create_directories(folder);
  EspeakSpeech espeak;
  for (const Example& example : examples) {
    espeak.SetVoice(example.voice);
    const SpokenText spoken = espeak.Speak(example.text);
    auto labels = LabelsFromEvents(spoken.events, EnglishEventTable(EnglishAccent::kAmerican),
                                   static_cast<std::int32_t>(spoken.samples.size()));
    TakeClosures(labels, spoken.samples, kEnglishStops);
    nlohmann::ordered_json json = {{"text", example.text},
                                   {"language", "English"},
                                   {"voice", "espeak-ng " + example.voice.name},
                                   {"sample_rate", kSampleRate},
                                   {"num_samples", spoken.samples.size()},
                                   {"phonemes", nlohmann::ordered_json::array()}};
    for (const PhonemeLabel& label : labels) {
      json["phonemes"].push_back(
          {{"symbol", std::string(1, label.symbol)}, {"start_sample", label.start}});
    }
    WriteWav(folder / (std::string(example.name) + ".wav"), spoken.samples);
    std::ofstream file(folder / (std::string(example.name) + ".json"));
    file << json.dump(1) << "\n";
    if (!file) throw std::runtime_error("cannot write into " + folder.string());
  }
}

}  // namespace
}  // namespace veral3::training

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: make-examples FOLDER\n");
    return 2;
  }
  try {
    veral3::training::Run(argv[1]);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "make-examples: %s\n", error.what());
    return 1;
  }
  return 0;
}
