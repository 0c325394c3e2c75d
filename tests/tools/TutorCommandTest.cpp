// tutor and inspect as processes.
#include <gmock/gmock.h>
#include <sndfile.h>

#include <filesystem>

#include "SmallResources.h"
#include "SoundFiles.h"
#include "core/AnalyzedAudio.h"
#include "support/MessageCapture.h"
#include "support/SmallEngine.h"
#include "tools/AudioFile.h"
#include "tools/TutorFile.h"

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

const std::filesystem::path kSource(VERAL3_SOURCE_DIR);

struct Reading {
  const char* code;
  LanguageType language;
  const char* sentence;
};
const Reading kReadings[] = {{"en", kLanguageEnglish, "I READ THE CAT"},
                             {"zh", kLanguageChinese, "你好 東 是"},
                             {"ja", kLanguageJapanese, "さくら ほん"}};

class TutorCommand : public test::SmallResources {
 protected:
  TutorCommand() { WriteWav("en.wav", veral3::test::ChainRecording("en_tutor")); }

  // With the sentence and the recording of the English tutor.
  ProcessResult Tutor(std::vector<std::string> more) const {
    more.insert(more.begin(), {"--text", "I READ THE CAT", Path("en.wav")});
    return Run("tutor", "en", more);
  }
};

TEST_F(TutorCommand, EveryLanguage) {
  veral3::test::LoadSmallEngine();
  for (const Reading& reading : kReadings) {
    SCOPED_TRACE(reading.code);
    auto samples = veral3::test::ChainRecording(std::string(reading.code) + "_tutor");
    WriteWav("in.wav", samples);
    const ProcessResult result = Run("tutor", reading.code,
                                     {"--text", reading.sentence, "--teacher", "Ms. 林", "--date",
                                      "2026-02-28", Path("in.wav"), "-o", Path("tutor.wav")});
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, MatchesRegex(".*tutor.wav: [0-9]+ words, [0-9]+ syllables, [0-9]+ "
                                         "phonemes, [0-9.]+ s\n"));
    const Result<TutorFile> tutor = LoadTutor(Path("tutor.wav"));
    ASSERT_TRUE(tutor) << tutor.Error();
    EXPECT_EQ(tutor->language, reading.language);
    EXPECT_EQ(tutor->variety, VarietyOf(reading.language));
    EXPECT_EQ(tutor->sentence, reading.sentence);
    EXPECT_EQ(tutor->teacher, "Ms. 林");
    EXPECT_EQ(tutor->date, 20260228u);
    EXPECT_EQ(tutor->samples, samples);  // before any filter

    // What stands in the file is what analysing its sound finds.
    const veral3::test::MessageCapture quiet;
    AnalyzedAudio audio(reading.language);
    audio.AddPossibleSentence(reading.sentence);
    const auto count = static_cast<std::uint32_t>(samples.size());
    ASSERT_GE(audio.Align(count, samples.data()), 0);
    ASSERT_EQ(audio.Analyze(count, samples.data()), 0);
    std::array<unsigned char, 2544> record;
    ASSERT_EQ(audio.GetAlignInfo(record.data()), 0);
    EXPECT_EQ(tutor->record, record);
  }
}

TEST_F(TutorCommand, ATutorFileMakesTheSameTutorFile) {
  const std::vector<std::string> options = {"--date", "2026-01-31", "-o"};
  auto first = options;
  first.push_back(Path("a.wav"));
  ASSERT_EQ(Tutor(first).status, 0);
  const ProcessResult again =
      Run("tutor", "en",
          {"--text", "I READ THE CAT", "--date", "2026-01-31", Path("a.wav"), "-o", Path("b.wav")});
  ASSERT_EQ(again.status, 0) << again.err;
  EXPECT_EQ(ReadFile(Path("a.wav")), ReadFile(Path("b.wav")));
}

