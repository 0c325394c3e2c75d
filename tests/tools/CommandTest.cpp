// The command as a process, with the small dictionary and model of the vectors: what it finds in a
// recording means nothing with them, but everything around it is real.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sndfile.h>

#include <nlohmann/json.hpp>

#include "JsonSchema.h"
#include "Process.h"
#include "SoundFiles.h"
#include "support/SmallEngine.h"
#include "support/Vectors.h"

namespace veral3::tools {
namespace {

using nlohmann::json;
using test::ProcessResult;
using test::RunVeral3;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;
using veral3::test::ReadFile;
using veral3::test::WriteFile;

class Command : public testing::Test {
 protected:
  Command() {
    std::filesystem::create_directory(m_folder.Path() / "res");
    for (const auto& [from, to] : {std::pair{"dictionary/en.txt", "KEN-UTF8Order.txt"},
                                   std::pair{"models/frame_en.bin", "EnglishFrame.model"}}) {
      std::filesystem::copy_file(veral3::test::VectorPath(from), m_folder.Path() / "res" / to);
    }
    WriteWav("a.wav");
  }

  std::string Path(const std::string& name) const { return m_folder.Path() / name; }

  // Noise in bursts, 16 bit mono 22050 Hz.
  void WriteWav(const std::string& name, int samples = 22050) {
    std::vector<double> values;
    for (const std::int16_t sample : veral3::test::NoiseBursts(samples, 7)) {
      values.push_back(sample / 32768.0);
    }
    test::WriteSoundFile(Path(name), values, 22050, 1, SF_FORMAT_WAV | SF_FORMAT_PCM_16);
  }

  ProcessResult Align(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {"align", "--lang", "en", "--resources", Path("res")});
    return RunVeral3(arguments);
  }

