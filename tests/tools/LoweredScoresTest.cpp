// What `veral3 grade` says of recordings that are no clean reading of their sentence: made of the
// example recordings, with the models of the source tree.
#include <gmock/gmock.h>
#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>
#include <random>

#include "JsonSchema.h"
#include "Process.h"
#include "SoundFiles.h"
#include "support/Vectors.h"
#include "tools/AudioFile.h"

namespace veral3::tools {
namespace {

using nlohmann::json;
using test::ProcessResult;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;
using veral3::test::ReadFile;

using Values = std::vector<double>;  // -1 to 1

constexpr std::size_t kRate = 22050;
const std::filesystem::path kExamples = std::filesystem::path(VERAL3_SOURCE_DIR) / "examples/audio";
const std::filesystem::path kSense =
    std::filesystem::path(VERAL3_SOURCE_DIR) / "tests/vectors/sense";

Values Load(const std::filesystem::path& path) {
  const Result<Recording> recording = ReadAudioFile(path);
  EXPECT_TRUE(recording) << path;
  Values values;
  for (const std::int16_t sample : recording->samples) values.push_back(sample / 32768.0);
  return values;
}

Values Example(const std::string& name) { return Load(kExamples / (name + ".wav")); }

std::string TextOf(const std::string& name) {
  return json::parse(ReadFile(kExamples / (name + ".json")))["text"];
}

// White noise of the given power below the recording's.
Values Noisy(Values values, double signal_to_noise_db) {
  double power = 0.0;
  for (const double value : values) power += value * value;
  power /= static_cast<double>(values.size());
  std::mt19937 random(1);
  // Twelve numbers of the interval around 0 have a sum of variance 1.
  const double size = std::sqrt(power / std::pow(10.0, signal_to_noise_db / 10.0));
  for (double& value : values) {
    double sum = -6.0;
    for (int i = 0; i < 12; ++i) sum += static_cast<double>(random()) / 4294967296.0;
    value = std::clamp(value + size * sum, -1.0, 1.0);
  }
  return values;
}

// So loud that the largest sample is this much above full scale.
Values Clipped(Values values, double db) {
  double peak = 0.0;
  for (const double value : values) peak = std::max(peak, std::abs(value));
  const double gain = std::pow(10.0, db / 20.0) / peak;
  for (double& value : values) value = std::clamp(value * gain, -1.0, 1.0);
  return values;
}

// From `from` to `to`, shares of the whole.
Values Part(const Values& values, double from, double to) {
  const auto at = [&](double share) {
    return values.begin() + static_cast<std::ptrdiff_t>(share * static_cast<double>(values.size()));
  };
  return {at(from), at(to)};
}

Values Joined(Values first, const Values& second) {
  first.insert(first.end(), kRate / 2, 0.0);
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

class LoweredScores : public testing::Test {
 protected:
  std::string Path(const std::string& name) const { return m_folder.Path() / name; }

  std::vector<std::string> Arguments(const std::string& language, const std::string& text,
                                     const std::string& tutor, const Values& learner) const {
    test::WriteSoundFile(Path("learner.wav"), learner, kRate, 1, SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    return {"grade",   "--lang", language,   "--text",          text,
            "--tutor", tutor,    "--report", Path("page.html"), Path("learner.wav")};
  }

  // Graded against the example of that name and its sentence.
  json Grade(const std::string& name, const Values& learner) const {
    const std::string language = name.starts_with("english")   ? "en"
                                 : name.starts_with("chinese") ? "zh"
                                                               : "ja";
    return Grade(language, TextOf(name), kExamples / (name + ".wav"), learner);
  }

  json Grade(const std::string& language, const std::string& text, const std::string& tutor,
             const Values& learner) const {
    std::vector<std::string> arguments = Arguments(language, text, tutor, learner);
    arguments.insert(arguments.end(), {"--format", "json"});
    const ProcessResult result = test::RunVeral3(arguments);
    EXPECT_EQ(result.status, 0) << result.err;
    const json value = json::parse(result.out);
    EXPECT_EQ(
        test::SchemaError(value, json::parse(ReadFile(std::filesystem::path(VERAL3_SOURCE_DIR) /
                                                      "docs/formats/grade.schema.json"))),
        "");
    const double p = value["goodness_probability"];
    EXPECT_NEAR(value["lowered_to"].get<double>(), 1.0 / (1.0 - std::log(p)), 1e-9);
    return value;
  }

  // The reasons that a lowered grade gives.
  static std::string ReasonsOf(const json& grade) {
    EXPECT_LT(grade["lowered_to"], 0.9);
    std::string all;
    for (const json& reason : grade["reasons"]) {
      if (!all.empty()) all += " ";
      all += reason["reason"].get<std::string>();
    }
    return all;
  }

  const veral3::test::ScratchFolder m_folder;
};

TEST_F(LoweredScores, ACleanReadingSaysNothing) {
  const json grade = Grade("english-train", Example("english-train"));
  EXPECT_GE(grade["lowered_to"], 0.9);
  EXPECT_EQ(grade["reasons"], json::array());
  EXPECT_THAT(ReadFile(Path("page.html")), Not(HasSubstr("owered to")));
  const ProcessResult table = test::RunVeral3(Arguments(
      "en", TextOf("english-train"), kExamples / "english-train.wav", Example("english-train")));
  EXPECT_THAT(table.out, Not(HasSubstr("lowered")));
}

TEST_F(LoweredScores, Noise) {
  const json grade = Grade("english-train", Noisy(Example("english-train"), 0.0));
  EXPECT_EQ(ReasonsOf(grade), "noise");
  // Speech and noise of one power: what is loud is 3 dB and a little more above the noise alone.
  EXPECT_THAT(grade["reasons"][0]["text"].get<std::string>(),
              MatchesRegex("noise: loud speech is only [4-8] dB above .*"));
  EXPECT_EQ(ReasonsOf(Grade("chinese-tutor", Noisy(Example("chinese-tutor"), -6.0))), "noise");
  EXPECT_EQ(
      ReasonsOf(Grade("japanese-closure-tutor", Noisy(Example("japanese-closure-tutor"), -6.0))),
      "noise");
}

TEST_F(LoweredScores, Clipping) {
  const Values clipped = Clipped(Example("english-train"), 30.0);
  const json grade = Grade("english-train", clipped);
  EXPECT_EQ(ReasonsOf(grade), "clipping");
  const auto full = std::ranges::count_if(clipped, [](double v) { return std::abs(v) == 1.0; });
  const int percent = std::stoi(grade["reasons"][0]["text"].get<std::string>().substr(10));
  const double all = 100.0 * static_cast<double>(full) / static_cast<double>(clipped.size());
  EXPECT_LT(percent, all);
  EXPECT_GT(percent, 0.9 * all);  // but for runs of one and two
  EXPECT_EQ(ReasonsOf(Grade("chinese-tutor", Clipped(Example("chinese-tutor"), 30.0))), "clipping");
}

TEST_F(LoweredScores, AnotherSentence) {
  const json grade = Grade("english-weather", Example("english-train"));
  EXPECT_EQ(ReasonsOf(grade), "other_sentence");
  int unlike = 0;
  for (const json& phoneme : grade["phonemes"])
    unlike += phoneme["symbol"] != phoneme["sounds_like"];
  EXPECT_EQ(grade["reasons"][0]["text"], "another sentence: " + std::to_string(unlike) + " of " +
                                             std::to_string(grade["phonemes"].size()) +
                                             " sounds are unlike the sentence's");
  const json readings = json::parse(ReadFile(kSense / "readings.json"));
  // By language: the sentence of the second recording and what is read in the first one.
  for (const std::string language : {"zh", "ja"}) {
    const std::string text = std::ranges::find_if(readings, [&](const json& reading) {
                               return reading["readings"]["tutor"] == language + "2_tutor.flac";
                             })->at("text");
    EXPECT_EQ(ReasonsOf(Grade(language, text, kSense / (language + "2_tutor.flac"),
                              Load(kSense / (language + "1_tutor.flac")))),
              "other_sentence");
  }
}

TEST_F(LoweredScores, CutOff) {
  const Values whole = Example("english-train");
  EXPECT_EQ(ReasonsOf(Grade("english-train", Part(whole, 0.25, 1.0))), "cut_start");
  EXPECT_EQ(ReasonsOf(Grade("english-train", Part(whole, 0.0, 0.75))), "cut_end");
  EXPECT_EQ(ReasonsOf(Grade("chinese-tutor", Part(Example("chinese-tutor"), 0.0, 0.75))),
            "cut_end");
  EXPECT_EQ(ReasonsOf(Grade("japanese-tutor", Part(Example("japanese-tutor"), 0.25, 1.0))),
            "cut_start");
}

TEST_F(LoweredScores, MoreThanTheSentence) {
  const json after =
      Grade("english-train", Joined(Example("english-train"), Example("english-weather")));
  EXPECT_EQ(ReasonsOf(after), "more_sound");
  EXPECT_THAT(after["reasons"][0]["text"].get<std::string>(),
              MatchesRegex("more than the sentence: 0.0 s of loud sound before it, "
                           "[01].[0-9] s after it"));
  const json before =
      Grade("english-train", Joined(Example("english-weather"), Example("english-train")));
  EXPECT_EQ(ReasonsOf(before), "more_sound");
  EXPECT_THAT(before["reasons"][0]["text"].get<std::string>(), HasSubstr("it, 0.0 s after it"));
}

TEST_F(LoweredScores, EveryFormSaysSo) {
  const Values noisy = Noisy(Example("english-train"), 0.0);
  const json grade = Grade("english-train", noisy);
  const std::string percent =
      std::to_string(std::lround(100.0 * grade["lowered_to"].get<double>()));
  const std::string told =
      "cores lowered to " + percent + " %: this may not be a reading of the sentence";
  const std::string reason = grade["reasons"][0]["text"];

  const std::string page = ReadFile(Path("page.html"));
  EXPECT_THAT(page, HasSubstr("<p>S" + told + ".</p>"));
  EXPECT_THAT(page, HasSubstr("<li>" + reason + "</li>"));

  std::vector<std::string> arguments =
      Arguments("en", TextOf("english-train"), kExamples / "english-train.wav", noisy);
  EXPECT_THAT(test::RunVeral3(arguments).out, HasSubstr("\ns" + told + "\n  " + reason + "\n\n"));
  arguments.insert(arguments.end(), {"--format", "csv"});
  const std::string csv = test::RunVeral3(arguments).out;
  EXPECT_THAT(csv, HasSubstr(",goodness_probability,lowered_to,reasons\r\n"));
  EXPECT_THAT(csv, MatchesRegex("[^\n]*\n[^\n]*,recording,[^\n]*,0\\.[0-9]+,0\\." +
                                percent.substr(0, 1) + "[0-9]+,noise\r\n(.|\r|\n)*"));
}

TEST_F(LoweredScores, OfThePronunciationAloneItIsTheTotal) {
  test::WriteSoundFile(Path("learner.wav"), Noisy(Example("english-train"), -6.0), kRate, 1,
                       SF_FORMAT_WAV | SF_FORMAT_PCM_16);
  std::vector<std::string> arguments = {"grade",
                                        "--lang",
                                        "en",
                                        "--pronunciation-only",
                                        "--text",
                                        TextOf("english-train"),
                                        Path("learner.wav")};
  const ProcessResult table = test::RunVeral3(arguments);
  EXPECT_THAT(table.out, MatchesRegex("(.|\n)*\ntotal lowered to [0-9]+ %: this may not be a "
                                      "reading of the sentence\n  noise: (.|\n)*"));
  arguments.insert(arguments.end(), {"--format", "json"});
  const json grade = json::parse(test::RunVeral3(arguments).out);
  EXPECT_EQ(grade["lowered_to"], grade["goodness_probability"]);
  EXPECT_EQ(grade["scores"]["total"], static_cast<int>(grade["scores"]["pronunciation"].get<int>() *
                                                       grade["lowered_to"].get<double>()));
}

}  // namespace
}  // namespace veral3::tools
