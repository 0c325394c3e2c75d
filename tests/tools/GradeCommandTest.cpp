// veral3 grade as a process, with the small models, and end to end with those of the source tree as
// far as they are there.
#include <gmock/gmock.h>

#include "SmallResources.h"
#include "support/SmallEngine.h"
#include "tools/Checksum.h"

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

class Grade : public test::SmallResources {
 protected:
  Grade() {
    for (const std::string language : {"en", "zh", "ja"}) {
      for (const std::string who : {"learner", "tutor"}) {
        WriteWav(language + "_" + who + ".wav", veral3::test::ChainRecording(language + "_" + who));
      }
    }
  }

  ProcessResult GradeEnglish(std::vector<std::string> arguments) const {
    return Run("grade", "en", std::move(arguments));
  }

  const std::string m_sentence = "I read the cat";
};

// The scores are those of the vectors.
TEST_F(Grade, EveryLanguageGivesTheEnginesScores) {
  for (const json& c : veral3::test::LoadVectorJson("chain.json").at("cases")) {
    const std::string language =
        std::vector<std::string>{"en", "zh", "ja"}.at(c.at("language").get<std::size_t>() - 1);
    const std::string sentence =
        c.at("sentences").at(c.at("learner").at("matched").get<std::size_t>());
    const ProcessResult result =
        Run("grade", language,
            {"--text", sentence, "--tutor", Path(language + "_tutor.wav"), "--format", "json",
             "--report", Path("page.html"), Path(language + "_learner.wav")});
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(SchemaErrorOf(result.out, "grade.schema.json"), "");
    const json value = json::parse(result.out);
    EXPECT_EQ(value["tutor"]["file"], Path(language + "_tutor.wav"));
    EXPECT_TRUE(value["tutor"]["teacher"].is_null());
    const json& expected = c.at("grade_analysed_tutor");
    EXPECT_EQ(value["scores"]["total"], expected.at("total"));
    for (std::size_t i = 0; i < value["syllables"].size(); ++i) {
      const json& syllable = value["syllables"][i];
      EXPECT_EQ(syllable["scores"]["pitch"], expected.at("syl_pitch").at(i));
      EXPECT_EQ(syllable["scores"]["timing"], expected.at("syl_timing").at(i));
      EXPECT_EQ(syllable["scores"]["intensity"], expected.at("syl_intensity").at(i));
      for (const char* kind : {"pitch", "timing", "intensity"}) {
        const std::string letters = expected.at(std::string(kind) + "_advice");
        EXPECT_EQ(syllable["advice"][kind], std::string(1, letters.at(i)));
      }
      EXPECT_EQ(syllable["unnecessary_pause"], expected.at("unnecessary_pause").at(i));
    }
    for (const json& syllable : value["syllables"]) {
      // Only Chinese has tones, and a syllable of a broken pitch none.
      EXPECT_TRUE(language == "zh" || syllable["tutor_tone"].is_null());
      EXPECT_TRUE(language == "zh" || syllable["learner_tone"].is_null());
      EXPECT_TRUE(syllable["scores"]["pitch"].is_number());
    }
    for (const json& word : value["words"]) {
      EXPECT_EQ(word["contrasts"]["timing"].is_null(), language != "en");
    }
    EXPECT_THAT(ReadFile(Path("page.html")), StartsWith("<!DOCTYPE html>\n"));
  }
}

TEST_F(Grade, ATutorFileBringsItsSentence) {
  const ProcessResult made = Run("tutor", "en",
                                 {"--text", m_sentence, "--teacher", "Ms. Lin",
                                  Path("en_tutor.wav"), "-o", Path("tutor.wav")});
  ASSERT_EQ(made.status, 0) << made.err;
  const ProcessResult stored =
      GradeEnglish({"--tutor", Path("tutor.wav"), "--format", "json", Path("en_learner.wav")});
  ASSERT_EQ(stored.status, 0) << stored.err;
  EXPECT_EQ(SchemaErrorOf(stored.out, "grade.schema.json"), "");
  const json value = json::parse(stored.out);
  EXPECT_EQ(value["sentence"], m_sentence);
  EXPECT_EQ(value["tutor"]["teacher"], "Ms. Lin");

  // The learner may say so himself; with another sentence it is told.
  const ProcessResult same = GradeEnglish({"--tutor", Path("tutor.wav"), "--text", m_sentence,
                                           "--format", "json", Path("en_learner.wav")});
  EXPECT_EQ(same.out, stored.out);
  // Case and punctuation are no other sentence.
  const ProcessResult alike =
      GradeEnglish({"--tutor", Path("tutor.wav"), "--text", "i READ the cat!", "--format", "json",
                    Path("en_learner.wav")});
  EXPECT_EQ(alike.out, stored.out);
  WriteFile(Path("list.tsv"), "en_learner.wav\tapple\nen_learner.wav\t" + m_sentence + "\n");
  const ProcessResult other =
      GradeEnglish({"--tutor", Path("tutor.wav"), "--list", Path("list.tsv"), "--format", "json"});
  EXPECT_EQ(other.status, 1);
  EXPECT_THAT(other.err, HasSubstr("en_learner.wav: reads another sentence than the tutor, who "
                                   "reads \"" +
                                   m_sentence + "\"\n"));
  const json two = json::parse(other.out);
  EXPECT_TRUE(two[0].contains("error"));
  EXPECT_EQ(two[1]["scores"], value["scores"]);
}

