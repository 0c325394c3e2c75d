// analyze, annotate and denoise as processes.
#include <gmock/gmock.h>
#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "SmallResources.h"
#include "SoundFiles.h"
#include "support/SmallEngine.h"
#include "tools/AudioFile.h"

namespace veral3::tools {
namespace {

using nlohmann::json;
using test::ProcessResult;
using test::RunVeral3;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using veral3::test::ReadFile;
using veral3::test::WriteFile;

const std::filesystem::path kExamples = std::filesystem::path(VERAL3_SOURCE_DIR) / "examples/audio";

class Analyze : public test::SmallResources {};

// The recordings of the vectors, whose measures are known.
TEST_F(Analyze, EveryLanguageGivesWhatTheEngineMeasures) {
  const std::vector<std::pair<std::string, std::size_t>> cases = {{"en", 0}, {"zh", 1}, {"ja", 2}};
  for (const auto& [language, index] : cases) {
    const json& learner =
        veral3::test::LoadVectorJson("chain.json").at("cases").at(index).at("learner");
    WriteWav("l.wav", veral3::test::ChainRecording(language + "_learner"));
    std::vector<std::string> arguments = {"--format", "json", Path("l.wav")};
    for (const json& sentence :
         veral3::test::LoadVectorJson("chain.json").at("cases").at(index).at("sentences")) {
      arguments.insert(arguments.begin(), {"--text", sentence.get<std::string>()});
    }
    const ProcessResult result = Run("analyze", language, arguments);
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(SchemaErrorOf(result.out, "analyze.schema.json"), "");
    const json value = json::parse(result.out);
    std::string phonemes;
    for (const json& phoneme : value["phonemes"]) phonemes += phoneme["symbol"];
    EXPECT_EQ(phonemes, learner.at("phonemes"));
    for (std::size_t i = 0; i < value["syllables"].size(); ++i) {
      const json& syllable = value["syllables"][i];
      const bool is_english = language == "en";
      EXPECT_EQ(syllable["stress"].is_null(), !is_english);
      EXPECT_EQ(syllable["tone"].is_null(), language != "zh");
      if (language != "ja") {
        EXPECT_EQ(syllable[is_english ? "stress" : "tone"], learner.at("syl_mark").at(i));
      }
      EXPECT_TRUE(language == "zh" || syllable["tone_probabilities"].is_null());
    }
    EXPECT_FALSE(value["utterance"]["goodness_probability"].is_null());
    for (const json& phoneme : value["phonemes"]) {
      ASSERT_EQ(phoneme["readings"].size(), 3u);
      EXPECT_EQ(phoneme["readings"][0]["symbol"], phoneme["sounds_like"]);
      EXPECT_GE(phoneme["readings"][0]["probability"], phoneme["readings"][1]["probability"]);
    }
  }
}

TEST_F(Analyze, AModelThatIsMissingIsNamedAndItsMeasuresAreNull) {
  std::filesystem::remove(Path("res/UttGoodness.model"));
  std::filesystem::remove(Path("res/EnglishPhon.model"));
  const ProcessResult result =
      Run("analyze", "en", {"--text", "a apple", "--format", "json", Path("a.wav")});
  ASSERT_EQ(result.status, 0);
  EXPECT_THAT(result.err,
              StartsWith("veral3: no EnglishPhon.model in " + Path("res") +
                         "; not measured: what each phoneme sounds like\n"
                         "veral3: no UttGoodness.model in " +
                         Path("res") +
                         "; not measured: the probability that the sentence was read at all\n"));
  EXPECT_THAT(result.err, Not(HasSubstr("is loaded")));
  EXPECT_EQ(SchemaErrorOf(result.out, "analyze.schema.json"), "");
  const json value = json::parse(result.out);
  EXPECT_TRUE(value["utterance"]["goodness_probability"].is_null());
  EXPECT_TRUE(value["phonemes"][0]["sounds_like"].is_null());
  EXPECT_TRUE(value["phonemes"][0]["readings"].empty());
  const ProcessResult table = Run("analyze", "en", {"--text", "a apple", Path("a.wav")});
  EXPECT_THAT(table.out, HasSubstr("probability of a good reading -\n"));

  std::filesystem::remove(Path("res/ChineseTone.model"));
  WriteWav("zh.wav", veral3::test::ChainRecording("zh_learner"));
  const ProcessResult chinese = Run(
      "analyze", "zh", {"--text", "\xE6\x98\xAF \xE6\x98\xAF", "--format", "json", Path("zh.wav")});
  ASSERT_EQ(chinese.status, 0) << chinese.err;
  EXPECT_THAT(chinese.err, HasSubstr("no ChineseTone.model in " + Path("res")));
  EXPECT_TRUE(json::parse(chinese.out)["syllables"][0]["tone_probabilities"].is_null());
}

TEST_F(Analyze, ADamagedModelStopsItBeforeAnyRecording) {
  WriteFile(Path("res/UttGoodness.model"), "no model");
  const ProcessResult result = Run("analyze", "en", {"--text", "a apple", Path("none.wav")});
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.err,
              HasSubstr("UttGoodness.model cannot be used as the utterance goodness model: "));
  EXPECT_THAT(result.err, Not(HasSubstr("none.wav")));
}

TEST_F(Analyze, BadRecordingsDoNotStopTheOthers) {
  WriteFile(Path("bad.wav"), "no audio");
  WriteWav("silent.wav", std::vector<std::int16_t>(22050, 0));
  const ProcessResult result =
      Run("analyze", "en",
          {"--text", "a apple", "--format", "json", "--jobs", "3", Path("none.wav"),
           Path("bad.wav"), Path("silent.wav"), Path("a.wav")});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr(Path("none.wav") + ": does not exist\n"));
  EXPECT_THAT(result.err, HasSubstr(Path("silent.wav") + ": is silent"));
  EXPECT_EQ(SchemaErrorOf(result.out, "analyze.schema.json"), "");
  const json value = json::parse(result.out);
  ASSERT_EQ(value.size(), 4u);
  EXPECT_TRUE(value[0].contains("error"));
  EXPECT_TRUE(value[1].contains("error"));
  // Silence has no power to compare and no pitch.
  EXPECT_TRUE(value[2]["utterance"]["signal_to_noise_db"].is_null());
  EXPECT_TRUE(value[2]["utterance"]["mean_pitch_hz"].is_null());
  EXPECT_FALSE(value[3].contains("error"));
}

