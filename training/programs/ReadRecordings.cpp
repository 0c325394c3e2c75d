// Makes a corpus of your own recordings, labelled by forced alignment with the model at hand:
//
//   read-recordings --language en --folder recordings --out work/own.corpus --held-out work/test.corpus
//
// The folder holds pairs NAME.wav and NAME.txt, or is a Kaldi data folder
// (training/corpus/RecordingFolder.h). Texts are prepared as the veral3 command does it. What does
// not align to its text, or holds words that the dictionary lacks, is named and left out.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <exception>
#include <map>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "common/CString.h"
#include "common/Messages.h"
#include "recognition/Dictionaries.h"
#include "recognition/Languages.h"
#include "recognition/Models.h"
#include "recognition/ViterbiAligner.h"
#include "signal/CWaveFrameDef.h"
#include "signal/HighPassFilter.h"
#include "text/Lexicon.h"
#include "text/PrepareSentence.h"
#include "text/TextPreparation.h"
#include "tools/AudioFile.h"
#include "tools/Resources.h"
#include "training/corpus/CorpusFile.h"
#include "training/corpus/RecordingFolder.h"
#include "training/measure/ForcedAlignment.h"
#include "training/programs/LanguageOption.h"

namespace veral3::training {
namespace {

struct Options {
  std::string folder;
  std::string resources = "resources";
  std::string model;
  std::string out;
  std::string held_out;
  LanguageType language = kLanguageEnglish;
  double held_out_share = 0.1;
};

constexpr std::size_t kShortest = 551;  // samples that make a frame

class Labeller {
 public:
  Labeller(LanguageType language, const CPhonemeSet& set)
      : m_language(language), m_set(set), m_lexicon(LexiconOf(language)) {}

  // The recording with its phoneme times; `reason` says why there is none.
  std::optional<Utterance> Label(const FolderEntry& entry, std::string& reason) {
    const std::string text = PrepareSentence(m_language, entry.text).sentence;
    const auto check = CheckSentence(text, m_language, m_lexicon.has_word);
    if (!check.missing_words.empty()) {
      reason = "the dictionary lacks \"" + check.missing_words.front() + "\"";
      return std::nullopt;
    }
    WordSequence words;
    if (DictionaryOf(m_language)->LookupSentence(CString(text), words) < 0 || words.Count() == 0) {
      reason = "its text has no words that can be aligned";
      return std::nullopt;
    }
    Utterance utterance;
    utterance.text = text;
    utterance.voice = "recording:" + (entry.speaker.empty() ? entry.id : entry.speaker);
    utterance.samples = Samples(entry, reason);
    if (utterance.samples.empty()) return std::nullopt;
    ViterbiAligner aligner;
    aligner.AddSentence(std::move(words));
    std::vector<std::int16_t> samples = utterance.samples;
    HighPassFilter(samples.data(), static_cast<int>(samples.size()), 80.0, double{kSampleRate});
    AlignmentResult result;
    if (aligner.Align(&m_set, static_cast<std::uint32_t>(samples.size()), samples.data(), result) <
        0) {
      reason = "it does not align to its text";
      return std::nullopt;
    }
    utterance.labels = LabelsOf(result);
    return utterance;
  }

 private:
  // Empty, and the reason, where there are none.
  std::vector<std::int16_t> Samples(const FolderEntry& entry, std::string& reason) {
    if (m_audio_path != entry.audio) {
      auto recording = tools::ReadAudioFile(entry.audio);
      m_audio_path = entry.audio;
      m_audio_error = recording ? "" : entry.audio.string() + " " + recording.Error();
      m_audio = recording ? std::move(recording->samples) : std::vector<std::int16_t>{};
    }
    reason = m_audio_error;
    if (m_audio.empty() || (entry.begin == 0.0 && !entry.end)) return m_audio;
    const auto at = [&](double seconds) {
      const double sample = std::round(seconds * kSampleRate);
      return static_cast<std::size_t>(std::clamp(sample, 0.0, static_cast<double>(m_audio.size())));
    };
    const std::size_t begin = at(entry.begin);
    const std::size_t end = entry.end ? at(*entry.end) : m_audio.size();
    if (end < begin + kShortest) {
      reason = "its segment is too short or outside the recording";
      return {};
    }
    return {m_audio.begin() + static_cast<std::ptrdiff_t>(begin),
            m_audio.begin() + static_cast<std::ptrdiff_t>(end)};
  }