  const veral3::test::ScratchFolder m_folder;
};

TEST_F(Command, HelpAndVersion) {
  const ProcessResult help = RunVeral3({"--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_THAT(help.out, AllOf(HasSubstr("align"), HasSubstr("Example")));
  const ProcessResult align = RunVeral3({"align", "--help"});
  EXPECT_EQ(align.status, 0);
  EXPECT_THAT(align.out, AllOf(HasSubstr("veral3 align --lang en --text"),
                               HasSubstr("Exit status: 0 all done"), HasSubstr("--skip-unknown")));
  const ProcessResult version = RunVeral3({"--version"});
  EXPECT_EQ(version.status, 0);
  EXPECT_THAT(version.out, MatchesRegex("veral3 [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

TEST_F(Command, WrongUsageIsTwoAndReadsNothing) {
  const std::string a = Path("a.wav");
  WriteFile(Path("nine.txt"), "a\na\na\na\na\na\na\na\na\n");
  WriteFile(Path("list.tsv"), "a.wav\tapple\n");
  const std::vector<std::pair<std::vector<std::string>, std::string>> cases = {
      {{}, "no sentence"},
      {{a}, "no sentence; give --text, --text-file or --list"},
      {{"--text", "apple"}, "no recording"},
      {{"--text", "apple", "--bogus", a}, "--bogus"},
      {{"--text", "apple", "--format", "xml", a}, "xml"},
      {{"--text", "apple", "--jobs", "0", a}, "--jobs"},
      {{"--text", "apple", "--tier", "words", a}, "--tier goes with"},
      {{"--text", "", a}, "has no words"},
      {{"--text", "...", a}, "has no words"},
      {{"--text", "\xFF", a}, "not UTF-8"},
      {{"--text-file", Path("none"), a}, "does not exist"},
      {{"--text-file", Path("nine.txt"), a}, "more than 8"},
      {{"--text-file", Path("list.tsv"), "--text", "a", "--text", "a", "--text", "a", "--text", "a",
        "--text", "a", "--text", "a", "--text", "a", "--text", "a", a},
       "9 sentences"},
      {{"--list", Path("list.tsv"), a}, "takes no others"},
      {{"--list", Path("list.tsv"), "--text", "apple"}, "takes no others"},
      {{"--list", Path("none.tsv")}, "does not exist"},
      {{"--text", "apple", "--format", "textgrid", a, a}, "holds one recording"},
      {{"--text", "apple", "--output", a, a}, "would overwrite the recording"},
      {{"--text", "apple", "--output", Path("none/out.txt"), a}, "cannot be written"},
      {{"--text", "apple", "--output", Path("o/"), a, a}, "would both be"},
      {{"--text", "| apple", a}, "begins with a bar and a blank"},
      {{"--text", "|1 1 ? x|apple", a}, "inline pronunciation does not parse"},
      {{"--text", "|2 1|apple", a}, "neither a pronunciation"},
      {{"--text", "|3 blorf |", a}, "inline digits segment"},
  };
  for (const auto& [arguments, message] : cases) {
    const ProcessResult result = Align(arguments);
    EXPECT_EQ(result.status, 2) << message;
    EXPECT_THAT(result.err, HasSubstr(message));
    EXPECT_THAT(result.out, IsEmpty()) << message;
  }
  for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
           {}, {"foo"}, {"align"}, {"align", "--lang", "fr", "--text", "x", a}}) {
    const ProcessResult result = RunVeral3(arguments);
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, Not(IsEmpty()));
    EXPECT_THAT(result.out, IsEmpty());
  }
}

TEST_F(Command, AnUnknownCommandIsNamed) {
  const ProcessResult result = RunVeral3({"algin", "--lang", "en"});
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.err, StartsWith("veral3: no command \"algin\"; there are align, analyze, "));
  EXPECT_THAT(RunVeral3({"--lang", "en"}).err, StartsWith("veral3: no option \"--lang\" before"));
  EXPECT_THAT(RunVeral3({"align"}).err, StartsWith("veral3: --lang is required\n"));
}

TEST_F(Command, ALanguageMayBeInCapitalsOrNamed) {
  for (const char* language : {"EN", "En", "English", "ENGLISH", "english"}) {
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
             {"align", "--text", "apple", Path("a.wav")},
             {"analyze", "--text", "apple", Path("a.wav")},
             {"annotate", Path("a.wav")},
             {"check-text", "apple"},
             {"tutor", "--text", "apple", Path("a.wav"), "-o", Path("t.wav")}}) {
      std::vector<std::string> words = arguments;
      words.insert(words.end(), {"--resources", Path("res"), "--lang", language});
      EXPECT_EQ(RunVeral3(words).status, 0) << arguments[0] << " " << language;
    }
    EXPECT_THAT(RunVeral3({"grade", "--lang", language, "--resources", Path("res"),
                           "--pronunciation-only", "--text", "apple", Path("a.wav")})
                    .err,
                HasSubstr("EnglishPhon.model"));  // which is not there
  }
  EXPECT_THAT(RunVeral3({"check-text", "--lang", "fr", "apple"}).err,
              HasSubstr("--lang: \"fr\" is none of en, zh, ja"));
}

TEST_F(Command, EveryCommandThatWritesTakesTheShortOption) {
  for (const std::vector<std::string>& arguments :
       std::vector<std::vector<std::string>>{{"align", "--text", "apple"},
                                             {"analyze", "--text", "apple"},
                                             {"annotate"},
                                             {"tutor", "--text", "apple"},
                                             {"denoise"}}) {
    std::vector<std::string> words = arguments;
    words.insert(words.end(), {Path("a.wav"), "-o", Path(arguments[0])});
    if (arguments[0] != "denoise") {
      words.insert(words.end(), {"--lang", "en", "--resources", Path("res")});
    }
    const ProcessResult result = RunVeral3(words);
    EXPECT_EQ(result.status, 0) << arguments[0] << result.err;
    EXPECT_THAT(ReadFile(Path(arguments[0])), Not(IsEmpty()));
  }
  const ProcessResult help = RunVeral3({"grade", "--help"});
  EXPECT_THAT(help.out, HasSubstr("-o,--output"));
}

