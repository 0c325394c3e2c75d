#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <vector>

#include "core/AnalyzedAudio.h"
#include "grading/GradedAudio.h"
#include "grading/TotalScore.h"
#include "support/MessageCapture.h"
#include "support/Vectors.h"
#include "tools/AudioFile.h"

// Whether grading with the models that come with the engine makes sense: recordings that differ
// from the tutor's in one known way lose points for that and for nothing else. All are synthesised,
// in voices that the models were not trained on (training/programs/MakeSenseRecordings.cpp).
// Margins are wide; exact scores belong to the models of the day.
namespace veral3 {
namespace {

using Samples = std::vector<std::int16_t>;

struct Language {
  std::string tag;
  std::string name;
  LanguageType type;
};

void PrintTo(const Language& language, std::ostream* out) { *out << language.name; }

const Language kLanguages[] = {{"en", "English", kLanguageEnglish},
                               {"zh", "Chinese", kLanguageChinese},
                               {"ja", "Japanese", kLanguageJapanese}};

std::filesystem::path Resource(const std::string& name) {
  return std::filesystem::path(VERAL3_SOURCE_DIR) / "resources" / name;
}

void LoadResource(const std::string& name, int type) {
  ASSERT_GE(AnalyzedAudio::LoadModelFile(Resource(name).c_str(), static_cast<ModelFileType>(type)),
            1)
      << name;
}

// A goodness model that is certain of everything, so that scores can be seen as they were before
// they were scaled by it: 16 inputs without weight, and biases far apart.
void LoadCertainGoodness() {
  const test::ScratchFolder folder;
  const std::filesystem::path path = folder.Path() / "certain.model";
  std::ofstream file(path, std::ios::binary);
  const auto write = [&file](auto value) {
    file.write(reinterpret_cast<const char*>(&value), sizeof value);
  };
  for (const std::int32_t number : {1, 1, 0}) write(number);  // version, layers, this layer
  file << "Dx";
  for (const std::int32_t number : {16, 2}) write(number);
  for (int input = 0; input < 16; ++input) {
    file << '[';
    write(0.0F);
    write(0.0F);
    file << ']';
  }
  file << '[';
  write(60.0F);
  write(-60.0F);
  file << ']';
  file.close();
  ASSERT_EQ(AnalyzedAudio::LoadModelFile(path.c_str(), kUttGoodnessModel), 1);
}

struct Sentence {
  std::string text;
  std::map<std::string, Samples> readings;  // "tutor", "flat", ...
};

std::vector<Sentence> ReadSentences(const std::string& tag) {
  std::vector<Sentence> sentences;
  const auto all = nlohmann::json::parse(test::ReadFile(test::VectorPath("sense/readings.json")));
  for (const auto& entry : all) {
    if (entry.at("language") != tag) continue;
    Sentence sentence{entry.at("text"), {}};
    for (const auto& [reading, file] : entry.at("readings").items()) {
      auto recording = tools::ReadAudioFile(test::VectorPath("sense/" + file.get<std::string>()));
      EXPECT_TRUE(recording) << file;
      if (recording) sentence.readings[reading] = recording->samples;
    }
    sentences.push_back(std::move(sentence));
  }
  return sentences;
}

class GradingSense : public testing::TestWithParam<Language> {
 protected:
  struct Grades {
    int pronunciation, pitch, timing, intensity, total;
  };

  void SetUp() override {
    const Language& language = GetParam();
    const int number = language.type - kLanguageEnglish;
    AnalyzedAudio::LoadResourceInFolderPath(Resource("").c_str());
    LoadResource(language.name + "Frame.model", kFrameModelEnglish + number);
    LoadResource(language.name + "Phon.model", kPhonemeModelEnglish + number);
    if (language.type == kLanguageChinese) LoadResource("ChineseTone.model", kToneModelChinese);
    LoadCertainGoodness();
    m_sentences = ReadSentences(language.tag);
    ASSERT_EQ(m_sentences.size(), 2U);
  }