TEST_F(Analyze, TableAndCommaSeparatedValues) {
  const ProcessResult table = Run("analyze", "en", {"--text", "a apple", Path("a.wav")});
  ASSERT_EQ(table.status, 0) << table.err;
  EXPECT_THAT(table.out, StartsWith(Path("a.wav") + ": 1.000 s, English\nsentence 1: a apple\n"));
  const ProcessResult csv =
      Run("analyze", "en", {"--text", "a apple", "--format", "csv", Path("a.wav")});
  ASSERT_EQ(csv.status, 0) << csv.err;
  EXPECT_THAT(csv.out, StartsWith("file,tier,text,start_sample,end_sample,start_s,end_s,"));
  EXPECT_THAT(csv.out, HasSubstr("a.wav,words,APPLE,"));
}

TEST_F(Analyze, WrongUsageIsTwo) {
  EXPECT_EQ(Run("analyze", "en", {Path("a.wav")}).status, 2);
  EXPECT_EQ(Run("analyze", "en", {"--text", "blorf", Path("a.wav")}).status, 2);
  EXPECT_EQ(Run("analyze", "en", {"--text", "a", "--format", "ctm", Path("a.wav")}).status, 2);
  EXPECT_EQ(Run("analyze", "en", {"--text", "a", "--tier", "words", Path("a.wav")}).status, 2);
  const ProcessResult help = RunVeral3({"analyze", "--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_THAT(help.out, HasSubstr("veral3 analyze --lang en --text"));
}

// The models of the source tree on a recording that they know well.
TEST(AnalyzeEndToEnd, AWellSpokenSentenceSoundsLikeItself) {
  const json reference = json::parse(ReadFile(kExamples / "english-weather.json"));
  const ProcessResult result = RunVeral3({"analyze", "--lang", "en", "--text", reference["text"],
                                          "--format", "json", kExamples / "english-weather.wav"});
  ASSERT_EQ(result.status, 0) << result.err;
  const json value = json::parse(result.out);
  std::size_t same = 0;
  for (const json& phoneme : value["phonemes"]) same += phoneme["sounds_like"] == phoneme["symbol"];
  EXPECT_GE(same * 10, value["phonemes"].size() * 9);
  EXPECT_GT(value["utterance"]["signal_to_noise_db"], 10.0);
  EXPECT_GT(value["utterance"]["mean_pitch_hz"], 75);
}

class Annotate : public test::SmallResources {};

TEST_F(Annotate, EveryFormatOfEveryLanguage) {
  for (const std::string language : {"en", "zh", "ja"}) {
    const ProcessResult result =
        Run("annotate", language, {"--format", "json", Path("a.wav"), Path("a.wav")});
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.err, IsEmpty());
    EXPECT_EQ(SchemaErrorOf(result.out, "annotate.schema.json"), "");
    const json value = json::parse(result.out);
    EXPECT_EQ(value[0]["language"], language);
    EXPECT_EQ(value[0]["phonemes"].back()["end_sample"], 22050);
  }
  for (const auto& [format, ending] :
       {std::pair{"table", ".txt"}, std::pair{"json", ".json"}, std::pair{"textgrid", ".TextGrid"},
        std::pair{"csv", ".csv"}, std::pair{"audacity", ".labels.txt"}}) {
    const ProcessResult result =
        Run("annotate", "en", {"--format", format, "--output", Path("out/"), Path("a.wav")});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(ReadFile(Path(std::string("out/a") + ending)), Not(IsEmpty()));
  }
}

TEST_F(Annotate, NeedsNoDictionaryAndNoOtherModel) {
  for (const char* name : {"EnglishPhon.model", "UttGoodness.model", "ChineseTone.model"}) {
    std::filesystem::remove(Path("res") + "/" + name);
  }
  const ProcessResult result = Run("annotate", "en", {Path("a.wav")});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.err, IsEmpty());
}

