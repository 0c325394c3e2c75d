// The class itself: order of calls, copies, what is refused. The numbers are in
// GradingVectorsTest.cpp.
#include "grading/GradedAudio.h"

#include <gtest/gtest.h>

#include <fstream>
#include <new>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/MessageCapture.h"
#include "support/SmallEngine.h"
#include "support/UndefinedActivation.h"
#include "support/Vectors.h"

namespace veral3 {
namespace {

using nlohmann::json;

static_assert(!std::has_virtual_destructor_v<GradedAudio>);

template <typename Audio>
void AlignAndAnalyse(Audio& audio, const wchar_t* sentence, const char* recording) {
  audio.AddPossibleSentence(sentence);
  auto samples = test::ChainRecording(recording);
  const auto count = static_cast<std::uint32_t>(samples.size());
  ASSERT_GE(audio.Align(count, samples.data()), 0);
  ASSERT_EQ(audio.Analyze(count, samples.data()), 0);
}

class GradedAudioTest : public testing::Test {
 protected:
  static void SetUpTestSuite() { test::LoadSmallEngine(); }

  GradedAudioTest() {
    AlignAndAnalyse(m_learner, L"I READ THE CAT", "en_learner");
    AlignAndAnalyse(m_tutor, L"I READ THE CAT", "en_tutor");
    m_messages.Clear();
  }