TEST_F(Command, MissingResourcesNameWhereItLooked) {
  const ProcessResult given = RunVeral3(
      {"align", "--lang", "ja", "--resources", Path("res"), "--text", "x", Path("a.wav")});
  EXPECT_EQ(given.status, 2);
  EXPECT_EQ(given.err,
            "veral3: no resources for Japanese (KJP-UTF8Order.txt and JapaneseFrame.model); "
            "looked in " +
                Path("res") + "\n");
}

TEST_F(Command, DamagedResourcesSayWhat) {
  const std::string model = ReadFile(Path("res/EnglishFrame.model"));
  WriteFile(Path("res/EnglishFrame.model"), model.substr(0, 1000));
  ProcessResult result = Align({"--text", "apple", Path("a.wav")});
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.err,
              HasSubstr("EnglishFrame.model cannot be used as the English frame model: "));

  WriteFile(Path("res/EnglishFrame.model"), model);
  WriteFile(Path("res/KEN-UTF8Order.txt"), "DICT 3 XX 1\nA 1 ? 1 0 0 @\n");
  result = Align({"--text", "apple", Path("a.wav")});
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.err, HasSubstr("KEN-UTF8Order.txt cannot be used: Error: Unknown Veral"));
}

TEST_F(Command, UnknownWordsAreNamedBeforeAnyAudioIsTouched) {
  const ProcessResult refused =
      Align({"--text", "apple zyx", "--text", "blorf", Path("not-there.wav")});
  EXPECT_EQ(refused.status, 2);
  EXPECT_THAT(refused.err, HasSubstr("sentence \"apple zyx\": the dictionary lacks \"zyx\"\n"));
  EXPECT_THAT(refused.err, HasSubstr("sentence \"blorf\": the dictionary lacks \"blorf\"\n"));
  EXPECT_THAT(refused.err, HasSubstr("    |1 1 ? SYLLABLES MARKS STARTS PHONEMES|zyx\n"));
  EXPECT_THAT(refused.err, Not(HasSubstr("not-there.wav")));

  const ProcessResult skipped =
      Align({"--skip-unknown", "--text", "apple zyx", "--format", "ctm", Path("a.wav")});
  EXPECT_EQ(skipped.status, 0) << skipped.err;
  EXPECT_THAT(skipped.err, HasSubstr("the dictionary lacks \"zyx\"; passed over"));
  EXPECT_THAT(skipped.out, MatchesRegex("a 1 [0-9.]+ [0-9.]+ APPLE [01]\\.[0-9]+\n"));

  const ProcessResult nothing = Align({"--skip-unknown", "--text", "zyx", Path("a.wav")});
  EXPECT_EQ(nothing.status, 2);
  EXPECT_THAT(nothing.err, HasSubstr("nothing is left"));
}

TEST_F(Command, InlinePronunciationStandsForAMissingWord) {
  const ProcessResult result =
      Align({"--text", "apple |1 1 ? 1 1 0 hYt|zyx", "--format", "json", Path("a.wav")});
  ASSERT_EQ(result.status, 0) << result.err;
  const json value = json::parse(result.out);
  EXPECT_EQ(value["words"][1]["text"], "zyx");
  EXPECT_EQ(value["syllables"][2]["text"], "hAIt");
  EXPECT_EQ(value["sentence"], "apple |1 1 ? 1 1 0 hYt|zyx");
}

TEST_F(Command, SentencesBeyondTheEngineAreRefused) {
  std::string text;
  for (int i = 0; i < 257; ++i) text += "a ";
  const ProcessResult result = Align({"--text", text, Path("a.wav")});
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.err, HasSubstr("more than 256 words"));
}

