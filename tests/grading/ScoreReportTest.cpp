// The report and the three exports, to the byte.
#include "grading/ScoreReport.h"

#include <gtest/gtest.h>

#include <fstream>
#include <locale>
#include <memory>
#include <sstream>
#include <string>

#include "core/MadeAudio.h"
#include "grading/GradedAudio.h"
#include "support/MessageCapture.h"
#include "support/SmallEngine.h"
#include "support/Vectors.h"

namespace veral3 {
namespace {

GradedResult Graded() {
  GradedResult graded;
  graded.total = 81;
  graded.components = {90, 80, 70, 60};
  graded.goodness_factor = 0.5;
  graded.phoneme_pronunciation = {11, 12, 13, 14, 15};
  graded.syllable_pronunciation = {21, 22, 23};
  graded.syllable_pitch = {31, 32, 33};
  graded.syllable_timing = {41, 42, 43};
  graded.syllable_intensity = {51, 52, 53};
  graded.syllable_timing_percent = {101, 102, 1000};
  graded.syllable_intensity_percent = {7, 0, 2147483647};
  graded.words = {{61, 62}, {63, 64}, {65, 66}, {67, 68}, {69, 100}};
  graded.word_pitch_contrast = {1.0, 1e10};
  graded.word_timing_contrast = {1.78571234, 0.5};
  graded.word_intensity_contrast = {1234567.0, 0.0};
  graded.timing_traits = {1.0, 0.123456789, 1e-7};
  graded.prob_good_timing = 1.0;
  graded.pitch_segment_ratio = 2.0;
  graded.complete = true;
  return graded;
}

const char* const kScores =
    "================== Scores ==================\n"
    "** UGC Penalty (m_dProbOfGoodUtt) = 0.5\n"
    "** S/N Ratio = 12.3457\n"
    "Total Score =[81]\n"
    "Pronunciation Score =[90]\n"
    "Pitch Score =[80]\n"
    "Timing Score =[70]\n"
    "Intensity Score =[60]\n"
    "---\n"
    "Pronun Score of Phoneme =[11 12 13 14 15 ]\n"
    "Pronun Score of Syllable =[21 22 23 ]\n"
    "Pitch Score of Syllable =[31 32 33 ]\n"
    "Timing Score of Syllable =[41 42 43 ]\n"
    "Intensity Score of Syllable =[51 52 53 ]\n"
    "---\n"
    "Pronun Score of Word =[61 62 ]\n"
    "Pitch Score of Word =[63 64 ]\n"
    "Timing Score of Word =[65 66 ]\n"
    "Intensity Score of Word =[67 68 ]\n"
    "Total Score of Word =[69 100 ]\n";

std::string Report(LanguageType language, const GradedResult& graded) {
  const test::MessageCapture messages;
  PrintScores({language, {L"HELLO", L"caf\u00E9"}, 12.34567}, graded);
  EXPECT_EQ(messages.Entries().size(), 1u);
  EXPECT_EQ(messages.StandardError(), "");
  return messages.StandardOutput();
}

TEST(ScoreReport, EnglishNamesTheSentence) {
  EXPECT_EQ(Report(kLanguageEnglish, Graded()),
            std::string("Sentence Text=[HELLO caf\xC3\xA9 ]\n") + kScores);
}

TEST(ScoreReport, ChineseAndJapaneseDoNot) {
  EXPECT_EQ(Report(kLanguageChinese, Graded()), kScores);
  EXPECT_EQ(Report(kLanguageJapanese, Graded()), kScores);
}

TEST(ScoreReport, ATimingThatIsNotGoodComesFirst) {
  GradedResult graded = Graded();
  graded.prob_good_timing = 0.93706;
  EXPECT_EQ(Report(kLanguageJapanese, graded),
            std::string("// m_dProbOfGoodTiming = 0.93706\n") + kScores);
  graded.prob_good_timing = 0.9999999;
  EXPECT_EQ(Report(kLanguageJapanese, graded),
            std::string("// m_dProbOfGoodTiming = 1\n") + kScores);
}

TEST(ScoreReport, NothingGraded) {
  const test::MessageCapture messages;
  PrintScores({kLanguageChinese, {}, 0.0}, {});
  EXPECT_EQ(messages.Of(MessageStream::kWideOutput),
            "// m_dProbOfGoodTiming = 0\n"
            "================== Scores ==================\n"
            "** UGC Penalty (m_dProbOfGoodUtt) = 0\n"
            "** S/N Ratio = 0\n"
            "Total Score =[0]\n"
            "Pronunciation Score =[0]\n"
            "Pitch Score =[0]\n"
            "Timing Score =[0]\n"
            "Intensity Score =[0]\n"
            "---\n"
            "Pronun Score of Phoneme =[]\n"
            "Pronun Score of Syllable =[]\n"
            "Pitch Score of Syllable =[]\n"
            "Timing Score of Syllable =[]\n"
            "Intensity Score of Syllable =[]\n"
            "---\n"
            "Pronun Score of Word =[]\n"
            "Pitch Score of Word =[]\n"
            "Timing Score of Word =[]\n"
            "Intensity Score of Word =[]\n"
            "Total Score of Word =[]\n");
}

// Writes numbers of its own kind, which nothing of ours takes over, and counts the flushes.
class OwnNumbers : public std::numpunct<char> {
  char do_decimal_point() const override { return ';'; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

class CountingBuffer : public std::stringbuf {
 public:
  int flushes = 0;
  int sync() override {
    ++flushes;
    return 0;
  }
};

TEST(ScoreReport, UtteranceLine) {
  std::ostringstream out;
  WriteUttMismatchTraits(out, "AIrid", 3, 5, Graded());
  EXPECT_EQ(out.str(), "AIrid,1,0.123457,1e-07,3,2.5,5\n");
}

TEST(ScoreReport, UtteranceLineWithoutARatio) {
  GradedResult graded = Graded();
  graded.pitch_segment_ratio = 0.0;
  std::ostringstream out;
  WriteUttMismatchTraits(out, "", 0, 5, graded);
  EXPECT_EQ(out.str(), ",1,0.123457,1e-07,0,0,5\n");
}

TEST(ScoreReport, SyllableLines) {
  std::ostringstream out;
  WriteSylMismatchTraits(out, 3, Graded());
  EXPECT_EQ(out.str(), "H,101,7\n-,102,0\nT,1000,2147483647\n");
}

TEST(ScoreReport, SyllableLinesOfShortRecordings) {
  std::ostringstream none, one, two;
  WriteSylMismatchTraits(none, 0, Graded());
  EXPECT_EQ(none.str(), "");
  WriteSylMismatchTraits(one, 1, Graded());
  EXPECT_EQ(one.str(), "H,101,7\n");
  WriteSylMismatchTraits(two, 2, Graded());
  EXPECT_EQ(two.str(), "H,101,7\nT,102,0\n");
}

TEST(ScoreReport, WordLines) {
  std::ostringstream out;
  WriteWordMismatchTraits(out, 2, Graded());
  EXPECT_EQ(out.str(), "1,1.78571,1.23457e+06\n1e+10,0.5,0\n");
  std::ostringstream none;
  WriteWordMismatchTraits(none, 0, Graded());
  EXPECT_EQ(none.str(), "");
}

// What was not graded reads 0.
TEST(ScoreReport, MoreLinesThanFigures) {
  std::ostringstream out;
  WriteSylMismatchTraits(out, 5, Graded());
  EXPECT_EQ(out.str(), "H,101,7\n-,102,0\n-,1000,2147483647\n-,0,0\nT,0,0\n");
  std::ostringstream words;
  WriteWordMismatchTraits(words, 3, Graded());
  EXPECT_EQ(words.str(), "1,1.78571,1.23457e+06\n1e+10,0.5,0\n0,0,0\n");
}

TEST(ScoreReport, LinesAreFlushedAndTheStreamsOwnFormatIsLeftOut) {
  CountingBuffer buffer;
  std::ostream out(&buffer);
  out.imbue(std::locale(std::locale::classic(), new OwnNumbers));
  out.precision(2);
  WriteUttMismatchTraits(out, "A", 1000, 5000, Graded());
  EXPECT_EQ(buffer.flushes, 1);
  WriteSylMismatchTraits(out, 3, Graded());
  EXPECT_EQ(buffer.flushes, 4);
  WriteWordMismatchTraits(out, 2, Graded());
  EXPECT_EQ(buffer.flushes, 6);
  EXPECT_EQ(buffer.str(),
            "A,1,0.123457,1e-07,1000,2500,5000\n"
            "H,101,7\n-,102,0\nT,1000,2147483647\n"
            "1,1.78571,1.23457e+06\n1e+10,0.5,0\n");
}

// The same through the object: a recording of one syllable against a tutor twice as long there.
class ReportOfAnObject : public testing::Test {
 protected:
  static void SetUpTestSuite() { test::LoadSmallEngine(); }

  static test::RecordingArrays OneSyllable(int duration, int segments) {
    test::RecordingArrays arrays;
    arrays.phonemes = "kA";
    arrays.start = {440, 440 + duration / 2};
    arrays.end = {440 + duration / 2, 440 + duration};
    arrays.syllable_start = {0};
    arrays.syllable_pitch = {200};
    arrays.syllable_duration = {duration};
    arrays.syllable_mark = {1};
    arrays.syllable_intensity = {1000.0};
    arrays.tone_prob.resize(1);
    arrays.word_start = {0};
    arrays.num_samples = 9000;
    arrays.pitch_segments = segments;
    return arrays;
  }

  ReportOfAnObject() {
    Fill(m_learner, OneSyllable(2200, 7));
    auto pronunciation = std::make_shared<PronunciationResult>();
    pronunciation->phonemes.rows.assign(2 * 64, 0.0);
    pronunciation->phonemes.rows[15] = 0.1;      // k: 75 points
    pronunciation->phonemes.rows[64 + 4] = 0.5;  // A: 100 + 25 log10 0.5 = 92.47
    m_learner.Hand().pronunciation = std::move(pronunciation);
    auto goodness = std::make_shared<GoodnessResult>();
    goodness->good_syllable = {1.0};
    goodness->loud_gaps = {0, 0};
    m_learner.Hand().goodness = std::move(goodness);
    m_learner.Hand().signal_noise_ratio = 3.25;
    Fill(m_tutor, OneSyllable(4400, 3));
  }

  test::MessageCapture m_messages;
  test::Made<GradedAudio> m_learner{kLanguageEnglish};
  test::MadeAudio m_tutor{kLanguageEnglish};
};

TEST_F(ReportOfAnObject, PronunciationAlone) {
  ASSERT_GE(m_learner.GradePronunOnly(), 0);
  EXPECT_EQ(m_learner.GetPhonemePonunScore(0), 75);
  EXPECT_EQ(m_learner.GetPhonemePonunScore(1), 92);
  EXPECT_EQ(m_learner.GetSyllablePronunScore(0), 85);  // 0.4 x 75 + 0.6 x 92 = 85.2
  EXPECT_EQ(m_learner.GetPronunScore(), 85);
  m_messages.Clear();
  m_learner.PrintScores();
  EXPECT_EQ(m_messages.Of(MessageStream::kWideOutput),
            "// m_dProbOfGoodTiming = 0\n"
            "Sentence Text=[ ]\n"
            "================== Scores ==================\n"
            "** UGC Penalty (m_dProbOfGoodUtt) = 0\n"
            "** S/N Ratio = 3.25\n"
            "Total Score =[" +
                std::to_string(m_learner.GetTotalScore()) +
                "]\n"
                "Pronunciation Score =[85]\n"
                "Pitch Score =[100]\n"
                "Timing Score =[100]\n"
                "Intensity Score =[100]\n"
                "---\n"
                "Pronun Score of Phoneme =[75 92 ]\n"
                "Pronun Score of Syllable =[85 ]\n"
                "Pitch Score of Syllable =[]\n"
                "Timing Score of Syllable =[]\n"
                "Intensity Score of Syllable =[]\n"
                "---\n"
                "Pronun Score of Word =[]\n"
                "Pitch Score of Word =[]\n"
                "Timing Score of Word =[]\n"
                "Intensity Score of Word =[]\n"
                "Total Score of Word =[]\n");
}

TEST_F(ReportOfAnObject, LinesOfOneSyllable) {
  ASSERT_GE(m_learner.GradeAgainstTutor(&m_tutor), 0);
  const test::ScratchFolder folder;
  const auto path = folder.Path() / "traits.csv";
  {
    std::ofstream out(path);
    m_learner.SaveUttMismatchTraits(&out);
    m_learner.SaveSylMismatchTraits(&out);
    m_learner.SaveWordMismatchTraits(&out);
  }
  // 7 segments of the learner's, 3 of the tutor's: a whole ratio of 2, 3.5 given back. The syllable
  // is half as long as the tutor's, and so is the utterance; as loud.
  EXPECT_EQ(test::ReadFile(path), "kA,1,1,1,1,3.5,7\nH,100,100\n1,1,1\n");
}

// What no grading has made yet is 0; so is the tutor's count where there is no ratio.
TEST_F(ReportOfAnObject, LinesBeforeAGrading) {
  const test::ScratchFolder folder;
  const auto path = folder.Path() / "traits.csv";
  for (const bool pronunciation_alone : {false, true}) {
    if (pronunciation_alone) {
      ASSERT_GE(m_learner.GradePronunOnly(), 0);
    }
    {
      std::ofstream out(path);
      m_learner.SaveUttMismatchTraits(&out);
      m_learner.SaveSylMismatchTraits(&out);
      m_learner.SaveWordMismatchTraits(&out);
    }
    EXPECT_EQ(test::ReadFile(path), "kA,0,0,0,1,0,7\nH,0,0\n0,0,0\n");
  }
}

TEST_F(ReportOfAnObject, NoStream) {
  m_learner.SaveUttMismatchTraits(nullptr);
  m_learner.SaveSylMismatchTraits(nullptr);
  m_learner.SaveWordMismatchTraits(nullptr);
  EXPECT_EQ(m_messages.StandardError(),
            "ERROR in GradedAudio::SaveUttMismatchTraits(), no stream\n"
            "ERROR in GradedAudio::SaveSylMismatchTraits(), no stream\n"
            "ERROR in GradedAudio::SaveWordMismatchTraits(), no stream\n");
}

TEST_F(ReportOfAnObject, WhatIsNotAnalysedIsRefused) {
  EXPECT_EQ(m_learner.GradeAgainstTutor(nullptr), -1);
  m_learner.Hand().goodness = nullptr;
  EXPECT_EQ(m_learner.GradeAgainstTutor(&m_tutor), -1);
  m_learner.Hand().goodness = std::make_shared<GoodnessResult>();
  m_learner.Hand().pronunciation = nullptr;
  EXPECT_EQ(m_learner.GradePronunOnly(), -1);
  m_learner.Hand().phoneme_set = nullptr;
  EXPECT_EQ(m_learner.GradePronunOnly(), -1);
  EXPECT_EQ(m_messages.StandardError(),
            "ERROR in GradedAudio::GradeAgainstTutor(), no tutor\n"
            "ERROR in GradedAudio::GradeAgainstTutor(), the recording is not analysed\n"
            "ERROR in GradedAudio::GradePronunOnly(), the recording is not analysed\n"
            "ERROR in GradedAudio::GradePronunOnly(), unknown Language Type\n");
}

}  // namespace
}  // namespace veral3