TEST_F(Annotate, BadInput) {
  WriteFile(Path("bad.wav"), "no audio");
  const ProcessResult result =
      Run("annotate", "en", {"--format", "json", Path("bad.wav"), Path("a.wav")});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr("bad.wav: cannot be read as audio"));
  EXPECT_EQ(SchemaErrorOf(result.out, "annotate.schema.json"), "");
  const ProcessResult nothing = Run("annotate", "en", {});
  EXPECT_EQ(nothing.status, 2);
  EXPECT_THAT(nothing.err, HasSubstr("no recording; name one or more files"));
  EXPECT_EQ(Run("annotate", "en", {"--format", "ctm", Path("a.wav")}).status, 2);
  EXPECT_EQ(Run("annotate", "en", {"--format", "textgrid", Path("a.wav"), Path("a.wav")}).status,
            2);
  std::filesystem::remove(Path("res/EnglishFrame.model"));
  EXPECT_EQ(Run("annotate", "en", {Path("a.wav")}).status, 2);
}

// What was spoken, against the synthesiser's own labels: most of it, though nothing told it the
// text.
TEST(AnnotateEndToEnd, MostFramesAreWhatWasSpoken) {
  for (const std::string name : {"english-bread", "english-train", "english-weather"}) {
    const json reference = json::parse(ReadFile(kExamples / (name + ".json")));
    const ProcessResult result =
        RunVeral3({"annotate", "--lang", "en", "--format", "json", kExamples / (name + ".wav")});
    ASSERT_EQ(result.status, 0) << result.err;
    const json value = json::parse(result.out);
    // The phonemes of both follow one another; the last that has begun is the one.
    const auto at = [](const json& phonemes, int sample) {
      std::string symbol = "-";
      for (const json& phoneme : phonemes) {
        if (phoneme["start_sample"] <= sample) symbol = phoneme["symbol"];
      }
      return symbol;
    };
    int same = 0;
    int all = 0;
    for (int sample = 110; sample < value["num_samples"]; sample += 220, ++all) {
      same += at(value["phonemes"], sample) == at(reference["phonemes"], sample);
    }
    EXPECT_GE(same * 100, all * 80) << name << ": " << same << " of " << all;
  }
}