TEST_F(Grade, TutorsThatCannotBeUsed) {
  ASSERT_EQ(
      Run("tutor", "en", {"--text", m_sentence, Path("en_tutor.wav"), "-o", Path("tutor.wav")})
          .status,
      0);
  const std::string good = ReadFile(Path("tutor.wav"));
  WriteFile(Path("cut.wav"), good.substr(0, good.size() / 2));
  std::string changed = good;
  changed[changed.size() - 20] = static_cast<char>(changed[changed.size() - 20] ^ 1);
  WriteFile(Path("changed.wav"), changed);
  WriteFile(Path("text.wav"), "no audio");
  WriteFile(Path("empty.wav"), "");
  WriteWav("silent.wav", std::vector<std::int16_t>(22050, 0));
  WriteWav("short.wav", veral3::test::NoiseBursts(1000, 1));

  const ProcessResult language =
      Run("grade", "ja", {"--tutor", Path("tutor.wav"), Path("ja_learner.wav")});
  EXPECT_EQ(language.status, 1);
  EXPECT_THAT(language.err, HasSubstr("tutor.wav speaks English, not Japanese"));

  for (const auto& [name, reason] :
       {std::pair{"none.wav", "does not exist"}, std::pair{"text.wav", "cannot be read as audio"},
        std::pair{"empty.wav", ""}, std::pair{"silent.wav", "is silent"},
        std::pair{"short.wav", "cannot be aligned: too short for this sentence"},
        std::pair{"changed.wav", "damaged"}}) {
    const ProcessResult result =
        GradeEnglish({"--tutor", Path(name), "--text", m_sentence, "--format", "json", "--report",
                      Path("page.html"), Path("en_learner.wav")});
    EXPECT_EQ(result.status, 1) << name;
    EXPECT_THAT(result.err, HasSubstr(std::string(name) + ": ")) << name;
    EXPECT_THAT(result.err, HasSubstr(reason)) << name;
    const json value = json::parse(result.out);
    EXPECT_THAT(value["error"].get<std::string>(), StartsWith("not graded: the tutor "));
    EXPECT_EQ(SchemaErrorOf(result.out, "grade.schema.json"), "");
    EXPECT_THAT(ReadFile(Path("page.html")), HasSubstr("Not graded: "));
  }
  EXPECT_EQ(GradeEnglish({"--tutor", Path("cut.wav"), Path("en_learner.wav")}).status, 1);
}

// Loudness that is infinite, no number or negative, in a file that is whole otherwise.
TEST_F(Grade, AForgedTutorIsRefusedInOneSentence) {
  ASSERT_EQ(
      Run("tutor", "en", {"--text", m_sentence, Path("en_tutor.wav"), "-o", Path("tutor.wav")})
          .status,
      0);
  const std::string good = ReadFile(Path("tutor.wav"));
  const std::size_t chunk = good.find("vrl3") + 8;
  const auto number = [&](std::size_t at) {
    return static_cast<unsigned char>(good[chunk + at]) +
           256 * static_cast<unsigned char>(good[chunk + at + 1]);
  };
  const std::size_t content = static_cast<std::size_t>(number(4)) - sizeof(Sha256Digest);
  for (const auto& [bytes, what] :
       {std::pair{std::string("\0\0\x80\x7F", 4), "an infinite intensity of syllable 1"},
        std::pair{std::string("\0\0\xC0\x7F", 4),
                  "an intensity of syllable 1 that is not a number"},
        std::pair{std::string("\0\0\x80\xBF", 4), "a negative intensity of syllable 1"}}) {
    std::string forged = good;
    forged.replace(chunk + 64 + 1036, 4, bytes);
    const Sha256Digest digest = Sha256(std::string_view(forged).substr(chunk, content));
    forged.replace(chunk + content, digest.size(), std::string(digest.begin(), digest.end()));
    WriteFile(Path("forged.wav"), forged);
    const std::string problem = std::string("is a tutor file that holds ") + what + "\n";
    const ProcessResult result =
        GradeEnglish({"--tutor", Path("forged.wav"), Path("en_learner.wav")});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "veral3: " + Path("forged.wav") + " " + problem);
    EXPECT_THAT(result.out, IsEmpty());
    const ProcessResult inspected = RunVeral3({"inspect", Path("forged.wav")});
    EXPECT_EQ(inspected.status, 1);
    EXPECT_EQ(inspected.err, "veral3: " + Path("forged.wav") + ": " + problem);
  }
}

