// The same with the resources that are shipped, on the example recordings. A program of its own:
// what it loads into the process is not what the other tests have.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "GradedScores.h"
#include "storage/SavedAlignedAudio.h"
#include "support/MessageCapture.h"
#include "support/Vectors.h"
#include "text/TextPreparation.h"
#include "tools/AudioFile.h"
#include "tools/MakeTutor.h"
#include "tools/Resources.h"
#include "tools/TutorFile.h"

namespace veral3::tools {
namespace {

const std::filesystem::path kSource(VERAL3_SOURCE_DIR);

void Load(LanguageType language) {
  const auto loaded = LoadResources(kSource / "resources", language, ResourceUse::kMeasure);
  ASSERT_TRUE(loaded) << loaded.Error();
  // Scores are weighed by it; this one takes every recording for good enough.
  ASSERT_GE(AnalyzedAudio::LoadModelFile(veral3::test::VectorPath("models/good.bin").c_str(),
                                         kUttGoodnessModel),
            0);
}

void Analyse(AnalyzedAudio& audio, const std::string& text, std::vector<std::int16_t> samples) {
  ASSERT_EQ(audio.AddPossibleSentence(text.c_str()), 1);
  const auto count = static_cast<std::uint32_t>(samples.size());
  ASSERT_EQ(audio.Align(count, samples.data()), 0);
  ASSERT_EQ(audio.Analyze(count, samples.data()), 0);
}

class StoredExample : public testing::TestWithParam<const char*> {
 protected:
  static void SetUpTestSuite() { Load(kLanguageEnglish); }

  std::filesystem::path File(const char* ending) const {
    return kSource / "examples/audio" / (std::string(GetParam()) + ending);
  }
  std::string Text() const {
    return nlohmann::json::parse(veral3::test::ReadFile(File(".json"))).at("text");
  }

  const veral3::test::MessageCapture m_messages;
  const veral3::test::ScratchFolder m_folder;
};

// A learner who says it higher, slower at first and faster at the end, and softer at the end.
std::vector<std::int16_t> Changed(const std::vector<std::int16_t>& samples) {
  std::vector<std::int16_t> changed;
  double place = 0.0;
  while (place + 1.0 < static_cast<double>(samples.size())) {
    const double part = place / static_cast<double>(samples.size());
    const auto at = static_cast<std::size_t>(place);
    const double between = place - std::floor(place);
    const double value = (1.0 - between) * samples[at] + between * samples[at + 1];
    changed.push_back(static_cast<std::int16_t>(value * (0.9 - 0.5 * part)));
    place += 0.95 + 0.25 * part;
  }
  return changed;
}

// English: not one score differs. Times and pitch lose nothing in the record, and the loudness only
// what single precision does.
TEST_P(StoredExample, GradesLikeTheOneAnalysed) {
  const auto recording = ReadAudioFile(File(".wav"));
  ASSERT_TRUE(recording);
  AnalyzedAudio tutor(kLanguageEnglish);
  Analyse(tutor, Text(), recording->samples);
  GradedAudio learner(kLanguageEnglish);
  Analyse(learner, Text(), Changed(recording->samples));

  std::string messages;
  auto made = MakeTutor({File(".wav"), {Text()}, {Text()}}, kLanguageEnglish, messages);
  ASSERT_TRUE(made) << made.Error();
  const auto path = m_folder.Path() / "tutor.wav";
  ASSERT_EQ(WriteTutor(path, *made), "");
  auto file = LoadTutor(path);
  ASSERT_TRUE(file) << file.Error();
  HLYFile hly = AsHLYFile(*file);
  SavedAlignedAudio saved(kLanguageEnglish);
  ASSERT_EQ(saved.LoadFromHLY(&hly), 0);

  const test::GradedScores fresh = test::Grade(learner, tutor);
  const test::GradedScores stored = test::Grade(learner, saved);
  ASSERT_GE(fresh.result, 0);
  EXPECT_GT(fresh.pronunciation, 0);
  EXPECT_TRUE(std::ranges::any_of(fresh.syllable_timing, [](int score) { return score < 100; }));
  EXPECT_TRUE(test::AlikeButForContrasts(stored, fresh));

  // A tutor graded against itself, too.
  GradedAudio self(kLanguageEnglish);
  Analyse(self, Text(), file->samples);
  EXPECT_TRUE(test::AlikeButForContrasts(test::Grade(self, saved), test::Grade(self, tutor)));
}

// The learner of a language against its tutor.
class StoredPair
    : public testing::TestWithParam<std::tuple<std::string, std::string, LanguageType>> {
 protected:
  const veral3::test::MessageCapture m_messages;
};

void ExpectClose(std::vector<int>& a, const std::vector<int>& b, int points) {
  ASSERT_EQ(a.size(), b.size());
  for (std::size_t i = 0; i < a.size(); ++i) EXPECT_NEAR(a[i], b[i], points) << i;
  a = b;
}

TEST_P(StoredPair, GradesLikeTheOneAnalysed) {
  const auto& [tutor_name, learner_name, language] = GetParam();
  Load(language);
  const std::string folder = kSource / "examples/audio/";
  const std::string text =
      nlohmann::json::parse(veral3::test::ReadFile(folder + tutor_name + ".json")).at("text");
  const auto tutors = ReadAudioFile(folder + tutor_name + ".wav");
  const auto learners = ReadAudioFile(folder + learner_name + ".wav");
  ASSERT_TRUE(tutors && learners);
  AnalyzedAudio tutor(language);
  Analyse(tutor, PrepareText(text, language), tutors->samples);
  GradedAudio learner(language);
  Analyse(learner, PrepareText(text, language), learners->samples);

  std::string messages;
  auto made = MakeTutor({folder + tutor_name + ".wav", {text}, {PrepareText(text, language)}},
                        language, messages);
  ASSERT_TRUE(made) << made.Error();
  HLYFile hly = AsHLYFile(*made);
  SavedAlignedAudio saved(language);
  ASSERT_EQ(saved.LoadFromHLY(&hly), 0);
  const test::GradedScores fresh = test::Grade(learner, tutor);
  test::GradedScores stored = test::Grade(learner, saved);
  ASSERT_GT(fresh.result, 0);
  if (language == kLanguageChinese) {
    ExpectClose(stored.syllable_pitch, fresh.syllable_pitch, 2);
    ExpectClose(stored.word_pitch, fresh.word_pitch, 2);
    ExpectClose(stored.word_total, fresh.word_total, 1);
    EXPECT_NEAR(stored.pitch, fresh.pitch, 1);
    EXPECT_NEAR(stored.total, fresh.total, 1);
    stored.pitch = fresh.pitch;
    stored.total = stored.result = fresh.total;
  }
  EXPECT_TRUE(test::AlikeButForContrasts(stored, fresh));
}

// What a learner is told who makes one mistake that is known (examples/audio/README.md).
class ExampleMistake : public testing::Test {
 protected:
  static test::GradedScores Scores(const std::string& name, LanguageType language) {
    Load(language);
    const std::string folder = kSource / "examples/audio/";
    const std::string text =
        nlohmann::json::parse(veral3::test::ReadFile(folder + name + "-tutor.json")).at("text");
    const auto analyse = [&](AnalyzedAudio& audio, const std::string& recording) {
      const auto read = ReadAudioFile(folder + name + recording);
      ASSERT_TRUE(read);
      Analyse(audio, PrepareText(text, language), read->samples);
    };
    AnalyzedAudio tutor(language);
    analyse(tutor, "-tutor.wav");
    GradedAudio learner(language);
    analyse(learner, "-learner.wav");
    return test::Grade(learner, tutor);
  }