  static bool Prepare(AnalyzedAudio& audio, const std::string& text, Samples samples) {
    const auto count = static_cast<std::uint32_t>(samples.size());
    return audio.AddPossibleSentence(CString(text)) == 1 &&
           audio.Align(count, samples.data()) == 0 && audio.Analyze(count, samples.data()) == 0;
  }

  Grades Grade(const Sentence& sentence, const Samples& learner) const {
    AnalyzedAudio tutor(GetParam().type);
    GradedAudio audio(GetParam().type);
    EXPECT_TRUE(Prepare(tutor, sentence.text, sentence.readings.at("tutor")));
    EXPECT_TRUE(Prepare(audio, sentence.text, learner));
    const int total = audio.GradeAgainstTutor(&tutor);
    return {audio.GetPronunScore(), audio.GetPitchScore(), audio.GetTimingScore(),
            audio.GetIntensityScore(), total};
  }

  // The recording with 0.9 s of silence before its middle word.
  Samples WithPause(const Sentence& sentence) const {
    Samples samples = sentence.readings.at("tutor");
    AnalyzedAudio tutor(GetParam().type);
    EXPECT_TRUE(Prepare(tutor, sentence.text, samples));
    const int word = tutor.GetNumOfWords() / 2;
    const int place = tutor.GetPhonemeStartSampleNum(tutor.GetWordStartPosition(word));
    samples.insert(samples.begin() + place, 19845, 0);
    return samples;
  }

  double Probability(const Sentence& sentence, const Samples& samples) const {
    AnalyzedAudio audio(GetParam().type);
    return Prepare(audio, sentence.text, samples) ? audio.GetProbOfGoodAlignment() : 0.0;
  }

