#include <gmock/gmock.h>

#include <filesystem>

#include "Process.h"
#include "text/Lexicon.h"
#include "tools/Resources.h"
#include "tools/TextReport.h"
#include "tools/TutorFile.h"

// A language that nobody knows is refused; it is never taken for English.
namespace veral3::tools {
namespace {

using test::ProcessResult;
using test::RunVeral3;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr LanguageType kNone = static_cast<LanguageType>(4);
const std::filesystem::path kResources = std::filesystem::path(VERAL3_SOURCE_DIR) / "resources";

TEST(UnknownLanguage, TheCommandNamesThoseThatItKnows) {
  for (const char* const command : {"align", "analyze", "annotate", "grade", "check-text"}) {
    for (const char* const language : {"ko", "1", "", "eng"}) {
      const ProcessResult result = RunVeral3({command, "--lang", language, "word"});
      EXPECT_EQ(result.status, 2) << command << " " << language;
      EXPECT_THAT(result.err, HasSubstr("is none of en, zh, ja")) << command << " " << language;
      EXPECT_THAT(result.out, IsEmpty());
    }
  }
}

TEST(UnknownLanguage, HasNoResources) {
  for (const auto& found : {FindResources(kResources, kNone), FindDictionary(kResources, kNone)}) {
    ASSERT_FALSE(found);
    EXPECT_EQ(found.Error(), "no language that Veral3 knows");
  }
  const auto dictionary = LoadDictionary(kResources, kNone);
  ASSERT_FALSE(dictionary);
  EXPECT_EQ(dictionary.Error(), "no language that Veral3 knows");
  const auto loaded = LoadResources(kResources, kNone, ResourceUse::kAnnotate);
  ASSERT_FALSE(loaded);
  EXPECT_EQ(loaded.Error(), "no language that Veral3 knows");
  const MeasuringModels models = LoadedModels(kNone);
  EXPECT_FALSE(models.phoneme || models.tone || models.goodness);
}

TEST(UnknownLanguage, HasNoVarietyAndNoTutorFile) {
  EXPECT_EQ(VarietyOf(kNone), HLYFile::kSubL2Unknown);
  EXPECT_EQ(VarietyOf(kLanguageEnglish), HLYFile::kSubL2American);
  EXPECT_EQ(VarietyOf(kLanguageChinese), HLYFile::kSubL2Taiwan);
  EXPECT_EQ(VarietyOf(kLanguageJapanese), HLYFile::kSubL2Tokyo);
  TutorFile tutor;
  tutor.language = kNone;
  tutor.sentence = "word";
  tutor.samples.assign(1000, 1);
  EXPECT_EQ(WriteTutor(std::filesystem::temp_directory_path() / "never-written.wav", tutor),
            "is not written: it would hold an unknown language");
}

TEST(UnknownLanguage, TextHasNoWords) {
  const TextReport report = ReportText("word", kNone, LexiconOf(kNone));
  EXPECT_THAT(report.words, IsEmpty());
  EXPECT_THAT(InlinePronunciationHelp("word", kNone), testing::EndsWith("PHONEMES|word\n"));
}

}  // namespace
}  // namespace veral3::tools