TEST_F(TutorCommand, RecordingsOfOtherKindsAreBroughtToTheEnginesForm) {
  std::vector<double> doubled;
  for (const std::int16_t sample : veral3::test::ChainRecording("en_tutor")) {
    doubled.insert(doubled.end(), 4, sample / 32768.0);
  }
  test::WriteSoundFile(Path("stereo.flac"), doubled, 44100, 2, SF_FORMAT_FLAC | SF_FORMAT_PCM_24);
  const ProcessResult result =
      Run("tutor", "en", {"--text", "I READ THE CAT", Path("stereo.flac"), "-o", Path("t.wav")});
  ASSERT_EQ(result.status, 0) << result.err;
  const auto tutor = LoadTutor(Path("t.wav"));
  const auto recording = ReadAudioFile(Path("stereo.flac"));
  ASSERT_TRUE(tutor && recording);
  EXPECT_EQ(tutor->samples, recording->samples);
  EXPECT_EQ(tutor->teacher, "");
  EXPECT_GE(tutor->date, 20250101u);  // today
}

// Nothing is written, and what was there stays.
TEST_F(TutorCommand, RecordingsThatCannotBeATutors) {
  WriteWav("silent.wav", std::vector<std::int16_t>(22050));
  WriteWav("short.wav", veral3::test::NoiseBursts(600, 1));
  WriteWav("long.wav", veral3::test::NoiseBursts(7208960, 1));
  WriteFile(Path("text.wav"), "no sound");
  WriteFile(Path("out.wav"), "before");
  for (const auto& [file, error] : {std::pair{"silent.wav", "is silent: every sample is 0"},
                                    std::pair{"short.wav", "cannot be aligned: "},
                                    std::pair{"long.wav", "is longer than 5.4 minutes"},
                                    std::pair{"text.wav", "cannot be read as audio"},
                                    std::pair{"none.wav", "does not exist"}}) {
    const ProcessResult result =
        Run("tutor", "en", {"--text", "I READ THE CAT", Path(file), "-o", Path("out.wav")});
    EXPECT_EQ(result.status, 1) << file;
    EXPECT_THAT(result.err, HasSubstr("veral3: " + Path(file) + ": " + error));
    EXPECT_THAT(result.out, IsEmpty());
    EXPECT_EQ(ReadFile(Path("out.wav")), "before");
  }
}

TEST_F(TutorCommand, MoreThanARecordHolds) {
  std::string sentence;
  for (int i = 0; i < 65; ++i) sentence += "A ";
  WriteWav("in.wav", veral3::test::NoiseBursts(220500, 5));
  const ProcessResult result =
      Run("tutor", "en", {"--text", sentence, Path("in.wav"), "-o", Path("out.wav")});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err,
              HasSubstr("cannot be kept in a tutor file: it has 65 syllables, more than "
                        "64, the most that a tutor file holds\n"));
  EXPECT_FALSE(std::filesystem::exists(Path("out.wav")));
}

TEST_F(TutorCommand, WrongUsage) {
  const auto error = [&](const ProcessResult& result) {
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.out, IsEmpty());
    EXPECT_FALSE(std::filesystem::exists(Path("o.wav")));
    return result.err;
  };
  EXPECT_THAT(error(Tutor({})), HasSubstr("--output is required"));
  for (const char* date :
       {"2026-02-29", "2026-1-1", "20260101", "2026-13-01", "yesterday", "-026-01-01"}) {
    EXPECT_THAT(error(Tutor({"--date", date, "-o", Path("o.wav")})), HasSubstr("is no date"));
  }
  EXPECT_THAT(error(Tutor({"--teacher", "\xFF", "-o", Path("o.wav")})), HasSubstr("not UTF-8"));
  EXPECT_THAT(error(Tutor({"--teacher", std::string(1025, 'x'), "-o", Path("o.wav")})),
              HasSubstr("the name of --teacher is too long: 1025 bytes, of which a tutor file "
                        "holds at most 1024\n"));
  EXPECT_THAT(error(Tutor({"-o", Path("en.wav")})), HasSubstr("would overwrite the recording"));
  EXPECT_THAT(error(Run("tutor", "en", {"--text", "xyzzy", Path("en.wav"), "-o", Path("o.wav")})),
              HasSubstr("the dictionary lacks"));
  EXPECT_THAT(error(Run("tutor", "xx", {"--text", "A", Path("en.wav"), "-o", Path("o.wav")})),
              HasSubstr("--lang"));
}

