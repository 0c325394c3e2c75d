// Makes a corpus of your own recordings, labelled by forced alignment with the model at hand. The
// folder holds pairs NAME.wav and NAME.txt: any sampling rate, mono, and the text that is read.
//
//   read-recordings --folder recordings --dictionary resources/KEN-UTF8Order.txt
//       --model resources/EnglishFrame.model --out work/own.corpus
//
// Recordings that do not align to their text, or hold words that the dictionary lacks, are named
// and left out.

#include <sndfile.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "common/CString.h"
#include "common/Messages.h"
#include "recognition/Models.h"
#include "recognition/VeralDictionary.h"
#include "recognition/ViterbiAligner.h"
#include "signal/CWaveFrameDef.h"
#include "signal/HighPassFilter.h"
#include "training/augment/Augment.h"
#include "training/corpus/CorpusFile.h"
#include "training/measure/ForcedAlignment.h"

namespace veral3::training {
namespace {

struct Options {
  std::string folder;
  std::string dictionary;
  std::string model;
  std::string out;
  int language = kLanguageEnglish;
};

std::vector<std::int16_t> ReadAudio(const std::filesystem::path& path) {
  SF_INFO info{};
  SNDFILE* file = sf_open(path.c_str(), SFM_READ, &info);
  if (file == nullptr) throw std::runtime_error("cannot read " + path.string());
  std::vector<float> own(static_cast<std::size_t>(std::max<sf_count_t>(info.frames, 0)));
  const bool mono = info.channels == 1;
  const bool whole =
      mono && sf_read_float(file, own.data(), info.frames) == static_cast<sf_count_t>(own.size());
  sf_close(file);
  if (!mono) throw std::runtime_error(path.string() + " is not mono");
  if (!whole) throw std::runtime_error("cannot read " + path.string());
  if (info.samplerate != kSampleRate) own = Resample(own, double{kSampleRate} / info.samplerate);
  std::vector<std::int16_t> samples;
  for (const float x : own) {
    samples.push_back(
        static_cast<std::int16_t>(std::lround(std::clamp(x * 32768.0f, -32768.0f, 32767.0f))));
  }
  return samples;
}

// The recording with its phoneme times; nothing, and a line that says why, where it can't be used.
std::optional<Utterance> Label(const std::filesystem::path& wav, const CPhonemeSet& set,
                               const VeralDictionary& dictionary) {
  std::ifstream text_file(std::filesystem::path(wav).replace_extension(".txt"));
  const std::string text(std::istreambuf_iterator<char>(text_file), {});
  const auto refuse = [&](const char* why) {
    std::printf("left out %s: %s\n", wav.c_str(), why);
    return std::nullopt;
  };
  if (!text_file && text.empty()) return refuse("it has no text");
  bool missing = false;
  SetMessageHandler([&](MessageStream, std::string_view) { missing = true; });
  WordSequence words;
  const int looked_up = dictionary.LookupSentence(CString(text), words);
  SetMessageHandler([](MessageStream, std::string_view) {});
  if (looked_up < 0 || missing || words.Count() == 0) {
    return refuse("the dictionary lacks words of its text");
  }
  Utterance utterance{text, "recording:" + wav.filename().string(), {}, ReadAudio(wav)};
  ViterbiAligner aligner;
  aligner.AddSentence(std::move(words));
  std::vector<std::int16_t> samples = utterance.samples;
  HighPassFilter(samples.data(), static_cast<int>(samples.size()), 80.0, double{kSampleRate});
  AlignmentResult result;
  if (aligner.Align(&set, static_cast<std::uint32_t>(samples.size()), samples.data(), result) < 0) {
    return refuse("it does not align to its text");
  }
  utterance.labels = LabelsOf(result);
  return utterance;
}

void Run(const Options& options) {
  const CPhonemeSet* set = PhonemeSetOf(static_cast<LanguageType>(options.language));
  if (set == nullptr) throw std::runtime_error("no such language");
  const VeralDictionary dictionary(options.dictionary.c_str());
  const int type = kFrameModelEnglish + options.language - kLanguageEnglish;
  if (LoadModelFile(options.model.c_str(), static_cast<ModelFileType>(type)) < 0) {
    throw std::runtime_error("cannot load " + options.model);
  }
  std::vector<std::filesystem::path> recordings;
  for (const auto& entry : std::filesystem::directory_iterator(options.folder)) {
    if (entry.path().extension() == ".wav") recordings.push_back(entry.path());
  }
  std::ranges::sort(recordings);
  CorpusWriter writer(options.out);
  std::size_t kept = 0;
  for (const auto& wav : recordings) {
    if (const auto utterance = Label(wav, *set, dictionary)) {
      writer.Write(*utterance);
      ++kept;
    }
  }
  if (kept == 0) throw std::runtime_error("no recording of " + options.folder + " can be used");
  writer.Close();
  std::printf("%s: %zu of %zu recordings\n", options.out.c_str(), kept, recordings.size());
}

}  // namespace
}  // namespace veral3::training

int main(int argc, char** argv) {
  veral3::training::Options options;
  CLI::App app("Makes a corpus of recordings and their texts.");
  app.add_option("--folder", options.folder, "pairs of NAME.wav and NAME.txt")->required();
  app.add_option("--dictionary", options.dictionary, "dictionary of the language")->required();
  app.add_option("--model", options.model, "frame model to align with")->required();
  app.add_option("--out", options.out, "corpus to write")->required();
  app.add_option("--language", options.language, "1 English, 2 Chinese, 3 Japanese");
  CLI11_PARSE(app, argc, argv);
  try {
    veral3::training::Run(options);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "read-recordings: %s\n", error.what());
    return 1;
  }
  return 0;
}