TEST_F(Command, FailedFilesDoNotStopTheOthers) {
  WriteFile(Path("bad.wav"), "no audio");
  WriteWav("short.wav", 600);
  const ProcessResult result = Align({"--text", "apple", "--format", "json", Path("none.wav"),
                                      Path("bad.wav"), Path("a.wav"), Path("short.wav")});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr("veral3: " + Path("none.wav") + ": does not exist\n"));
  EXPECT_THAT(result.err, HasSubstr(Path("bad.wav") + ": cannot be read as audio"));
  EXPECT_THAT(result.err, HasSubstr(Path("short.wav") + ": cannot be aligned: "));
  const json value = json::parse(result.out);
  ASSERT_EQ(value.size(), 4u);
  EXPECT_EQ(value[0]["file"], Path("none.wav"));
  EXPECT_EQ(value[0]["error"], "does not exist");
  EXPECT_TRUE(value[1].contains("error"));
  EXPECT_EQ(value[2]["words"][0]["text"], "APPLE");
  EXPECT_TRUE(value[3].contains("error"));
  const json schema = json::parse(
      ReadFile(std::filesystem::path(VERAL3_SOURCE_DIR) / "docs/formats/align.schema.json"));
  EXPECT_EQ(test::SchemaError(value, schema), "");
}

TEST_F(Command, OneFileIsOneObject) {
  const ProcessResult result = Align({"--text", "apple", "--format", "json", Path("a.wav")});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.err, IsEmpty());
  const json value = json::parse(result.out);
  ASSERT_TRUE(value.is_object());
  EXPECT_EQ(value["num_samples"], 22050);
  EXPECT_THAT(result.out, testing::EndsWith("}\n"));
}

TEST_F(Command, RecordingsThatSoundOddAreToldOf) {
  test::WriteSoundFile(Path("silent.wav"), std::vector<double>(22050, 0.0), 22050, 1,
                       SF_FORMAT_WAV | SF_FORMAT_PCM_16);
  test::WriteSoundFile(Path("loud.wav"), test::Sine(300, 2.0, 1.0, 22050, 1), 22050, 1,
                       SF_FORMAT_WAV | SF_FORMAT_FLOAT);
  const ProcessResult result = Align({"--text", "apple", Path("silent.wav"), Path("loud.wav")});
  EXPECT_THAT(result.err, HasSubstr("silent.wav: is silent"));
  EXPECT_THAT(result.err, MatchesRegex("(.|\n)*loud.wav: is louder than 16 bits hold: "
                                       "[0-9]+ samples were clamped\n(.|\n)*"));
}

TEST_F(Command, TextFileAndListBringSentences) {
  WriteFile(Path("text.txt"),
            "\xEF\xBB\xBF"
            "a\r\napple\r\n");
  const ProcessResult text =
      Align({"--text-file", Path("text.txt"), "--format", "json", Path("a.wav")});
  ASSERT_EQ(text.status, 0) << text.err;
  const json one = json::parse(text.out);
  const std::size_t index = one["sentence_index"];
  ASSERT_LT(index, 2u);
  EXPECT_EQ(one["sentence"], index == 0 ? "a" : "apple");

  std::filesystem::create_directory(Path("sub"));
  WriteWav("sub/b.wav");
  WriteFile(Path("list.tsv"), "a.wav\tapple\nsub/b.wav\ta\n");
  const ProcessResult list = Align({"--list", Path("list.tsv"), "--format", "json"});
  ASSERT_EQ(list.status, 0) << list.err;
  const json two = json::parse(list.out);
  EXPECT_EQ(two[0]["words"][0]["text"], "APPLE");
  EXPECT_EQ(two[1]["file"], Path("sub/b.wav"));
  EXPECT_EQ(two[1]["words"][0]["text"], "A");
}

TEST_F(Command, OutputGoesToAFile) {
  const ProcessResult result = Align(
      {"--text", "apple", "--format", "textgrid", "--output", Path("a.TextGrid"), Path("a.wav")});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.out, IsEmpty());
  EXPECT_THAT(ReadFile(Path("a.TextGrid")), StartsWith("File type = \"ooTextFile\"\n"));

  // Nothing to write leaves what was there.
  const ProcessResult failed = Align(
      {"--text", "apple", "--format", "textgrid", "--output", Path("a.TextGrid"), Path("no.wav")});
  EXPECT_EQ(failed.status, 1);
  EXPECT_THAT(ReadFile(Path("a.TextGrid")), StartsWith("File type = \"ooTextFile\"\n"));

  const ProcessResult full = Align({"--text", "apple", "--output", "/dev/full", Path("a.wav")});
  EXPECT_EQ(full.status, 1);
  EXPECT_THAT(full.err, HasSubstr("/dev/full cannot be written: No space left"));
}