TEST_F(Grade, LearnersThatFailDoNotStopTheOthers) {
  WriteFile(Path("text.wav"), "no audio");
  WriteFile(Path("empty.wav"), "");
  WriteWav("silent.wav", std::vector<std::int16_t>(44100, 0));
  WriteWav("short.wav", veral3::test::NoiseBursts(1000, 1));
  std::vector<std::string> arguments = {"--text",          m_sentence,
                                        "--tutor",         Path("en_tutor.wav"),
                                        "--format",        "json",
                                        Path("none.wav"),  Path("text.wav"),
                                        Path("empty.wav"), Path("silent.wav"),
                                        Path("short.wav"), Path("en_learner.wav")};
  const ProcessResult one = GradeEnglish(arguments);
  EXPECT_EQ(one.status, 1);
  for (const char* message : {"none.wav: does not exist", "text.wav: cannot be read as audio",
                              "empty.wav: ", "silent.wav: is silent: there is nothing to grade",
                              "short.wav: cannot be aligned"}) {
    EXPECT_THAT(one.err, HasSubstr(message));
  }
  EXPECT_EQ(SchemaErrorOf(one.out, "grade.schema.json"), "");
  const json value = json::parse(one.out);
  ASSERT_EQ(value.size(), 6u);
  for (std::size_t i = 0; i < 5; ++i) EXPECT_TRUE(value[i].contains("error")) << i;
  EXPECT_TRUE(value[5].contains("scores"));

  arguments.insert(arguments.end(), {"--jobs", "4"});
  const ProcessResult four = GradeEnglish(arguments);
  EXPECT_EQ(four.out, one.out);
  EXPECT_EQ(four.err, one.err);
}

TEST_F(Grade, PronunciationAloneMeasuresNothingElse) {
  const ProcessResult result =
      GradeEnglish({"--pronunciation-only", "--text", m_sentence, "--format", "json", "--report",
                    Path("page.html"), Path("en_learner.wav")});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(SchemaErrorOf(result.out, "grade.schema.json"), "");
  const json value = json::parse(result.out);
  EXPECT_TRUE(value["scores"]["pitch"].is_null());
  EXPECT_TRUE(value["scores"]["timing"].is_null());
  EXPECT_TRUE(value["scores"]["intensity"].is_null());
  EXPECT_TRUE(value["scores"]["total"].is_number());
  EXPECT_TRUE(value["tutor"].is_null());
  EXPECT_THAT(ReadFile(Path("page.html")), HasSubstr("not measured"));
  const ProcessResult table =
      GradeEnglish({"--pronunciation-only", "--text", m_sentence, Path("en_learner.wav")});
  EXPECT_THAT(table.out, HasSubstr("   pitch -   timing -   loudness -\n"));
}

TEST_F(Grade, WithoutAModelNothingIsGraded) {
  std::filesystem::remove(Path("res/UttGoodness.model"));
  const ProcessResult result =
      GradeEnglish({"--text", m_sentence, "--tutor", Path("en_tutor.wav"), Path("en_learner.wav")});
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.out, IsEmpty());
  EXPECT_THAT(result.err, HasSubstr("no UttGoodness.model in " + Path("res") +
                                    ", without which nothing is graded\n"));
}