  const veral3::test::MessageCapture m_messages;
};

TEST_F(ExampleMistake, AWrongTone) {
  const test::GradedScores scores = Scores("chinese", kLanguageChinese);
  ASSERT_GT(scores.result, 0);
  ASSERT_EQ(scores.syllable_pitch.size(), 6u);
  EXPECT_LT(scores.syllable_pitch.back(), 50);
  for (std::size_t i = 0; i + 1 < 6; ++i) EXPECT_GT(scores.syllable_pitch[i], 80) << i;
  EXPECT_EQ(scores.correct_tones.back(), 4);
  EXPECT_EQ(scores.student_tones.back(), 2);
}

TEST_F(ExampleMistake, AShortVowel) {  // biru for biiru, the fourth syllable
  const test::GradedScores scores = Scores("japanese", kLanguageJapanese);
  ASSERT_GT(scores.result, 0);
  EXPECT_EQ(scores.timing_advice[3], 's');
  EXPECT_EQ(*std::ranges::min_element(scores.syllable_timing), scores.syllable_timing[3]);
}

TEST_F(ExampleMistake, NoClosure) {  // kite for kitte: the first t is the ninth phoneme
  const test::GradedScores scores = Scores("japanese-closure", kLanguageJapanese);
  ASSERT_GT(scores.result, 0);
  EXPECT_EQ(scores.timing_advice[3], 's');
  ASSERT_GT(scores.phonemes.size(), 8u);
  EXPECT_LT(scores.phonemes[8], 60);
  EXPECT_EQ(*std::ranges::min_element(scores.phonemes), scores.phonemes[8]);
}

INSTANTIATE_TEST_SUITE_P(
    Languages, StoredPair,
    testing::Values(std::tuple("english-weather", "english-learner", kLanguageEnglish),
                    std::tuple("chinese-tutor", "chinese-learner", kLanguageChinese),
                    std::tuple("japanese-tutor", "japanese-learner", kLanguageJapanese),
                    std::tuple("japanese-closure-tutor", "japanese-closure-learner",
                               kLanguageJapanese)));

INSTANTIATE_TEST_SUITE_P(Examples, StoredExample,
                         testing::Values("english-bread", "english-train", "english-weather"));

}  // namespace
}  // namespace veral3::tools