TEST_F(Command, FolderTakesAFileARecording) {
  WriteWav("b.wav");
  for (const auto& [format, ending] :
       {std::pair{"table", ".txt"}, std::pair{"json", ".json"}, std::pair{"textgrid", ".TextGrid"},
        std::pair{"ctm", ".ctm"}, std::pair{"csv", ".csv"}, std::pair{"audacity", ".labels.txt"}}) {
    const ProcessResult result = Align({"--text", "apple", "--format", format, "--output",
                                        Path("new/out/"), Path("a.wav"), Path("b.wav")});
    EXPECT_EQ(result.status, 0) << result.err;
    for (const char* name : {"a", "b"}) {
      EXPECT_THAT(ReadFile(Path(std::string("new/out/") + name + ending)), Not(IsEmpty()));
    }
  }
  EXPECT_THAT(ReadFile(Path("new/out/b.csv")), StartsWith("file,tier,text,"));
  EXPECT_TRUE(json::parse(ReadFile(Path("new/out/b.json"))).is_object());
}

TEST_F(Command, CtmNamesRecordingsApart) {
  std::filesystem::create_directory(Path("sub"));
  WriteWav("sub/a.wav");
  WriteWav("c d.wav");
  const ProcessResult result = Align({"--text", "apple", "--format", "ctm", "--tier", "words",
                                      Path("a.wav"), Path("sub/a.wav"), Path("c d.wav")});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.out, StartsWith(Path("a") + " 1 "));
  EXPECT_THAT(result.out, HasSubstr(Path("sub/a") + " 1 "));
  EXPECT_THAT(result.out, HasSubstr("\nc_d 1 "));
}

TEST_F(Command, JobsChangeNothingInTheOutput) {
  std::vector<std::string> arguments = {"--text", "apple", "--text", "a", "--format", "json"};
  for (int i = 0; i < 12; ++i) {
    const std::string name = test::NumberedWav(i);
    if (i != 5) WriteWav(name, 8000 + 3000 * (i % 4));
    arguments.push_back(Path(name));
  }
  const ProcessResult one = Align(arguments);
  arguments.insert(arguments.end(), {"--jobs", "4"});
  const ProcessResult four = Align(arguments);
  EXPECT_EQ(one.status, 1);
  EXPECT_EQ(four.status, 1);
  EXPECT_EQ(one.out, four.out);
  EXPECT_EQ(one.err, four.err);
}

TEST_F(Command, LongListsShowProgressOnATerminal) {
  std::vector<std::string> arguments = {"align",        "--lang",     "en",    "--resources",
                                        Path("res"),    "--text",     "apple", Path("a.wav"),
                                        Path("no.wav"), Path("a.wav")};
  const std::string clear = "\r\x1B[K";
  const std::string text = test::StandardErrorOnTerminal(arguments);
  EXPECT_THAT(text, StartsWith("[0/3] "));
  EXPECT_THAT(text, HasSubstr("a.wav" + clear + "[1/3] "));
  EXPECT_THAT(text, HasSubstr(clear + "veral3: " + Path("no.wav") + ": does not exist\r\n[2/3] "));
  EXPECT_THAT(text, testing::EndsWith(clear));
  arguments.pop_back();
  EXPECT_THAT(test::StandardErrorOnTerminal(arguments), Not(HasSubstr("[0/")));
}

TEST_F(Command, VerboseTellsWhatWasLoaded) {
  const ProcessResult result = Align({"--verbose", "--text", "apple", Path("a.wav")});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.err, HasSubstr("veral3: resources: " + Path("res") + "\n"));
  EXPECT_THAT(result.err, HasSubstr("words loaded from <"));
  EXPECT_THAT(result.err, HasSubstr("Version = ["));
}

}  // namespace
}  // namespace veral3::tools