class Denoise : public test::SmallResources {
 protected:
  static double Power(const std::vector<std::int16_t>& samples, std::size_t from, std::size_t to) {
    double sum = 0.0;
    for (std::size_t i = from; i < to; ++i) sum += double{1.0} * samples[i] * samples[i];
    return sum / static_cast<double>(to - from);
  }
};

TEST_F(Denoise, SteadyNoiseGetsLessWithEachPolicy) {
  std::vector<std::int16_t> samples;
  std::uint32_t state = 1;
  for (int i = 0; i < 66150; ++i) {
    state = state * 1664525u + 1013904223u;
    samples.push_back(static_cast<std::int16_t>(static_cast<int>(state >> 22) - 512));
  }
  WriteWav("noise.wav", samples);
  double before = Power(samples, 44100, 66000);
  for (const char* policy : {"0", "1", "2", "3"}) {
    const ProcessResult result =
        RunVeral3({"denoise", Path("noise.wav"), Path("clean.wav"), "--policy", policy});
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, IsEmpty());
    EXPECT_THAT(result.err, IsEmpty());
    const Result<Recording> clean = ReadAudioFile(Path("clean.wav"));
    ASSERT_TRUE(clean) << clean.Error();
    EXPECT_EQ(clean->source_rate, 22050);
    EXPECT_EQ(clean->source_channels, 1);
    ASSERT_EQ(clean->samples.size(), samples.size());
    const double after = Power(clean->samples, 44100, 66000);
    EXPECT_LT(after, before) << policy;
    before = after;
    // What does not fill a block stays.
    EXPECT_TRUE(
        std::equal(samples.end() - 66150 % 160, samples.end(), clean->samples.end() - 66150 % 160));
  }
}

TEST_F(Denoise, AnyRateAndNumberOfChannels) {
  test::WriteSoundFile(Path("stereo.flac"), test::Sine(300, 0.3, 1.0, 48000, 2), 48000, 2,
                       SF_FORMAT_FLAC | SF_FORMAT_PCM_16);
  const ProcessResult result = RunVeral3({"denoise", Path("stereo.flac"), Path("clean.wav")});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(ReadAudioFile(Path("clean.wav"))->samples.size(), 22050u);
}

TEST_F(Denoise, BadInput) {
  WriteFile(Path("bad.wav"), "no audio");
  WriteFile(Path("old.wav"), "old");
  const ProcessResult bad = RunVeral3({"denoise", Path("bad.wav"), Path("old.wav")});
  EXPECT_EQ(bad.status, 1);
  EXPECT_THAT(bad.err, HasSubstr(Path("bad.wav") + ": cannot be read as audio"));
  EXPECT_EQ(ReadFile(Path("old.wav")), "old");

  const ProcessResult place = RunVeral3({"denoise", Path("a.wav"), Path("none/b.wav")});
  EXPECT_EQ(place.status, 1);
  EXPECT_THAT(place.err, HasSubstr(Path("none/b.wav") + " cannot be written: "));

  const ProcessResult full = RunVeral3({"denoise", Path("a.wav"), "/dev/full"});
  EXPECT_EQ(full.status, 1);

  for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
           {"denoise"},
           {"denoise", Path("a.wav")},
           {"denoise", Path("a.wav"), Path("b.wav"), "--policy", "4"},
           {"denoise", Path("a.wav"), Path("b.wav"), "--policy", "-1"},
           {"denoise", Path("a.wav"), Path("a.wav")},
           {"denoise", Path("a.wav"), Path("res")}}) {
    const ProcessResult result = RunVeral3(arguments);
    EXPECT_EQ(result.status, 2) << result.err;
    EXPECT_THAT(result.err, Not(IsEmpty()));
  }
  EXPECT_FALSE(std::filesystem::exists(Path("b.wav")));
}

}  // namespace
}  // namespace veral3::tools