  test::MessageCapture m_messages;
  std::vector<Sentence> m_sentences;
};

TEST_P(GradingSense, ARecordingAgainstItselfHasFullScores) {
  for (const Sentence& sentence : m_sentences) {
    SCOPED_TRACE(sentence.text);
    const Grades same = Grade(sentence, sentence.readings.at("tutor"));
    EXPECT_GE(same.pronunciation, 75);
    EXPECT_EQ(same.pitch, 100);
    EXPECT_EQ(same.timing, 100);
    EXPECT_EQ(same.intensity, 100);
  }
}

TEST_P(GradingSense, OtherConsonantsCostPronunciation) {
  for (const Sentence& sentence : m_sentences) {
    SCOPED_TRACE(sentence.text);
    const Grades same = Grade(sentence, sentence.readings.at("tutor"));
    const Grades other = Grade(sentence, sentence.readings.at("consonants"));
    EXPECT_LE(other.pronunciation, same.pronunciation - 4);
    EXPECT_LT(other.total, same.total);
  }
}

TEST_P(GradingSense, ALongPauseCostsTimingAlone) {
  for (const Sentence& sentence : m_sentences) {
    SCOPED_TRACE(sentence.text);
    const Grades same = Grade(sentence, sentence.readings.at("tutor"));
    const Grades pause = Grade(sentence, WithPause(sentence));
    EXPECT_LE(pause.timing, same.timing - 15);
    EXPECT_NEAR(pause.pronunciation, same.pronunciation, 10);
    EXPECT_NEAR(pause.pitch, same.pitch, 10);
    EXPECT_NEAR(pause.intensity, same.intensity, 10);
  }
}

TEST_P(GradingSense, FlatPitchCostsPitchAlone) {
  for (const Sentence& sentence : m_sentences) {
    SCOPED_TRACE(sentence.text);
    const Grades same = Grade(sentence, sentence.readings.at("tutor"));
    const Grades flat = Grade(sentence, sentence.readings.at("flat"));
    EXPECT_LE(flat.pitch, same.pitch - 4);
    EXPECT_NEAR(flat.pronunciation, same.pronunciation, 10);
    EXPECT_NEAR(flat.timing, same.timing, 10);
    EXPECT_NEAR(flat.intensity, same.intensity, 10);
  }
}

TEST_P(GradingSense, AnotherSentenceHasTheLowestTotal) {
  for (std::size_t i = 0; i < 2; ++i) {
    const Sentence& sentence = m_sentences[i];
    SCOPED_TRACE(sentence.text);
    const Grades wrong = Grade(sentence, m_sentences[1 - i].readings.at("tutor"));
    EXPECT_LE(wrong.total, 85);
    for (const auto& [name, samples] : sentence.readings) {
      EXPECT_GT(Grade(sentence, samples).total, wrong.total + 10) << name;
    }
  }
}

TEST_P(GradingSense, AnotherVoiceReadsItWell) {
  for (const Sentence& sentence : m_sentences) {
    SCOPED_TRACE(sentence.text);
    const Grades other = Grade(sentence, sentence.readings.at("other_voice"));
    EXPECT_GE(other.pronunciation, 70);
    EXPECT_GE(other.total, 70);
  }
}

TEST_P(GradingSense, OtherTonesCostPitch) {
  for (const Sentence& sentence : m_sentences) {
    SCOPED_TRACE(sentence.text);
    const auto tones = sentence.readings.find("tones");
    ASSERT_EQ(tones != sentence.readings.end(), GetParam().type == kLanguageChinese);
    if (tones == sentence.readings.end()) continue;
    const Grades same = Grade(sentence, sentence.readings.at("tutor"));
    const Grades other = Grade(sentence, tones->second);
    EXPECT_LE(other.pitch, same.pitch - 20);
    EXPECT_NEAR(other.pronunciation, same.pronunciation, 10);
  }
}

TEST_P(GradingSense, ShortenedVowelsCostPoints) {
  for (const Sentence& sentence : m_sentences) {
    SCOPED_TRACE(sentence.text);
    const auto shortened = sentence.readings.find("short_vowels");
    // Elsewhere the length of a vowel tells no words apart.
    ASSERT_EQ(shortened != sentence.readings.end(), GetParam().type == kLanguageJapanese);
    if (shortened == sentence.readings.end()) continue;
    const Grades same = Grade(sentence, sentence.readings.at("tutor"));
    EXPECT_LT(Grade(sentence, shortened->second).total, same.total);
  }
}

TEST_P(GradingSense, TheGoodnessModelTellsReadingsFromTheRest) {
  LoadResource("UttGoodness.model", kUttGoodnessModel);
  for (std::size_t i = 0; i < 2; ++i) {
    const Sentence& sentence = m_sentences[i];
    SCOPED_TRACE(sentence.text);
    for (const char* name : {"tutor", "other_voice", "flat"}) {
      EXPECT_GE(GoodnessFactor(Probability(sentence, sentence.readings.at(name))), 0.8) << name;
    }
    EXPECT_GE(GoodnessFactor(Probability(sentence, WithPause(sentence))), 0.6);
    const Samples& other = m_sentences[1 - i].readings.at("tutor");
    EXPECT_LE(GoodnessFactor(Probability(sentence, other)), 0.4);
    Samples twice = sentence.readings.at("tutor");
    twice.insert(twice.end(), other.begin(), other.end());
    EXPECT_LE(GoodnessFactor(Probability(sentence, twice)), 0.4);
    EXPECT_LE(GoodnessFactor(Probability(sentence, Samples(44100, 0))), 0.4);
  }
}

// Those languages that have all their models.
std::vector<Language> Available() {
  std::vector<Language> available;
  for (const Language& language : kLanguages) {
    std::vector<std::string> models = {language.name + "Frame.model", language.name + "Phon.model"};
    if (language.type == kLanguageChinese) models.emplace_back("ChineseTone.model");
    if (std::ranges::all_of(
            models, [](const auto& name) { return std::filesystem::exists(Resource(name)); })) {
      available.push_back(language);
    }
  }
  return available;
}

INSTANTIATE_TEST_SUITE_P(Languages, GradingSense, testing::ValuesIn(Available()),
                         [](const auto& param_info) { return param_info.param.name; });

}  // namespace
}  // namespace veral3
