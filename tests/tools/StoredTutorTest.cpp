// A learner graded against a tutor that was just analysed, and against the same tutor in a file.
// docs/formats/tutor-file.md says what may differ.
#include <gtest/gtest.h>

#include <cmath>
#include <nlohmann/json.hpp>
#include <random>

#include "GradedScores.h"
#include "grading/PitchGrading.h"
#include "storage/SavedAlignedAudio.h"
#include "support/MessageCapture.h"
#include "support/SmallEngine.h"
#include "support/Vectors.h"
#include "tools/TutorFile.h"

namespace veral3::tools {
namespace {

using nlohmann::json;
using test::Grade;
using test::GradedScores;

class StoredTutor : public testing::TestWithParam<int> {
 protected:
  StoredTutor() { veral3::test::LoadSmallEngine(); }

  const json& Case() const {
    return veral3::test::LoadVectorJson("chain.json")
        .at("cases")
        .at(static_cast<std::size_t>(GetParam()));
  }
  LanguageType Language() const { return static_cast<LanguageType>(Case()["language"].get<int>()); }

  void Analyse(AnalyzedAudio& audio, std::vector<std::int16_t> samples) {
    for (const json& sentence : Case()["sentences"]) {
      audio.AddPossibleSentence(sentence.get<std::string>().c_str());
    }
    const auto count = static_cast<std::uint32_t>(samples.size());
    ASSERT_GE(audio.Align(count, samples.data()), 0);
    ASSERT_EQ(audio.Analyze(count, samples.data()), 0);
  }

  std::vector<std::int16_t> Samples(const char* who) const {
    return veral3::test::LoadVector<std::int16_t>(Case()[who]["samples"].get<std::string>());
  }

  // Through a file and back.
  TutorFile Stored(AnalyzedAudio& audio, std::vector<std::int16_t> samples) {
    TutorFile tutor;
    tutor.language = Language();
    tutor.sentence = audio.GetMatchedSentence().Utf8();
    tutor.date = 20261121;
    tutor.samples = std::move(samples);
    EXPECT_EQ(audio.GetAlignInfo(tutor.record.data()), 0);
    const auto path = m_folder.Path() / "tutor.wav";
    EXPECT_EQ(WriteTutor(path, tutor), "");
    auto loaded = LoadTutor(path);
    EXPECT_TRUE(loaded) << loaded.Error();
    return loaded ? *loaded : TutorFile();
  }

  const veral3::test::MessageCapture m_messages;
  const veral3::test::ScratchFolder m_folder;
};

void ExpectClose(const std::vector<int>& a, const std::vector<int>& b, int points) {
  ASSERT_EQ(a.size(), b.size());
  for (std::size_t i = 0; i < a.size(); ++i) EXPECT_NEAR(a[i], b[i], points) << i;
}

// Only what follows from the tones may differ: their probabilities are kept in hundredths. Of these
// recordings it is 1 point a syllable, 2 a word, and 1 of what is made of those.
TEST_P(StoredTutor, GradesLikeTheOneAnalysed) {
  AnalyzedAudio tutor(Language());
  Analyse(tutor, Samples("tutor"));
  GradedAudio learner(Language());
  Analyse(learner, Samples("learner"));
  TutorFile file = Stored(tutor, Samples("tutor"));
  HLYFile hly = AsHLYFile(file);
  SavedAlignedAudio saved(file.language);
  ASSERT_EQ(saved.LoadFromHLY(&hly), 0);

  const GradedScores fresh = Grade(learner, tutor);
  GradedScores stored = Grade(learner, saved);
  ASSERT_GE(fresh.result, 0);
  if (Language() == kLanguageChinese) {
    EXPECT_NEAR(stored.pitch, fresh.pitch, 1);
    EXPECT_NEAR(stored.total, fresh.total, 1);
    ExpectClose(stored.syllable_pitch, fresh.syllable_pitch, 1);
    ExpectClose(stored.word_pitch, fresh.word_pitch, 2);
    ExpectClose(stored.word_total, fresh.word_total, 1);
    stored.result = fresh.result;
    stored.pitch = fresh.pitch;
    stored.total = fresh.total;
    stored.syllable_pitch = fresh.syllable_pitch;
    stored.word_pitch = fresh.word_pitch;
    stored.word_total = fresh.word_total;
  }
  EXPECT_TRUE(test::AlikeButForContrasts(stored, fresh));
}

// What is in the file is the sound before the alignment: it can be analysed again, by a later
// engine or with other models.
TEST_P(StoredTutor, CanBeAnalysedAgain) {
  AnalyzedAudio tutor(Language());
  Analyse(tutor, Samples("tutor"));
  TutorFile file = Stored(tutor, Samples("tutor"));
  AnalyzedAudio again(Language());
  Analyse(again, file.samples);
  std::array<unsigned char, 2544> record;
  ASSERT_EQ(again.GetAlignInfo(record.data()), 0);
  EXPECT_EQ(record, file.record);
}

INSTANTIATE_TEST_SUITE_P(Languages, StoredTutor, testing::Values(0, 1, 2));

// How far the score of a tone moves when the tutor's probabilities are cut to hundredths.
TEST(StoredTones, CutToHundredthsMoveAScoreByALittle) {
  std::mt19937 random(20261121);
  const auto row = [&] {
    ToneRow values;
    double sum = 0.0;
    for (double& value : values) {
      // From all but certain to all alike.
      value = std::exp(static_cast<double>(random() % 1000) / 1000.0 * 8.0);
      sum += value;
    }
    for (double& value : values) value /= sum;
    return values;
  };
  int most = 0;
  double total = 0.0;
  constexpr int kRounds = 100000;
  for (int round = 0; round < kRounds; ++round) {
    const ToneRow learner = row();
    const ToneRow tutor = row();
    ToneRow cut = tutor;
    for (double& value : cut) value = static_cast<int>(value * 100.0) * 0.01;
    const int difference = std::abs(GradeTone(tutor, learner) - GradeTone(cut, learner));
    most = std::max(most, difference);
    total += difference;
  }
  EXPECT_LE(most, 2);
  EXPECT_LE(total / kRounds, 0.4);
  RecordProperty("most", most);
  RecordProperty("mean", std::to_string(total / kRounds));
}

}  // namespace
}  // namespace veral3::tools