TEST_F(Grade, WrongUsageIsTwo) {
  const std::string learner = Path("en_learner.wav");
  const std::string tutor = Path("en_tutor.wav");
  std::filesystem::create_directory(Path("folder"));
  const std::vector<std::pair<std::vector<std::string>, std::string>> cases = {
      {{learner}, "no tutor; give --tutor, or --pronunciation-only"},
      {{"--tutor", tutor, "--pronunciation-only", learner}, "takes no tutor"},
      {{"--tutor", tutor, learner}, "no sentence; a tutor that is no tutor file goes with --text"},
      {{"--pronunciation-only", learner}, "no sentence"},
      {{"--tutor", tutor, "--text", m_sentence}, "no recording"},
      {{"--tutor", tutor, "--text", "blorf", learner}, "the dictionary lacks \"blorf\""},
      {{"--tutor", tutor, "--text", m_sentence, "--format", "ctm", learner}, "ctm"},
      {{"--tutor", tutor, "--text", m_sentence, "--report", learner, learner},
       "the page " + learner + " would overwrite the recording " + learner},
      {{"--tutor", tutor, "--text", m_sentence, "--output", tutor, learner},
       "the result " + tutor + " would overwrite the tutor " + tutor},
      {{"--tutor", tutor, "--text", m_sentence, "--report", tutor, learner},
       "the page " + tutor + " would overwrite the tutor " + tutor},
      {{"--tutor", tutor, "--text", m_sentence, "--report", Path("folder"), learner},
       "is a folder"},
      {{"--tutor", tutor, "--text", m_sentence, "--report", Path("x"), "--output", Path("x"),
        learner},
       " would be the same file"}};
  for (const auto& [arguments, message] : cases) {
    const ProcessResult result = GradeEnglish(arguments);
    EXPECT_EQ(result.status, 2) << message;
    EXPECT_THAT(result.err, HasSubstr(message));
    EXPECT_THAT(result.out, IsEmpty()) << message;
  }
  const ProcessResult place = GradeEnglish(
      {"--tutor", tutor, "--text", m_sentence, "--report", Path("none/x.html"), learner});
  EXPECT_EQ(place.status, 1);
  EXPECT_THAT(place.err, HasSubstr("none/x.html cannot be written: "));
  EXPECT_THAT(place.out, Not(IsEmpty()));
}

TEST_F(Grade, TableAndCommaSeparatedValues) {
  const ProcessResult table =
      GradeEnglish({"--text", m_sentence, "--tutor", Path("en_tutor.wav"), Path("en_learner.wav")});
  ASSERT_EQ(table.status, 0) << table.err;
  EXPECT_THAT(table.out, HasSubstr("sentence: " + m_sentence + "\ntotal "));
  EXPECT_THAT(table.out, HasSubstr("\npitch advice     "));
  const ProcessResult csv =
      GradeEnglish({"--text", m_sentence, "--tutor", Path("en_tutor.wav"), "--format", "csv",
                    "--output", Path("out/"), Path("en_learner.wav")});
  ASSERT_EQ(csv.status, 0) << csv.err;
  EXPECT_THAT(ReadFile(Path("out/en_learner.csv")), StartsWith("file,tier,text,"));
}

// The models of the source tree and the bundled learner, who says z and d for th.
TEST(GradeEndToEnd, ALearnersThIsHeard) {
  const std::filesystem::path examples =
      std::filesystem::path(VERAL3_SOURCE_DIR) / "examples/audio";
  const std::string tutor = examples / "english-weather.wav";
  const ProcessResult result = RunVeral3({"grade", "--lang", "en", "--tutor", tutor, "--text",
                                          "The weather is lovely this morning.", "--format", "json",
                                          examples / "english-learner.wav", tutor});
  ASSERT_EQ(result.status, 0) << result.err;
  const json value = json::parse(result.out);
  const json& learner = value[0];
  const json& same = value[1];
  int heard = 0;
  for (const json& phoneme : learner["phonemes"]) {
    if (phoneme["symbol"] != "D") continue;
    EXPECT_LT(phoneme["score"], 60);
    heard += phoneme["sounds_like"] == "z" || phoneme["sounds_like"] == "d";
  }
  EXPECT_EQ(heard, 3);
  EXPECT_LT(learner["scores"]["total"], 75);
  EXPECT_GT(learner["scores"]["total"], 30);
  // The tutor against himself.
  EXPECT_GE(same["scores"]["total"], 90);
  EXPECT_GE(same["scores"]["pitch"], 90);
  for (const json& syllable : same["syllables"]) {
    EXPECT_EQ(syllable["advice"]["pitch"], "-");
    EXPECT_EQ(syllable["advice"]["timing"], "-");
  }
}

}  // namespace
}  // namespace veral3::tools