TEST_F(TutorCommand, AnOutputThatCannotBeWritten) {
  const ProcessResult result = Tutor({"-o", Path("no/such/folder/t.wav")});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr("t.wav: cannot be written: No such file or directory"));
}

TEST_F(TutorCommand, ChineseNeedsTheTones) {
  WriteWav("zh.wav", veral3::test::ChainRecording("zh_tutor"));
  std::filesystem::remove(Path("res/ChineseTone.model"));
  std::filesystem::remove(Path("res/UttGoodness.model"));
  const std::vector<std::string> rest = {Path("zh.wav"), "-o", Path("t.wav")};
  ProcessResult result = Run("tutor", "zh", {"--text", "你好 東 是", rest[0], rest[1], rest[2]});
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.err, AllOf(HasSubstr("ChineseTone.model"), HasSubstr("it needs that model")));
  // The others leave nothing out of a tutor file, so nothing is said of them.
  result = Tutor({"-o", Path("t.wav")});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.err, Not(HasSubstr("model")));
}

class InspectCommand : public test::SmallResources {};

json InspectJson(std::vector<std::string> files, int status = 0) {
  files.insert(files.begin(), {"inspect", "--format", "json"});
  const ProcessResult result = RunVeral3(files);
  EXPECT_EQ(result.status, status);
  return json::parse(result.out);
}

TEST_F(InspectCommand, ATutorFile) {
  WriteWav("en.wav", veral3::test::ChainRecording("en_tutor"));
  ASSERT_EQ(Run("tutor", "en",
                {"--text", "I READ THE CAT", "--teacher", "A\x1B[2J\nB", "--date", "2026-11-21",
                 Path("en.wav"), "-o", Path("t.wav")})
                .status,
            0);
  const json tutor = InspectJson({Path("t.wav")});
  EXPECT_EQ(tutor["file"], Path("t.wav"));
  EXPECT_EQ(tutor["kind"], "tutor file");
  EXPECT_EQ(tutor["size_bytes"], std::filesystem::file_size(Path("t.wav")));
  EXPECT_EQ(tutor["format_version"], 1);
  EXPECT_EQ(tutor["language"], "en");
  EXPECT_EQ(tutor["variety"], "American English");
  EXPECT_EQ(tutor["teacher"], "A\x1B[2J\nB");
  EXPECT_EQ(tutor["date"], "2026-11-21");
  EXPECT_EQ(tutor["sentence"], "I READ THE CAT");
  EXPECT_EQ(tutor["num_samples"], veral3::test::ChainRecording("en_tutor").size());
  EXPECT_EQ(tutor["words"], 4);
  EXPECT_EQ(tutor["syllables"], 4);
  EXPECT_EQ(tutor["phonemes"], 10);
  EXPECT_EQ(tutor["symbols"], "AIridD@k{t");
  EXPECT_EQ(tutor["pitch_segments"], 3);

  const ProcessResult table = RunVeral3({"inspect", Path("t.wav")});
  EXPECT_EQ(table.status, 0);
  EXPECT_THAT(table.out,
              AllOf(StartsWith(Path("t.wav") + "\n  kind                    tutor file\n"),
                    HasSubstr("  teacher                 A\xEF\xBF\xBD[2J B\n"),
                    HasSubstr("  sentence                I READ THE CAT\n")));
}

TEST_F(InspectCommand, Models) {
  const json models = InspectJson({Path("res/EnglishFrame.model"), Path("res/ChineseTone.model"),
                                   Path("res/UttGoodness.model"), Path("res/JapanesePhon.model")});
  ASSERT_EQ(models.size(), 4u);
  EXPECT_EQ(models[0]["kind"], "model");
  EXPECT_EQ(models[0]["fits"], json({"frames, English"}));
  EXPECT_EQ(models[1]["fits"], json({"tones"}));
  EXPECT_EQ(models[2]["fits"], json({"utterance goodness"}));
  EXPECT_EQ(models[3]["fits"], json({"phonemes, Japanese"}));
  EXPECT_EQ(models[0]["layers"][0]["kind"], "dense");
  EXPECT_EQ(models[0]["layers"][0]["inputs"], 195);
  EXPECT_TRUE(models[0]["version"].is_number_integer());
}

