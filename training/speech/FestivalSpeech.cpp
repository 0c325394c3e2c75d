#include "training/speech/FestivalSpeech.h"

#include <iconv.h>
#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "signal/CWaveFrameDef.h"
#include "training/augment/Augment.h"

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

std::string Encoded(const std::string& text, const std::string& encoding) {
  const iconv_t converter = iconv_open(encoding.c_str(), "UTF-8");
  if (converter == reinterpret_cast<iconv_t>(-1)) {
    throw std::runtime_error("no such encoding: " + encoding);
  }
  std::string from = text;
  std::string to(text.size() * 4, '\0');
  char* in = from.data();
  char* out = to.data();
  std::size_t in_left = from.size();
  std::size_t out_left = to.size();
  const std::size_t result = iconv(converter, &in, &in_left, &out, &out_left);
  iconv_close(converter);
  if (result == static_cast<std::size_t>(-1)) {
    throw std::runtime_error("\"" + text + "\" cannot be written in " + encoding);
  }
  to.resize(to.size() - out_left);
  return to;
}

// Lines of "end 100 name" after a line "#".
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
    events.push_back({name, static_cast<std::int32_t>(std::lround(start * kSampleRate))});
    start = end;
  }
  if (events.empty()) throw std::runtime_error("festival wrote no " + path.string());
  return events;
}

// The texts, by number, for which the voice lacks a diphone: festival puts another in its place,
// which is not what the segments say. `errors`: what it wrote to standard error, where each text
// has a line "text NUMBER" before it.
std::vector<bool> TextsWithoutDiphone(const std::filesystem::path& errors, std::size_t count) {
  std::vector<bool> lacking(count, false);
  std::ifstream file(errors);
  std::size_t number = 0;
  for (std::string line; std::getline(file, line);) {
    std::istringstream fields(line);
    std::string word;
    if (fields >> word && word == "text") {
      fields >> number;
    } else if (line.find("using default diphone") != std::string::npos && number < count) {
      lacking[number] = true;
    }
  }
  return lacking;
}

}  // namespace

std::vector<SpokenText> SpeakWithFestival(const std::string& voice, const std::string& encoding,
                                          std::span<const FestivalText> texts,
                                          const std::filesystem::path& folder) {
  std::filesystem::create_directories(folder);
  const auto script_path = folder / "speak.scm";
  std::ofstream script(script_path);
  script << "(voice_" << voice << ")\n";
  for (std::size_t i = 0; i < texts.size(); ++i) {
    std::string text = Encoded(texts[i].text, encoding);
    std::erase(text, '"');
    std::erase(text, '\\');
    const std::string base = (folder / std::to_string(i)).string();
    script << "(format stderr \"text " << i << "\\n\")\n"
           << "(Parameter.set 'Duration_Stretch " << texts[i].stretch << ")\n"
           << "(set! u (utt.synth (Utterance Text \"" << text << "\")))\n"
           << "(utt.save.wave u \"" << base << ".wav\" 'riff)\n"
           << "(utt.save.segs u \"" << base << ".segs\")\n";
  }
  script.close();
  const auto errors = folder / "errors";
  const std::string command =
      "festival -b '" + script_path.string() + "' >/dev/null 2>'" + errors.string() + "'";
  if (!script || std::system(command.c_str()) != 0) {
    throw std::runtime_error("festival failed on " + script_path.string());
  }
  const std::vector<bool> lacking = TextsWithoutDiphone(errors, texts.size());
  std::vector<SpokenText> spoken;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    if (lacking[i]) {
      spoken.emplace_back();
      continue;
    }
    const std::string base = (folder / std::to_string(i)).string();
    spoken.push_back({ReadAt22050(base + ".wav"), ReadSegments(base + ".segs")});
  }
  std::filesystem::remove_all(folder);
  return spoken;
}

}  // namespace veral3::training