  LanguageType m_language;
  const CPhonemeSet& m_set;
  Lexicon m_lexicon;
  std::filesystem::path m_audio_path;  // the recording read last: segments follow one another
  std::vector<std::int16_t> m_audio;
  std::string m_audio_error;
};

// Which entries are kept for measuring: whole speakers where there are several, else recordings,
// evenly spread.
std::vector<bool> HeldOut(const std::vector<FolderEntry>& entries, double share) {
  std::set<std::string> speakers;
  for (const FolderEntry& entry : entries) speakers.insert(entry.speaker);
  const bool by_speaker = speakers.size() > 2;
  std::map<std::string, std::size_t> number;  // of a speaker
  for (const std::string& speaker : speakers) number.emplace(speaker, number.size());
  std::vector<bool> held_out;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const auto unit = static_cast<double>(by_speaker ? number[entries[i].speaker] : i);
    // The last of every 1 / share units.
    held_out.push_back(std::floor((unit + 1.0) * share) > std::floor(unit * share));
  }
  return held_out;
}

void Run(const Options& options) {
  const LanguageType language = options.language;
  const CPhonemeSet* set = PhonemeSetOf(language);
  if (const auto loaded = tools::LoadDictionary(options.resources, language); !loaded) {
    throw std::runtime_error(loaded.Error());
  }
  if (LoadModelFile(options.model.c_str(), RowOf(language).frame_model.type) < 0) {
    throw std::runtime_error("cannot load " + options.model);
  }
  RecordingFolder folder = ReadRecordingFolder(options.folder);
  for (const std::string& line : folder.refused) std::printf("left out %s\n", line.c_str());
  const std::vector<bool> held_out =
      HeldOut(folder.entries, options.held_out.empty() ? 0.0 : options.held_out_share);
  Labeller labeller(language, *set);
  CorpusWriter writer(options.out);
  std::optional<CorpusWriter> held_out_writer;
  if (!options.held_out.empty()) held_out_writer.emplace(options.held_out);
  std::size_t kept = 0;
  std::size_t kept_apart = 0;
  for (std::size_t i = 0; i < folder.entries.size(); ++i) {
    const FolderEntry& entry = folder.entries[i];
    std::string reason;
    const auto utterance = labeller.Label(entry, reason);
    if (!utterance) {
      std::printf("left out %s: %s\n", entry.id.c_str(), reason.c_str());
    } else if (held_out[i]) {
      held_out_writer->Write(*utterance);
      ++kept_apart;
    } else {
      writer.Write(*utterance);
      ++kept;
    }
  }
  if (kept == 0) throw std::runtime_error("no recording of " + options.folder + " can be used");
  writer.Close();
  if (held_out_writer) held_out_writer->Close();
  std::printf("%s: %zu of %zu recordings", options.out.c_str(), kept,
              folder.entries.size() + folder.refused.size());
  if (held_out_writer) std::printf(", %zu more in %s", kept_apart, options.held_out.c_str());
  std::printf("\n");
}

}  // namespace
}  // namespace veral3::training

int main(int argc, char** argv) {
  veral3::SetMessageHandler([](veral3::MessageStream, std::string_view) {});
  veral3::training::Options options;
  CLI::App app("Makes a corpus of recordings and their texts.");
  app.add_option("--folder", options.folder, "pairs of NAME.wav and NAME.txt, or Kaldi's")
      ->required();
  veral3::training::AddLanguageOption(app, options.language);
  app.add_option("--resources", options.resources, "folder of the dictionaries");
  app.add_option("--model", options.model, "frame model to align with")->required();
  app.add_option("--out", options.out, "corpus to write")->required();
  app.add_option("--held-out", options.held_out, "corpus for what is kept apart for measuring");
  app.add_option("--held-out-share", options.held_out_share, "how much of it (default 0.1)")
      ->check(CLI::Range(0.0, 0.9));
  CLI11_PARSE(app, argc, argv);
  try {
    veral3::training::Run(options);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "read-recordings: %s\n", error.what());
    return 1;
  }
  return 0;
}