TEST_F(InspectCommand, OtherLayers) {
  const json model = InspectJson({kSource / "tests/vectors/keras/full_stack.bin"});
  EXPECT_EQ(model["kind"], "model");
  EXPECT_EQ(model["fits"], json::array());
}

TEST_F(InspectCommand, ADictionary) {
  WriteFile(Path("d.txt"),
            "\xEF\xBB\xBFVERAL 3 EN_KEP5 9\nA 2 ? 1 0 0 @\n? 1 1 0 e\nWRITER 1 ? 2 10 0 2 rYtR\n"
            "BAD 1 ? 1 1 7 x\n");
  const json dictionary = InspectJson({Path("d.txt")});
  EXPECT_EQ(dictionary["kind"], "dictionary");
  EXPECT_EQ(dictionary["language"], "en");
  EXPECT_EQ(dictionary["phoneme_set"], "EN_KEP5");
  EXPECT_EQ(dictionary["format_version"], "3");
  EXPECT_EQ(dictionary["announced_words"], 9);
  EXPECT_EQ(dictionary["words"], 3);
  EXPECT_EQ(dictionary["pronunciations"], 3);
  EXPECT_EQ(dictionary["unusable_pronunciations"], 1);
  EXPECT_EQ(dictionary["sha256"].get<std::string>().size(), 64u);
}

TEST_F(InspectCommand, FilesOfNoKindOfOurs) {
  WriteFile(Path("text.txt"), "Good morning, and so on, for a while.\n");
  WriteFile(Path("zeros"), std::string(4000, '\0'));
  WriteFile(Path("empty"), "");
  WriteFile(Path("short"), "V");
  WriteWav("plain.wav", veral3::test::NoiseBursts(5000, 2));
  const json all =
      InspectJson({Path("text.txt"), Path("zeros"), Path("empty"), Path("short"), Path("plain.wav"),
                   Path("none"), Path("."), Path("res/EnglishFrame.model")},
                  1);
  ASSERT_EQ(all.size(), 8u);
  for (std::size_t i = 0; i < 7; ++i) {
    EXPECT_TRUE(all[i].contains("error")) << all[i];
    EXPECT_EQ(all[i].size(), 2u);
  }
  EXPECT_THAT(all[0]["error"].get<std::string>(),
              StartsWith("is no tutor file, no dictionary and no model ("));
  EXPECT_EQ(all[1]["error"], "is no tutor file, no dictionary and no model (it has no layers)");
  EXPECT_EQ(all[2]["error"], "is empty (0 bytes)");
  EXPECT_EQ(all[4]["error"], "is a recording, no tutor file; `veral3 tutor` makes one of it");
  EXPECT_EQ(all[5]["error"], "does not exist");
  EXPECT_EQ(all[6]["error"], "is a folder");
  EXPECT_EQ(all[7]["kind"], "model");

  const ProcessResult table = RunVeral3({"inspect", Path("none"), Path("plain.wav")});
  EXPECT_EQ(table.status, 1);
  EXPECT_EQ(table.out, "");
  EXPECT_EQ(table.err, "veral3: " + Path("none") +
                           ": does not exist\nveral3: " + Path("plain.wav") +
                           ": is a recording, no tutor file; `veral3 tutor` makes one of it\n");
}

TEST_F(InspectCommand, DamagedFilesOfOurs) {
  const std::string model = ReadFile(Path("res/EnglishFrame.model"));
  for (std::size_t size : {model.size() / 2, model.size() - 1, std::size_t{9}}) {
    WriteFile(Path("cut.model"), model.substr(0, size));
    const ProcessResult result = RunVeral3({"inspect", Path("cut.model")});
    EXPECT_EQ(result.status, 1) << size;
    EXPECT_THAT(result.err, HasSubstr("is no tutor file, no dictionary and no model ("));
  }
}

