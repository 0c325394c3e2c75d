#include "training/speech/FestivalSpeech.h"

#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "signal/CWaveFrameDef.h"
#include "training/augment/Augment.h"
#include "training/speech/ArpabetEvents.h"

namespace veral3::training {
namespace {

std::vector<std::int16_t> ReadAt22050(const std::filesystem::path& path) {
  SF_INFO info{};
  SNDFILE* file = sf_open(path.c_str(), SFM_READ, &info);
  if (file == nullptr) throw std::runtime_error("festival wrote no " + path.string());
  std::vector<short> own(static_cast<std::size_t>(info.frames));
  const sf_count_t read = sf_read_short(file, own.data(), info.frames);
  sf_close(file);
  if (read != info.frames || info.channels != 1) {
    throw std::runtime_error("cannot read " + path.string());
  }
  std::vector<std::int16_t> samples;
  const std::vector<float> floats(own.begin(), own.end());
  for (const float x : Resample(floats, double{kSampleRate} / info.samplerate)) {
    samples.push_back(static_cast<std::int16_t>(std::lround(std::clamp(x, -32768.0f, 32767.0f))));
  }
  return samples;
}

// Lines of "end 100 name" after a line "#"; an r that no vowel follows belongs to its vowel.
std::vector<PhonemeEvent> ReadSegments(const std::filesystem::path& path) {
  std::ifstream file(path);
  std::vector<PhonemeEvent> events;
  double start = 0.0;
  for (std::string line; std::getline(file, line);) {
    std::istringstream fields(line);
    double end = 0.0;
    std::string number;
    std::string name;
    if (!(fields >> end >> number >> name)) continue;
    if (!events.empty() && events.back().name == "r" && !IsArpabetVowel(name)) {
      events.back().name = "r_coda";
    }
    events.push_back({name, static_cast<std::int32_t>(std::lround(start * kSampleRate))});
    start = end;
  }
  if (events.empty()) throw std::runtime_error("festival wrote no " + path.string());
  return events;
}

}  // namespace

std::vector<SpokenText> SpeakWithFestival(const std::string& voice,
                                          std::span<const FestivalText> texts,
                                          const std::filesystem::path& folder) {
  std::filesystem::create_directories(folder);
  const auto script_path = folder / "speak.scm";
  std::ofstream script(script_path);
  script << "(voice_" << voice << ")\n";
  for (std::size_t i = 0; i < texts.size(); ++i) {
    std::string text = texts[i].text;
    std::erase(text, '"');
    std::erase(text, '\\');
    const std::string base = (folder / std::to_string(i)).string();
    script << "(Parameter.set 'Duration_Stretch " << texts[i].stretch << ")\n"
           << "(set! u (utt.synth (Utterance Text \"" << text << "\")))\n"
           << "(utt.save.wave u \"" << base << ".wav\" 'riff)\n"
           << "(utt.save.segs u \"" << base << ".segs\")\n";
  }
  script.close();
  const std::string command = "festival -b '" + script_path.string() + "' >/dev/null";
  if (!script || std::system(command.c_str()) != 0) {
    throw std::runtime_error("festival failed on " + script_path.string());
  }
  std::vector<SpokenText> spoken;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    const std::string base = (folder / std::to_string(i)).string();
    spoken.push_back({ReadAt22050(base + ".wav"), ReadSegments(base + ".segs")});
  }
  std::filesystem::remove_all(folder);
  return spoken;
}

}  // namespace veral3::training