  test::MessageCapture m_messages;
  GradedAudio m_learner{kLanguageEnglish};
  AnalyzedAudio m_tutor{kLanguageEnglish};
};

std::vector<int> Scores(GradedAudio& audio) {
  std::vector<int> scores = {audio.GetTotalScore(), audio.GetPronunScore(), audio.GetPitchScore(),
                             audio.GetTimingScore(), audio.GetIntensityScore()};
  for (int i = 0; i < audio.GetNumOfPhonemes(); ++i) {
    scores.push_back(audio.GetPhonemePonunScore(i));
  }
  for (int i = 0; i < audio.GetNumOfSyllables(); ++i) {
    for (const int score : {audio.GetSyllablePronunScore(i), audio.GetSyllablePitchScore(i),
                            audio.GetSyllableTimingScore(i), audio.GetSyllableIntensityScore(i)}) {
      scores.push_back(score);
    }
  }
  for (int i = 0; i < audio.GetNumOfWords(); ++i) scores.push_back(audio.GetWordScore(i));
  return scores;
}

TEST_F(GradedAudioTest, GradingTwiceGivesTheSame) {
  const int first = m_learner.GradeAgainstTutor(&m_tutor);
  ASSERT_GE(first, 0);
  const auto scores = Scores(m_learner);
  EXPECT_EQ(m_learner.GradeAgainstTutor(&m_tutor), first);
  EXPECT_EQ(Scores(m_learner), scores);
}

TEST_F(GradedAudioTest, EverythingReadsZeroBeforeAGrading) {
  for (const int score : Scores(m_learner)) EXPECT_EQ(score, 0);
  EXPECT_EQ(m_learner.GetSyllablePitchAdvice(0), '\0');
  EXPECT_EQ(m_learner.GetSyllableTimingPercent(0), 100);
  EXPECT_EQ(m_learner.GetWordIntensityPercent(7), 100);
}

TEST_F(GradedAudioTest, IndicesOutOfRangeReadZero) {
  ASSERT_GE(m_learner.GradeAgainstTutor(&m_tutor), 0);
  for (const int i : {-1, -2147483647, 512, 2147483647}) {
    EXPECT_EQ(m_learner.GetPhonemePonunScore(i), 0);
    EXPECT_EQ(m_learner.GetSyllablePronunScore(i), 0);
    EXPECT_EQ(m_learner.GetSyllablePitchAdvice(i), '\0');
    EXPECT_FALSE(m_learner.GetSyllableUnnecessaryPause(i));
    EXPECT_EQ(m_learner.GetWordScore(i), 0);
    EXPECT_EQ(m_learner.GetWordPitchConstrast(i), 0.0);
    EXPECT_EQ(m_learner.GetCorrectTone(i), 0);
    EXPECT_EQ(m_learner.GetSyllableTimingPercent(i), 100);
    EXPECT_EQ(m_learner.GetWordIntensityPercent(i), 100);
  }
}

TEST_F(GradedAudioTest, TutorOfAnotherLanguage) {
  AnalyzedAudio tutor(kLanguageJapanese);
  ASSERT_GE(m_learner.GradeAgainstTutor(&m_tutor), 0);
  m_messages.Clear();
  EXPECT_EQ(m_learner.GradeAgainstTutor(&tutor), 0);
  EXPECT_EQ(m_messages.All(),
            "ERROR in GradedAudio::GradeAgainstTutor(): the language types of tutor and student "
            "do not match.\n");
  EXPECT_EQ(m_learner.GetSyllablePronunScore(0), 0);  // the earlier scores are gone
}

TEST_F(GradedAudioTest, BeforeAnAnalysisAndWithoutTutor) {
  GradedAudio fresh(kLanguageEnglish);
  EXPECT_EQ(fresh.GradeAgainstTutor(&m_tutor), -1);
  EXPECT_EQ(fresh.GradePronunOnly(), -1);
  EXPECT_EQ(m_learner.GradeAgainstTutor(nullptr), -1);
  GradedAudio unknown(static_cast<LanguageType>(9));
  EXPECT_EQ(unknown.GradePronunOnly(), -1);
  EXPECT_EQ(m_messages.Entries().size(), 5u);  // the constructor's among them
}

// Missing pitch, timing and loudness would be graded as a learner who said nothing.
TEST_F(GradedAudioTest, WithoutPitchAndTimingOnlyThePronunciationIsGraded) {
  const int total = m_learner.GradePronunOnly();
  ASSERT_GT(total, 0);
  m_learner.ReleaseMemory();
  auto samples = test::ChainRecording("en_learner");
  for (const bool with_pitch : {false, true}) {
    if (with_pitch) {
      ASSERT_EQ(m_learner.AnalyzePitch(samples.data()), 0);
    }
    m_messages.Clear();
    EXPECT_EQ(m_learner.GradeAgainstTutor(&m_tutor), -1);
    EXPECT_EQ(m_messages.All(),
              "ERROR in GradedAudio::GradeAgainstTutor(), the recording is not analysed\n");
    EXPECT_EQ(m_learner.GradePronunOnly(), total);
  }
  GradedAudio pronounced(kLanguageEnglish);
  pronounced.AddPossibleSentence(L"I READ THE CAT");
  const auto count = static_cast<std::uint32_t>(samples.size());
  ASSERT_GE(pronounced.Align(count, samples.data()), 0);
  ASSERT_EQ(pronounced.AnalyzePronunOnly(samples.data()), 0);
  EXPECT_EQ(pronounced.GradeAgainstTutor(&m_tutor), -1);
  ASSERT_EQ(pronounced.Analyze(count, samples.data()), 0);
  EXPECT_GT(pronounced.GradeAgainstTutor(&m_tutor), 0);
}

TEST_F(GradedAudioTest, TutorWithoutAnythingIsReadAsNothing) {
  AnalyzedAudio empty(kLanguageEnglish);
  EXPECT_GE(m_learner.GradeAgainstTutor(&empty), 0);
  for (const int score : Scores(m_learner)) {
    EXPECT_GE(score, 0);
    EXPECT_LE(score, 100);
  }
}

TEST_F(GradedAudioTest, CopiesLiveOnTheirOwn) {
  auto source = std::make_unique<GradedAudio>(m_learner);
  ASSERT_GE(source->GradeAgainstTutor(&m_tutor), 0);
  const auto scores = Scores(*source);
  GradedAudio copy(*source);
  std::optional<GradedAudio> assigned;
  assigned.emplace(kLanguageChinese);
  *assigned = *source;
  source->GradePronunOnly();
  EXPECT_EQ(Scores(copy), scores);
  source.reset();
  EXPECT_EQ(Scores(*assigned), scores);
  assigned.reset();
  EXPECT_EQ(Scores(copy), scores);
}

TEST_F(GradedAudioTest, PronunciationAloneThenFull) {
  ASSERT_GE(m_learner.GradePronunOnly(), 0);
  EXPECT_EQ(m_learner.GetPitchScore(), 100);
  EXPECT_EQ(m_learner.GetTimingScore(), 100);
  EXPECT_EQ(m_learner.GetIntensityScore(), 100);
  EXPECT_EQ(m_learner.GetSyllablePitchScore(0), 0);
  EXPECT_EQ(m_learner.GetWordScore(0), 0);
  GradedAudio full(kLanguageEnglish);
  AlignAndAnalyse(full, L"I READ THE CAT", "en_learner");
  EXPECT_EQ(m_learner.GradeAgainstTutor(&m_tutor), full.GradeAgainstTutor(&m_tutor));
  EXPECT_EQ(Scores(m_learner), Scores(full));
}

// What would end the process becomes a refusal where an application's handler throws.
TEST_F(GradedAudioTest, AGradingThatWouldEndTheProcessLeavesTheScoresOfTheOneBefore) {
  const int total = m_learner.GradeAgainstTutor(&m_tutor);
  ASSERT_GT(total, 0);
  const auto scores = Scores(m_learner);
  const test::EndProcessTrap trap;
  {
    const test::UndefinedActivation model(kUttGoodnessModel);
    m_messages.Clear();
    EXPECT_EQ(m_learner.GradeAgainstTutor(&m_tutor), -1);
    EXPECT_EQ(m_messages.All(), std::string(test::kUndefinedActivation) +
                                    "ERROR in GradedAudio::GradeAgainstTutor(), unknown error\n");
    EXPECT_EQ(m_learner.GradePronunOnly(), -1);
    EXPECT_EQ(Scores(m_learner), scores);
  }
  EXPECT_EQ(m_learner.GradeAgainstTutor(&m_tutor), total);
  EXPECT_EQ(Scores(m_learner), scores);
}

TEST_F(GradedAudioTest, WithoutSyllablesThePronunciationCannotBeGraded) {
  GradedAudio learner(kLanguageEnglish);
  AlignAndAnalyse(learner, L"", "en_learner");
  ASSERT_EQ(learner.GetNumOfSyllables(), 0);
  m_messages.Clear();
  EXPECT_EQ(learner.GradeAgainstTutor(&m_tutor), -1);
  EXPECT_EQ(learner.GetTotalScore(), 0);
  EXPECT_EQ(learner.GradePronunOnly(), 0);
  EXPECT_EQ(learner.GetPitchScore(), 100);
  EXPECT_EQ(m_messages.All(), "");
}

TEST_F(GradedAudioTest, ReportHasItsLines) {
  ASSERT_GE(m_learner.GradeAgainstTutor(&m_tutor), 0);
  m_messages.Clear();
  m_learner.PrintScores();
  const std::string report = m_messages.StandardOutput();
  EXPECT_NE(report.find("Sentence Text=[I READ THE CAT ]\n"), std::string::npos) << report;
  EXPECT_NE(report.find("================== Scores ==================\n"), std::string::npos);
  EXPECT_NE(report.find("Total Score =[" + std::to_string(m_learner.GetTotalScore()) + "]\n"),
            std::string::npos);
  EXPECT_NE(report.find("Total Score of Word =["), std::string::npos);
}

// A stream that throws when it fails is no reason for the process to end.
TEST_F(GradedAudioTest, MismatchLinesToAStreamThatThrows) {
  ASSERT_GE(m_learner.GradeAgainstTutor(&m_tutor), 0);
  std::ofstream out;  // closed: every write fails
  out.exceptions(std::ios::badbit | std::ios::failbit);
  m_messages.Clear();
  m_learner.SaveUttMismatchTraits(&out);
  m_learner.SaveSylMismatchTraits(&out);
  m_learner.SaveWordMismatchTraits(&out);
  ASSERT_EQ(m_messages.Entries().size(), 3u);
  const char* const operations[] = {"SaveUttMismatchTraits", "SaveSylMismatchTraits",
                                    "SaveWordMismatchTraits"};
  for (std::size_t i = 0; i < 3; ++i) {  // and what the stream says of itself
    EXPECT_TRUE(m_messages.Entries()[i].text.starts_with(std::string("ERROR in GradedAudio::") +
                                                         operations[i] + "(), "))
        << m_messages.Entries()[i].text;
  }
}

#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

// An application's own kinds of recording, which fail when they are asked.
class FailingLearner final : public GradedAudio {
 public:
  using GradedAudio::GradedAudio;
  bool fails = false;
  LanguageType GetLanguageType() override {
    if (fails) throw std::runtime_error("no language here");
    return GradedAudio::GetLanguageType();
  }
};

class FailingTutor final : public AnalyzedAudio {
 public:
  using AnalyzedAudio::AnalyzedAudio;
  const char* GetPhonemes() override { throw std::bad_alloc(); }
};

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

TEST_F(GradedAudioTest, RecordingsThatFailAreAMessageAndLeaveTheScores) {
  FailingLearner learner(kLanguageEnglish);
  AlignAndAnalyse(learner, L"I READ THE CAT", "en_learner");
  ASSERT_GT(learner.GradeAgainstTutor(&m_tutor), 0);
  const auto scores = Scores(learner);
  learner.fails = true;
  m_messages.Clear();
  EXPECT_EQ(learner.GradeAgainstTutor(&m_tutor), -1);
  EXPECT_EQ(learner.GradePronunOnly(), -1);
  learner.PrintScores();
  learner.fails = false;
  FailingTutor tutor(kLanguageEnglish);
  EXPECT_EQ(learner.GradeAgainstTutor(&tutor), -1);
  EXPECT_EQ(m_messages.All(),
            "ERROR in GradedAudio::GradeAgainstTutor(), no language here\n"
            "ERROR in GradedAudio::GradePronunOnly(), no language here\n"
            "ERROR in GradedAudio::PrintScores(), no language here\n"
            "ERROR in GradedAudio::GradeAgainstTutor(), out of memory\n");
  EXPECT_EQ(Scores(learner), scores);
}

TEST_F(GradedAudioTest, MismatchLines) {
  ASSERT_GE(m_learner.GradeAgainstTutor(&m_tutor), 0);
  const test::ScratchFolder folder;
  const auto path = folder.Path() / "traits.csv";
  {
    std::ofstream out(path);
    m_learner.SaveUttMismatchTraits(&out);
    m_learner.SaveSylMismatchTraits(&out);
    m_learner.SaveWordMismatchTraits(&out);
  }
  std::istringstream lines(test::ReadFile(path));
  std::vector<std::string> all;
  for (std::string line; std::getline(lines, line);) all.push_back(line);
  ASSERT_EQ(all.size(), 9u);  // 1 + 4 syllables + 4 words
  EXPECT_TRUE(all[0].starts_with("AIridD@k{t,")) << all[0];
  EXPECT_TRUE(all[1].starts_with("H,"));
  EXPECT_TRUE(all[2].starts_with("-,"));
  EXPECT_TRUE(all[4].starts_with("T,"));
  EXPECT_EQ(all[5], "1,1,1");
  m_learner.SaveUttMismatchTraits(nullptr);
  EXPECT_FALSE(m_messages.All().empty());
}

// Learner against tutor of the whole recordings, all three languages.
class GradedChain : public testing::TestWithParam<int> {
 protected:
  static void SetUpTestSuite() { test::LoadSmallEngine(); }
};

TEST_P(GradedChain, MatchesIndependentScores) {
  const json data =
      test::LoadVectorJson("chain.json")["cases"][static_cast<std::size_t>(GetParam())];
  const auto language = static_cast<LanguageType>(data["language"].get<int>());
  GradedAudio learner(language);
  AnalyzedAudio tutor(language);
  const auto analyse = [&](AnalyzedAudio& audio, const json& who) {
    for (const json& sentence : data["sentences"]) {
      audio.AddPossibleSentence(sentence.get<std::string>().c_str());
    }
    auto samples = test::LoadVector<std::int16_t>(who["samples"].get<std::string>());
    const auto count = static_cast<std::uint32_t>(samples.size());
    ASSERT_GE(audio.Align(count, samples.data()), 0);
    ASSERT_EQ(audio.Analyze(count, samples.data()), 0);
  };
  analyse(learner, data["learner"]);
  analyse(tutor, data["tutor"]);
  const json& expected = data["grade_analysed_tutor"];
  EXPECT_EQ(learner.GradeAgainstTutor(&tutor), expected["result"]);
  EXPECT_EQ(learner.GetPronunScore(), expected["pronun"]);
  EXPECT_EQ(learner.GetPitchScore(), expected["pitch"]);
  EXPECT_EQ(learner.GetTimingScore(), expected["timing"]);
  EXPECT_EQ(learner.GetIntensityScore(), expected["intensity"]);
  for (int s = 0; s < learner.GetNumOfSyllables(); ++s) {
    const auto at = static_cast<std::size_t>(s);
    EXPECT_EQ(learner.GetSyllablePronunScore(s), expected["syl_pronun"][at]);
    EXPECT_EQ(learner.GetSyllablePitchScore(s), expected["syl_pitch"][at]);
    EXPECT_EQ(learner.GetSyllableTimingScore(s), expected["syl_timing"][at]);
    EXPECT_EQ(learner.GetSyllableIntensityScore(s), expected["syl_intensity"][at]);
    EXPECT_EQ(learner.GetSyllablePitchAdvice(s), expected["pitch_advice"].get<std::string>()[at]);
    EXPECT_EQ(learner.GetSyllableTimingAdvice(s), expected["timing_advice"].get<std::string>()[at]);
    EXPECT_EQ(learner.GetSyllableIntensityAdvice(s),
              expected["intensity_advice"].get<std::string>()[at]);
  }
  for (int w = 0; w < learner.GetNumOfWords(); ++w) {
    EXPECT_EQ(learner.GetWordScore(w), expected["word_total"][static_cast<std::size_t>(w)]);
  }
}

INSTANTIATE_TEST_SUITE_P(Languages, GradedChain, testing::Values(0, 1, 2));

}  // namespace
}  // namespace veral3