// A network that no use of the engine's takes is still a model; one that cannot be looked at is
// none.
TEST_F(InspectCommand, ModelsThatAreFitForNothing) {
  std::string relu = ReadFile(Path("res/EnglishFrame.model"));
  relu[13] = 'r';  // the last layer's activation
  WriteFile(Path("relu.model"), relu);
  EXPECT_EQ(InspectJson({Path("relu.model")})["fits"], json::array());
  std::string infinite = relu;
  infinite.replace(23, 4, std::string("\0\0\x80\x7F", 4));  // the first weight
  WriteFile(Path("infinite.model"), infinite);
  EXPECT_EQ(InspectJson({Path("infinite.model")}, 1)["error"],
            "is no tutor file, no dictionary and no model (layer 1 has a weight that is infinite)");
}

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr long kMostMemory = 4 << 20;  // kB; a sanitizer's own is in it
#else
constexpr long kMostMemory = 500 << 10;  // that of the tests, which start the command, is in it
#endif

TEST_F(InspectCommand, AFileOfAGigabyteIsNotReadIntoMemory) {
  WriteFile(Path("model"), ReadFile(Path("res/ChineseTone.model")));
  WriteFile(Path("dictionary"), "VERAL 3 EN_KEP5 9\n");
  WriteFile(Path("recording"), "RIFF");
  WriteFile(Path("zeros"), "");
  const std::pair<const char*, const char*> cases[] = {
      {"dictionary", "begins as a dictionary, but is larger than any (64 MiB)"},
      {"recording", "is no tutor file: "},
      {"zeros", "is no tutor file, no dictionary and no model (it has no layers)"}};
  for (const auto& [name, error] : cases) {
    std::filesystem::resize_file(Path(name), std::uintmax_t{1} << 30);
    const ProcessResult result = RunVeral3({"inspect", Path(name)});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, StartsWith("veral3: " + Path(name) + ": " + error));
    EXPECT_LE(result.max_resident_kb, kMostMemory) << name;
  }
  // What stands behind a model is none of it.
  std::filesystem::resize_file(Path("model"), std::uintmax_t{1} << 30);
  const ProcessResult model = RunVeral3({"inspect", Path("model")});
  EXPECT_EQ(model.status, 0);
  EXPECT_THAT(model.out, AllOf(HasSubstr("  kind                    model\n"),
                               HasSubstr("  size bytes              1073741824\n"),
                               HasSubstr("  fits                    tones\n")));
  EXPECT_LE(model.max_resident_kb, kMostMemory);

  std::filesystem::resize_file(Path("zeros"), (std::uintmax_t{1} << 30) + 1);
  EXPECT_EQ(RunVeral3({"inspect", Path("zeros")}).err,
            "veral3: " + Path("zeros") + ": is larger than any file of the engine's (1 GiB)\n");
}

TEST_F(InspectCommand, TheShippedResources) {
  const std::string manifest = ReadFile(kSource / "resources/MANIFEST");
  for (const auto& entry : std::filesystem::directory_iterator(kSource / "resources")) {
    const std::string name = entry.path().filename();
    if (!name.ends_with(".model") && !name.ends_with("Order.txt")) continue;
    const json file = InspectJson({entry.path()});
    EXPECT_EQ(file["kind"], name.ends_with(".model") ? "model" : "dictionary") << name;
    EXPECT_EQ(file.value("unusable_pronunciations", 0), 0) << name;
    // The manifest names each file's checksum.
    EXPECT_NE(manifest.find(file["sha256"].get<std::string>()), std::string::npos)
        << name << " is " << file["sha256"];
  }
}

TEST_F(InspectCommand, WrongUsage) {
  EXPECT_EQ(RunVeral3({"inspect"}).status, 2);
  EXPECT_EQ(RunVeral3({"inspect", "--format", "xml", "a"}).status, 2);
}

}  // namespace
}  // namespace veral3::tools
