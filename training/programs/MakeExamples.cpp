// Writes the recordings of examples/audio, by voices that no model was trained on, each as a WAV
// file with its text and phoneme times in a JSON file beside it: three English sentences; a Chinese
// and a Japanese one, each by a tutor and by a learner who makes one known mistake.
//
//   make-examples --resources resources examples/audio

#include <sndfile.h>

#include <CLI/CLI.hpp>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "signal/CWaveFrameDef.h"
#include "training/augment/Lengthen.h"
#include "training/common/Random.h"
#include "training/corpus/ChineseTexts.h"
#include "training/corpus/ChineseVoices.h"
#include "training/corpus/Utterance.h"
#include "training/speech/EnglishEvents.h"
#include "training/speech/EspeakSpeech.h"
#include "training/speech/JapaneseEvents.h"
#include "training/speech/LabelledSpeech.h"

namespace veral3::training {
namespace {

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

void WriteExample(const std::filesystem::path& folder, const std::string& name,
                  const char* language, const std::string& mistake, const Utterance& utterance) {
  nlohmann::ordered_json json = {{"text", utterance.text},
                                 {"language", language},
                                 {"voice", "espeak-ng " + utterance.voice},
                                 {"sample_rate", kSampleRate},
                                 {"num_samples", utterance.samples.size()}};
  if (!mistake.empty()) json["mistake"] = mistake;
  json["phonemes"] = nlohmann::ordered_json::array();
  for (const PhonemeLabel& label : utterance.labels) {
    json["phonemes"].push_back(
        {{"symbol", std::string(1, label.symbol)}, {"start_sample", label.start}});
  }
  WriteWav(folder / (name + ".wav"), utterance.samples);
  std::ofstream file(folder / (name + ".json"));
  file << json.dump(1) << "\n";
  if (!file) throw std::runtime_error("cannot write into " + folder.string());
}

void WriteEnglish(const std::filesystem::path& folder, EspeakSpeech& espeak) {
  struct Example {
    const char* name;
    const char* text;
    EspeakVoice voice;
  };
  const Example examples[] = {
      {"english-train", "please call me when the train arrives", {"en-us+f4", 145, 55, 55, 0}},
      {"english-weather", "the weather is lovely this morning", {"en-us+m4", 150, 45, 50, 0}},
      {"english-bread", "she sells fresh bread near the river", {"en-us+linda", 140, 50, 60, 0}},
  };
  for (const Example& example : examples) {
    espeak.SetVoice(example.voice);
    Utterance utterance =
        LabelledSpeech(example.text, example.voice.name, espeak.Speak(example.text),
                       EnglishEventTable(EnglishAccent::kAmerican));
    TakeClosures(utterance.labels, utterance.samples, kEnglishStops);
    WriteExample(folder, example.name, "English", "", utterance);
  }
}

// "Today's tea is too hot": the learner says the last word, re, with the second tone instead of the
// fourth.
void WriteChinese(const std::filesystem::path& folder, const std::string& dictionary,
                  EspeakSpeech& espeak) {
  const ChineseTexts texts(dictionary);
  const std::vector<std::string> words = {"今天", "的", "茶", "太", "熱"};
  Random random(1);
  ChineseSentence sentence = texts.Read(words, random);
  const EspeakVoice tutor = {"cmn-latn-pinyin+f4", 140, 75, 100, 0};
  Utterance utterance = SpeakChinese(espeak, tutor, sentence);
  utterance.voice = tutor.name;
  WriteExample(folder, "chinese-tutor", "Chinese", "", utterance);

  const std::size_t last = sentence.pinyin.rfind('4');
  if (last == std::string::npos || sentence.spoken_tones.back() != '4') {
    throw std::runtime_error("the Chinese example has lost its last tone");
  }
  sentence.pinyin[last] = '2';
  sentence.spoken_tones.back() = '2';
  const EspeakVoice learner = {"cmn-latn-pinyin+linda", 125, 80, 100, 0};
  utterance = SpeakChinese(espeak, learner, sentence);
  utterance.voice = learner.name;
  WriteExample(folder, "chinese-learner", "Chinese",
               "the last syllable has the second tone, not the fourth", utterance);
}

// The synthesiser's long vowels are hardly longer than its short ones, and its closures shorter
// than those of people: makes both twice as long, so that a short one in their place is a mistake
// that can be heard.
void LengthenLongSounds(Utterance& utterance, const std::vector<JapaneseUnit>& units) {
  const std::vector<std::size_t> places = LabelsOfUnits(utterance.labels, units);
  for (std::size_t u = 0; u < units.size(); ++u) {
    const bool closure = u + 1 < units.size() && units[u].symbols == units[u + 1].symbols &&
                         kJapaneseStops.find(units[u].symbols) != std::string_view::npos;
    if (units[u].symbols.size() != 2 && !closure) continue;
    const std::size_t label = places[u];
    const std::size_t next = label + units[u].symbols.size();
    const std::int32_t start = utterance.labels[label].start;
    const std::int32_t end = next < utterance.labels.size()
                                 ? utterance.labels[next].start
                                 : static_cast<std::int32_t>(utterance.samples.size());
    const std::int32_t added = Lengthen(utterance.samples, start, end, end - start);
    for (std::size_t i = label + 1; i < utterance.labels.size(); ++i) {
      utterance.labels[i].start += added;
    }
  }
}

Utterance SpeakJapanese(EspeakSpeech& espeak, const EspeakVoice& voice, const std::string& text,
                        std::span<const JapaneseReading> readings) {
  std::vector<JapaneseUnit> units;
  for (const JapaneseReading& reading : readings) {
    const std::vector<JapaneseUnit> own = JapaneseUnits(reading);
    units.insert(units.end(), own.begin(), own.end());
  }
  espeak.SetVoice(voice);
  SpokenText spoken = espeak.Speak("[[" + JapaneseFeed(units) + "]]");
  Utterance utterance;
  utterance.text = text;
  utterance.voice = voice.name;
  utterance.labels =
      JapaneseLabels(spoken.events, units, static_cast<std::int32_t>(spoken.samples.size()));
  utterance.samples = std::move(spoken.samples);
  TakeClosures(utterance.labels, utterance.samples, kJapaneseStops);
  LengthenLongSounds(utterance, units);
  HalveLongVowels(utterance, units);
  return utterance;
}

// "There is beer here": the learner says building, biru for biiru. "There are stamps here": the
// learner says kite for kitte.
void WriteJapanese(const std::filesystem::path& folder, EspeakSpeech& espeak) {
  struct Example {
    std::string name;
    std::string text;
    JapaneseReading third_word;
    JapaneseReading mistaken;
    const char* mistake;
  };
  const Example examples[] = {
      {"japanese",
       "ここ に ビール が あり ます",
       {"biiru", {0, 3}},
       {"biru", {0, 2}},
       "the long vowel of the third word is short: building for beer"},
      {"japanese-closure",
       "ここ に 切手 が あり ます",
       {"kitte", {0, 3}},
       {"kite", {0, 2}},
       "the third word lacks its closure: kite for kitte, stamp"},
  };
  const EspeakVoice tutor = {"ja+f4", 135, 60, 60, 0};
  const EspeakVoice learner = {"ja+Michael", 125, 50, 60, 0};
  for (const Example& example : examples) {
    std::vector<JapaneseReading> readings = {{"koko", {0, 2}}, {"ni", {0}},     example.third_word,
                                             {"ga", {0}},      {"ari", {0, 1}}, {"masu", {0, 2}}};
    WriteExample(folder, example.name + "-tutor", "Japanese", "",
                 SpeakJapanese(espeak, tutor, example.text, readings));
    readings[2] = example.mistaken;
    WriteExample(folder, example.name + "-learner", "Japanese", example.mistake,
                 SpeakJapanese(espeak, learner, example.text, readings));
  }
}

void Run(const std::filesystem::path& resources, const std::filesystem::path& folder) {
  std::filesystem::create_directories(folder);
  EspeakSpeech espeak;
  WriteEnglish(folder, espeak);
  WriteChinese(folder, resources / "KCN-UTF8Order.txt", espeak);
  WriteJapanese(folder, espeak);
}

}  // namespace
}  // namespace veral3::training

int main(int argc, char** argv) {
  std::string resources = "resources";
  std::string folder;
  CLI::App app("Writes the recordings of examples/audio.");
  app.add_option("--resources", resources, "folder of the dictionaries");
  app.add_option("folder", folder, "folder to write into")->required();
  CLI11_PARSE(app, argc, argv);
  try {
    veral3::training::Run(resources, folder);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "make-examples: %s\n", error.what());
    return 1;
  }
  return 0;
}
