// The steps of a grading at their bounds: the numbers on either side of each, and what is said on
// the way.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "grading/GradedResult.h"
#include "grading/IntensityGrading.h"
#include "grading/PeakGrading.h"
#include "grading/PhonProbGrader.h"
#include "grading/PitchGrading.h"
#include "grading/PronunciationGrading.h"
#include "grading/Scores.h"
#include "grading/TimingGrading.h"
#include "grading/TotalScore.h"
#include "grading/WordGrading.h"
#include "recognition/CPhonemeSet.h"
#include "support/MessageCapture.h"

namespace veral3 {
namespace {

constexpr auto kNoLanguage = static_cast<LanguageType>(9);

// Syllables of one phoneme ('A' each), 1000 samples long, one after another from sample 440 on.
template <typename View>
View MakeView(LanguageType language, int num_syllables) {
  View view;
  view.language = language;
  for (int s = 0; s < num_syllables; ++s) {
    view.phonemes += language == kLanguageEnglish ? 'A' : 'a';
    view.phoneme_start.push_back(440 + 1000 * s);
    view.phoneme_end.push_back(1440 + 1000 * s);
    view.syllable_start.push_back(s);
    view.syllable_pitch.push_back(100 + s);
    view.syllable_duration.push_back(1000);
    view.syllable_intensity.push_back(50.0);
    view.tone_probability.push_back({1.0, 0.0, 0.0, 0.0, 0.0});
  }
  view.pitch_segments = 1;
  return view;
}

LearnerView MakeLearner(LanguageType language, int num_syllables) {
  auto learner = MakeView<LearnerView>(language, num_syllables);
  learner.words.first_syllable = {0};
  learner.words.num_syllables = {num_syllables};
  learner.goodness.assign(static_cast<std::size_t>(num_syllables), 1.0);
  learner.distribution_width = 64;
  learner.distributions.assign(static_cast<std::size_t>(num_syllables) * 64, 1.0);
  return learner;
}

RecordingView MakeTutor(LanguageType language, int num_syllables) {
  return MakeView<RecordingView>(language, num_syllables);
}

class GradingBounds : public testing::Test {
 protected:
  test::MessageCapture m_messages;
};

TEST_F(GradingBounds, UtterancePronunciationIsTheMeanCutToAWholeNumber) {
  EXPECT_EQ(UtterancePronunciation(std::vector<int>{90, 85, 80}), 85);
  EXPECT_EQ(UtterancePronunciation(std::vector<int>{90, 85, 81}), 85);
  EXPECT_EQ(UtterancePronunciation(std::vector<int>{90, 85, 82}), 85);
  EXPECT_EQ(UtterancePronunciation(std::vector<int>{90, 85, 83}), 86);
  EXPECT_EQ(UtterancePronunciation(std::vector<int>{0}), 0);
  EXPECT_EQ(UtterancePronunciation({}), -1);
  EXPECT_EQ(UtterancePronunciation(std::vector<int>{-90, 10}), 0);
}

TEST_F(GradingBounds, TotalsAboveAHundredAreReportedAndStay) {
  EXPECT_DOUBLE_EQ(CombineScores(kLanguageEnglish, 4, {100, 100, 100, 100}), 100.0);
  EXPECT_EQ(m_messages.All(), "");
  EXPECT_DOUBLE_EQ(CombineScores(kLanguageEnglish, 4, {200, 100, 100, 100}), 150.0);
  EXPECT_EQ(m_messages.Of(MessageStream::kError), "Error! Total score more than 100!\n");
  EXPECT_DOUBLE_EQ(CombineScores(kLanguageEnglish, 1, {101, 0, 0, 0}), 101.0);
  EXPECT_EQ(m_messages.Entries().size(), 2u);
}

TEST_F(GradingBounds, WeightsByTheNumberOfSyllables) {
  // Powers of a hundred apart, so that each weight shows.
  const ComponentScores scores{1000000, 10000, 100, 1};
  const struct {
    LanguageType language;
    int syllables;
    double total;
  } rows[] = {{kLanguageEnglish, 1, 1000000.0},  {kLanguageEnglish, 2, 850505.05},
              {kLanguageEnglish, 3, 751010.05},  {kLanguageEnglish, 4, 502020.1},
              {kLanguageEnglish, 0, 502020.1},   {kLanguageEnglish, -1, 502020.1},
              {kLanguageJapanese, 1, 1000000.0}, {kLanguageJapanese, 3, 751010.05},
              {kLanguageChinese, 1, 703000.0},   {kLanguageChinese, 2, 702005.05},
              {kLanguageChinese, 3, 652010.05},  {kLanguageChinese, 4, 502020.1},
              {kLanguageChinese, 0, 502020.1},   {kLanguageChinese, 500, 502020.1}};
  for (const auto& row : rows) {
    EXPECT_NEAR(CombineScores(row.language, row.syllables, scores), row.total, 1e-6)
        << row.language << " " << row.syllables;
  }
  // 45 + 16 + 14 + 6.
  EXPECT_NEAR(CombineScores(kLanguageEnglish, 4, {90, 80, 70, 60}), 81.0, 1e-12);
}

TEST_F(GradingBounds, FactorOfAProbability) {
  EXPECT_EQ(GoodnessFactor(1.0), 1.0);
  EXPECT_NEAR(GoodnessFactor(std::exp(-1.0)), 0.5, 1e-15);
  EXPECT_NEAR(GoodnessFactor(std::exp(-3.0)), 0.25, 1e-15);
  EXPECT_EQ(GoodnessFactor(0.0), 0.0);
  EXPECT_EQ(GoodnessFactor(-0.5), 0.0);
  EXPECT_EQ(GoodnessFactor(std::numeric_limits<double>::quiet_NaN()), 0.0);
}

TEST_F(GradingBounds, TruncationKeepsToAnInt) {
  EXPECT_EQ(Truncate(99.999), 99);
  EXPECT_EQ(Truncate(-99.999), -99);
  EXPECT_EQ(Truncate(std::numeric_limits<double>::quiet_NaN()), 0);
  EXPECT_EQ(Truncate(2147483646.5), 2147483646);
  EXPECT_EQ(Truncate(2147483647.0), 2147483647);
  EXPECT_EQ(Truncate(1e300), 2147483647);
  EXPECT_EQ(Truncate(-2147483647.5), -2147483647);
  EXPECT_EQ(Truncate(-2147483648.0), std::numeric_limits<int>::min());
  EXPECT_EQ(Truncate(-1e300), std::numeric_limits<int>::min());
  EXPECT_EQ(Scaled(3, 0.5), 1);
  EXPECT_EQ(AtLeastZero(-1), 0);
  EXPECT_EQ(AtLeastZero(0), 0);
  EXPECT_EQ(AtLeastZero(1), 1);
}

TEST_F(GradingBounds, NoTutorLengthAndNoTutorLoudness) {
  LearnerView learner = MakeLearner(kLanguageEnglish, 2);
  RecordingView tutor = MakeTutor(kLanguageEnglish, 2);
  tutor.phoneme_end = tutor.phoneme_start;
  EXPECT_EQ(SyllableTimingPercent(learner, tutor), (std::vector<int>{100, 100}));
  EXPECT_EQ(m_messages.StandardError(),
            "ERROR! nTutorUttLength==0 in GradedAudio::CalculateSylTimingPercent()\n");
  m_messages.Clear();
  tutor.syllable_intensity = {25.0, -25.0};
  EXPECT_EQ(SyllableIntensityPercent(learner, tutor), (std::vector<int>{200, -200}));
  EXPECT_EQ(m_messages.StandardError(),
            "ERROR! nTutorUttTotalIntensity==0 in GradedAudio::GradeIntensity()\n");
}

// Nothing of the learner's: the ratio is 0.0001 in place of 0.
TEST_F(GradingBounds, NoLearnerLengthAndNoLearnerLoudness) {
  LearnerView learner = MakeLearner(kLanguageEnglish, 2);
  const RecordingView tutor = MakeTutor(kLanguageEnglish, 2);
  learner.phoneme_end = learner.phoneme_start;
  // 100 percent / 0.0001 in single precision.
  EXPECT_EQ(SyllableTimingPercent(learner, tutor), (std::vector<int>{1000000, 1000000}));
  learner.syllable_intensity = {25.0, -25.0};
  EXPECT_EQ(SyllableIntensityPercent(learner, tutor), (std::vector<int>{500000, -500000}));
}

TEST_F(GradingBounds, PercentsAgainstATutorOfNothing) {
  const LearnerView learner = MakeLearner(kLanguageEnglish, 3);
  RecordingView tutor = MakeTutor(kLanguageEnglish, 3);
  tutor.syllable_duration = {0, 2000};
  tutor.syllable_intensity = {0.0, 150.0};
  EXPECT_EQ(SyllableTimingPercent(learner, tutor), (std::vector<int>{1000, 50, 1000}));
  EXPECT_EQ(SyllableIntensityPercent(learner, tutor), (std::vector<int>{1000, 33, 1000}));
}

// A percent that an int can't hold becomes the nearest that it can; one that is no number becomes
// 0.
TEST_F(GradingBounds, PercentsKeepToAnInt) {
  LearnerView learner = MakeLearner(kLanguageEnglish, 3);
  RecordingView tutor = MakeTutor(kLanguageEnglish, 3);
  tutor.syllable_intensity = {0.25, 0.25, 0.5};
  learner.syllable_intensity = {1e300, -1e300, 1.0};  // together as loud as the tutor
  EXPECT_EQ(SyllableIntensityPercent(learner, tutor),
            (std::vector<int>{2147483647, -2147483647 - 1, 200}));
  learner.syllable_intensity = {0.75, std::numeric_limits<double>::quiet_NaN(), 0.25};
  EXPECT_EQ(SyllableIntensityPercent(learner, tutor), (std::vector<int>{0, 0, 0}));
  tutor.syllable_duration = {1, 1, 1};
  learner.syllable_duration = {2147483647, -2147483647, 1};
  EXPECT_EQ(SyllableTimingPercent(learner, tutor),
            (std::vector<int>{2147483647, -2147483647 - 1, 100}));
}

// Percents are cut twice: whole percents of the durations, then against the whole utterances in
// single precision.
TEST_F(GradingBounds, TimingPercentsAreCutTwice) {
  LearnerView learner = MakeLearner(kLanguageEnglish, 2);
  const RecordingView tutor = MakeTutor(kLanguageEnglish, 2);
  learner.syllable_duration = {1999, 1009};
  learner.phoneme_end[1] = 1440 + 2000;  // 3000 against 2000
  EXPECT_EQ(SyllableTimingPercent(learner, tutor), (std::vector<int>{132, 66}));  // 199, 100 / 1.5
}

TEST_F(GradingBounds, UnknownLanguages) {
  const LearnerView learner = MakeLearner(kNoLanguage, 2);
  const RecordingView tutor = MakeTutor(kNoLanguage, 2);

  const PhonProbGrader grader(kNoLanguage);
  EXPECT_EQ(grader.NumPhonemes(), 0);
  EXPECT_EQ(m_messages.Of(MessageStream::kError),
            "Unkonwn Language Type in PhonProbGrader::PhonProbGrader()\n");
  m_messages.Clear();
  const double one[] = {0.1};
  EXPECT_EQ(grader.ComputePhonScore('a', one), 75);
  EXPECT_EQ(m_messages.Of(MessageStream::kError),
            "Unkonwn Language Type in PhonProbGrader::ComputePhonScore()\n");
  m_messages.Clear();
  EXPECT_EQ(PhonProbGraderOf(kNoLanguage), nullptr);
  EXPECT_TRUE(PhonemeNormalisersOf(kNoLanguage).empty());

  EXPECT_EQ(GradePhonemes(learner), (std::vector<int>{0, 0}));
  EXPECT_EQ(m_messages.Of(MessageStream::kError),
            "Unkonwn Language Type in GradedAudio::GradePhonemePronunMFCC()\n"
            "Unkonwn Language Type in GradedAudio::GradePhonemePronunMFCC()\n");
  m_messages.Clear();

  const RhythmGrade rhythm = GradeRhythm(learner, tutor);
  EXPECT_EQ(rhythm.probability, 1.0);
  EXPECT_EQ(m_messages.Of(MessageStream::kError),
            "Error in GradedAudio::CalculateProbOfGoodTiming(), unknown LanguageType.\n");
  m_messages.Clear();

  const IntensityGrades intensity = GradeIntensity(learner, tutor, {3.0});
  EXPECT_EQ(intensity.score, 100);
  EXPECT_EQ(intensity.syllable, (std::vector<int>{100, 100}));
  EXPECT_EQ(intensity.advice, "--");
  EXPECT_EQ(intensity.word_contrast, std::vector<double>{3.0});
  EXPECT_EQ(m_messages.Of(MessageStream::kError),
            "Error in GradedAudio::GradeIntensity(), unknown LanguageType.\n");
  m_messages.Clear();

  const PitchGrades pitch = GradePitch(learner, tutor, {3.0});
  EXPECT_FALSE(pitch.graded);
  EXPECT_EQ(pitch.syllable, (std::vector<int>{0, 0}));
  EXPECT_EQ(pitch.advice, "");
  EXPECT_EQ(m_messages.Of(MessageStream::kError),
            "Error in GradedAudio::GradePhonemePronunMFCC(), unknown LanguageType.\n");
}

// Rhythm is looked at in any tutor's reading but one of 6 phonemes or fewer; of an unknown language
// in all.
TEST_F(GradingBounds, RhythmNeedsMoreThanSixPhonemes) {
  const auto late = [](LanguageType language, int n) {
    LearnerView learner = MakeLearner(language, n);
    for (int i = 1; i < n; ++i) {
      learner.phoneme_start[static_cast<std::size_t>(i)] -= 900;
    }
    return GradeRhythm(learner, MakeTutor(language, n));
  };
  EXPECT_EQ(late(kLanguageEnglish, 6).agreement, (std::array<double, 3>{1.0, 1.0, 1.0}));
  EXPECT_EQ(late(kLanguageEnglish, 6).probability, 1.0);
  const RhythmGrade seven = late(kLanguageEnglish, 7);
  // Phonemes 1, 3 and 5 of 7, at 100, 2100 and 4100 in place of 1000, 3000 and 5000.
  EXPECT_DOUBLE_EQ(seven.agreement[0], 0.1);
  EXPECT_DOUBLE_EQ(seven.agreement[1], 0.7);
  EXPECT_DOUBLE_EQ(seven.agreement[2], 0.82);
  const double product = 0.1 * 0.7 * 0.82;
  EXPECT_NEAR(seven.probability, product / static_cast<double>(0.38418F), 1e-12);
  EXPECT_NEAR(late(kLanguageChinese, 7).probability, product / static_cast<double>(0.403479F),
              1e-12);
  EXPECT_NEAR(late(kLanguageJapanese, 7).probability, product / static_cast<double>(0.399598F),
              1e-12);
  EXPECT_DOUBLE_EQ(late(kNoLanguage, 4).agreement[0], 0.1);
  EXPECT_EQ(late(kNoLanguage, 0).agreement[0], 1.0);
}

TEST_F(GradingBounds, PausesAtTheirBounds) {
  const auto flag = [](int learners, int tutors) {
    LearnerView learner = MakeLearner(kLanguageEnglish, 2);
    RecordingView tutor = MakeTutor(kLanguageEnglish, 2);
    learner.phoneme_start[1] = learner.phoneme_end[0] + learners;
    learner.phoneme_end[1] = learner.phoneme_start[1] + 1000;
    tutor.phoneme_start[1] = tutor.phoneme_end[0] + tutors;
    tutor.phoneme_end[1] = tutor.phoneme_start[1] + 1000;
    const std::vector<bool> pauses = FindUnnecessaryPauses(learner, tutor);
    EXPECT_FALSE(pauses[0]);
    const TimingGrades grades = GradeTiming(learner, tutor, 1.0, {0.0});
    EXPECT_EQ(grades.unnecessary_pause, pauses);
    EXPECT_EQ(grades.syllable, (std::vector<int>{100, pauses[1] ? 0 : 100}));
    EXPECT_EQ(grades.utterance_penalty, pauses[1] ? 30 : 0);
    EXPECT_EQ(grades.score, pauses[1] ? 70 : 100);
    return static_cast<bool>(pauses[1]);
  };
  EXPECT_TRUE(flag(11026, 5512));
  EXPECT_FALSE(flag(11025, 5512));
  EXPECT_FALSE(flag(11026, 5513));
  EXPECT_TRUE(flag(40000, 0));
}

// A word's misplaced peak counts above its contrast, and not at it.
TEST_F(GradingBounds, ContrastsAtTheirBounds) {
  LearnerView learner = MakeLearner(kLanguageEnglish, 2);
  RecordingView tutor = MakeTutor(kLanguageEnglish, 2);
  learner.syllable_pitch = {2, 1};
  learner.syllable_duration = {2, 1};
  learner.syllable_intensity = {2.0, 1.0};
  for (const bool above : {false, true}) {
    const int more = above ? 1 : 0;
    tutor.syllable_pitch = {100000, 148588 + more};
    const PitchGrades pitch = GradePitch(learner, tutor, {0.0});
    EXPECT_EQ(pitch.word_penalty, above ? 100 : 0);
    EXPECT_EQ(pitch.utterance_penalty, 80);  // 16 x (4 + 1)
    EXPECT_EQ(pitch.score, above ? 0 : 20);
    EXPECT_EQ(pitch.syllable, (std::vector<int>{100 - 11 - 30, 100 - 8 - 30}));
    EXPECT_EQ(pitch.advice, "hl");
    EXPECT_DOUBLE_EQ(pitch.word_contrast[0], above ? 1.48589 : 1.48588);

    tutor.syllable_duration = {100000, 178571 + more};
    const TimingGrades timing = GradeTiming(learner, tutor, 1.0, {0.0});
    EXPECT_EQ(timing.word_penalty, above ? 100 : 0);
    EXPECT_EQ(timing.utterance_penalty, 5);
    EXPECT_EQ(timing.syllable, (std::vector<int>{100 - 11 - 25, 100 - 3 - 25}));
    EXPECT_EQ(timing.advice, "ls");

    tutor.syllable_intensity = {100000.0, 355139.0 + more};
    const IntensityGrades intensity = GradeIntensity(learner, tutor, {0.0});
    EXPECT_EQ(intensity.word_penalty, above ? 100 : 0);
    EXPECT_EQ(intensity.utterance_penalty, 6);
    EXPECT_EQ(intensity.syllable, (std::vector<int>{100 - 11 - 20, 100 - 8 - 20}));
    EXPECT_EQ(intensity.advice, "hl");
  }
}

TEST_F(GradingBounds, OneWordIsNothingButItsStress) {
  const auto penalty = [](LanguageType language, int syllables, int words) {
    LearnerView learner = MakeLearner(language, syllables);
    RecordingView tutor = MakeTutor(language, syllables);
    learner.words.first_syllable.resize(static_cast<std::size_t>(words));
    learner.words.num_syllables.assign(static_cast<std::size_t>(words), 1);
    std::swap(tutor.syllable_pitch[0], tutor.syllable_pitch[1]);
    if (syllables == 3) {  // the learner's highest is the tutor's second
      learner.syllable_pitch = {100, 101, 102};
      tutor.syllable_pitch = {100, 102, 101};
    }
    return GradePitch(learner, tutor, {0.0, 0.0}).utterance_penalty;
  };
  EXPECT_EQ(penalty(kLanguageEnglish, 2, 1), 16 * 5);
  EXPECT_EQ(penalty(kLanguageEnglish, 3, 1), 4 * 5);
  EXPECT_EQ(penalty(kLanguageEnglish, 2, 0), 16 * 5);
  EXPECT_EQ(penalty(kLanguageEnglish, 2, 2), 5);
  EXPECT_EQ(penalty(kLanguageJapanese, 2, 1), 5);
}

TEST_F(GradingBounds, SegmentRatioIsWhole) {
  LearnerView learner = MakeLearner(kLanguageJapanese, 1);
  RecordingView tutor = MakeTutor(kLanguageJapanese, 1);
  const auto ratio = [&](int learners, int tutors) {
    learner.pitch_segments = learners;
    tutor.pitch_segments = tutors;
    return GradePitch(learner, tutor, {}).segment_ratio;
  };
  EXPECT_EQ(ratio(3, 2), 1.0);
  EXPECT_EQ(ratio(4, 2), 2.0);
  EXPECT_EQ(ratio(1, 2), 0.0);
  EXPECT_EQ(ratio(5, 1), 5.0);
  EXPECT_EQ(ratio(5, 0), 100.0);
  EXPECT_EQ(ratio(0, 0), 100.0);
}

TEST_F(GradingBounds, ChineseLoudnessAtItsBounds) {
  const auto grade = [](int percent) {
    std::string advice;
    const int lost = GradeSyllableLoudness(std::vector<int>{percent}, advice);
    return std::pair{100 - lost, advice};
  };
  using Grade = std::pair<int, std::string>;
  EXPECT_EQ(grade(100), (Grade{100, "-"}));
  EXPECT_EQ(grade(2), (Grade{100, "-"}));  // 0.02
  EXPECT_EQ(grade(1), (Grade{64, "-"}));   // (0.01 - 0.00065) x 100 / 0.014502 = 64.47
  EXPECT_EQ(grade(0), (Grade{0, "L"}));
  EXPECT_EQ(grade(101), (Grade{100, "-"}));
  EXPECT_EQ(grade(6599), (Grade{100, "-"}));  // 0.0151538
  EXPECT_EQ(grade(6600), (Grade{99, "-"}));   // 0.0151515 is below 0.015152
  EXPECT_EQ(grade(10693), (Grade{60, "-"}));  // 60.005
  EXPECT_EQ(grade(10694), (Grade{59, "h"}));  // 59.999
  EXPECT_EQ(grade(153846), (Grade{0, "h"}));  // just above 0.00065
  EXPECT_EQ(grade(153847), (Grade{0, "H"}));
  EXPECT_EQ(grade(1000000000), (Grade{0, "H"}));
  std::string advice = "x";
  EXPECT_EQ(GradeSyllableLoudness({}, advice), 0);
  EXPECT_EQ(advice, "");
  EXPECT_EQ(GradeSyllableLoudness(std::vector<int>{100, 1, 0}, advice), 100 - 164 / 3);
  EXPECT_EQ(advice, "--L");
}

TEST_F(GradingBounds, PhonemeScores) {
  const auto score = [](LanguageType language, char symbol, double probability) {
    std::vector<double> distribution(64, 0.0);
    const int at = PhonemeSetOf(language)->GetPhonemeIndex(symbol);
    distribution[static_cast<std::size_t>(std::max(at, 0))] = probability;
    return PhonProbGraderOf(language)->ComputePhonScore(symbol, distribution);
  };
  EXPECT_EQ(score(kLanguageEnglish, 'i', 0.05), 67);
  EXPECT_EQ(score(kLanguageEnglish, 'i', 0.1), 75);
  EXPECT_EQ(score(kLanguageEnglish, 'i', 0.99), 99);
  EXPECT_EQ(score(kLanguageEnglish, 'i', 1.0), 100);
  EXPECT_EQ(score(kLanguageEnglish, 'i', 1e-4), 0);
  EXPECT_EQ(score(kLanguageEnglish, 'i', 1e-9), 0);
  EXPECT_EQ(score(kLanguageEnglish, 'i', 0.0), 0);
  EXPECT_EQ(score(kLanguageEnglish, 'i', -1.0), 0);
  EXPECT_EQ(score(kLanguageEnglish, 'Z', 0.0001), 92);
  EXPECT_EQ(score(kLanguageJapanese, '-', 0.5), 92);  // its normaliser is none
  EXPECT_EQ(score(kLanguageEnglish, '%', 0.1), 75);   // graded like the first
  EXPECT_EQ(PhonProbGraderOf(kLanguageEnglish)->ComputePhonScore('I', {}), 0);
  EXPECT_EQ(PhonProbGraderOf(kLanguageEnglish)->NumPhonemes(), 37);
  EXPECT_EQ(PhonProbGraderOf(kLanguageChinese)->NumPhonemes(), 33);
  EXPECT_EQ(PhonProbGraderOf(kLanguageJapanese)->NumPhonemes(), 26);
}

TEST_F(GradingBounds, SyllablesOfManyPhonemes) {
  const CPhonemeSet& english = *PhonemeSetOf(kLanguageEnglish);
  const std::vector<int> scores = {10, 10, 10, 10, 10, 10, 80, 0, 0};
  EXPECT_EQ(CombineSyllable(english, kLanguageEnglish, "ssssssA", scores), 52);  // 4 + 48
  EXPECT_EQ(m_messages.All(), "");
  EXPECT_EQ(CombineSyllable(english, kLanguageEnglish, "ssssssAtt", scores), 52);
  EXPECT_EQ(m_messages.Of(MessageStream::kError), "WARNING! Too many phonemes in a syllable:9\n");
}

TEST_F(GradingBounds, WordsOfOneAndOfSeveralSyllables) {
  const WordSpans words{{0, 1, 3, 5}, {1, 2, 2, 0}};
  const WordGrades grades =
      GradeWords(words, std::vector<int>{70, 90, 80, 50, 50}, std::vector<int>{20, 80, 80, 50, 50},
                 std::vector<int>{30, 90, 90, 51, 50}, std::vector<int>{40, 95, 95, 51, 51});
  EXPECT_EQ(grades.pronunciation, (std::vector<int>{70, 70, 0, 0}));
  EXPECT_EQ(grades.pitch, (std::vector<int>{20, 60, 0, 0}));
  EXPECT_EQ(grades.timing, (std::vector<int>{30, 80, 1, 0}));
  EXPECT_EQ(grades.intensity, (std::vector<int>{40, 90, 2, 0}));
  EXPECT_EQ(grades.total, (std::vector<int>{70, 72, 0, 0}));
}

// A grading in a language that is none goes through to where the pronunciation fails; what a pitch
// grading would make keeps what it held.
TEST_F(GradingBounds, AGradingOfNoLanguageFails) {
  GradedResult graded;
  graded.components = {1, 2, 3, 4};
  graded.pitch_advice = "kept";
  graded.syllable_pronunciation = {5};
  bool asked = false;
  const int result = GradeAgainstTutor(
      MakeLearner(kNoLanguage, 2), MakeTutor(kNoLanguage, 2),
      [&] {
        asked = true;
        return 1.0;
      },
      graded);
  EXPECT_EQ(result, -1);
  EXPECT_FALSE(asked);
  EXPECT_FALSE(graded.complete);
  EXPECT_EQ(graded.components.pronunciation, 1);
  EXPECT_EQ(graded.components.pitch, 2);
  EXPECT_EQ(graded.components.timing, 100);
  EXPECT_EQ(graded.components.intensity, 100);
  EXPECT_EQ(graded.pitch_advice, "kept");
  EXPECT_EQ(graded.timing_advice, "--");
  EXPECT_TRUE(graded.syllable_pronunciation.empty());
}

// Only words have a contrast; of one whose syllables are not all there nothing is read.
TEST_F(GradingBounds, ContrastsOfWordsOnly) {
  LearnerView learner = MakeLearner(kLanguageEnglish, 3);
  const RecordingView tutor = MakeTutor(kLanguageEnglish, 3);
  learner.syllable_pitch = {102, 101, 100};
  learner.syllable_duration = {3, 2, 1};
  learner.syllable_intensity = {3.0, 2.0, 1.0};
  learner.words = {{-1, 1, 3, 0}, {2, 3, 2, 1}};
  const std::vector<double> before = {2.0, 3.0, 4.0, 5.0, 6.0};
  const std::vector<double> after = {1.0, 1.0, 1.0, 1.0, 6.0};
  const PitchGrades pitch = GradePitch(learner, tutor, before);
  EXPECT_EQ(pitch.word_contrast, after);
  EXPECT_EQ(pitch.word_penalty, 0);
  const TimingGrades timing = GradeTiming(learner, tutor, 1.0, before);
  EXPECT_EQ(timing.word_contrast, after);
  EXPECT_EQ(timing.word_penalty, 0);
  const IntensityGrades intensity = GradeIntensity(learner, tutor, before);
  EXPECT_EQ(intensity.word_contrast, after);
  EXPECT_EQ(intensity.word_penalty, 0);
  // One contrast for four words: the walk ends with it.
  EXPECT_EQ(GradePitch(learner, tutor, {2.0}).word_contrast, std::vector<double>{1.0});
}

// A factor above 1, of what is no probability, raises nothing.
TEST_F(GradingBounds, AFactorAboveOneRaisesNothing) {
  GradedResult graded;
  EXPECT_EQ(GradeAgainstTutor(
                MakeLearner(kLanguageEnglish, 4), MakeTutor(kLanguageEnglish, 4),
                [] { return std::exp(0.05); }, graded),
            100);
  EXPECT_NEAR(graded.goodness_factor, 1.0 / 0.95, 1e-12);
  EXPECT_EQ(graded.components.pitch, 100);
  EXPECT_EQ(graded.phoneme_pronunciation, (std::vector<int>{100, 100, 100, 100}));
  EXPECT_EQ(m_messages.All(), "");
}

// Contrasts that a grading does not make keep what they held; there are as many as words.
TEST_F(GradingBounds, ContrastsOfAnEarlierGradingStay) {
  GradedResult graded;
  graded.word_pitch_contrast = {7.0, 8.0};
  graded.word_timing_contrast = {9.0};
  LearnerView learner = MakeLearner(kLanguageJapanese, 2);
  learner.words = {{0, 1}, {1, 1}};
  ASSERT_EQ(GradeAgainstTutor(
                learner, MakeTutor(kLanguageJapanese, 2), [] { return 1.0; }, graded),
            100);
  EXPECT_EQ(graded.word_pitch_contrast, (std::vector<double>{7.0, 8.0}));
  EXPECT_EQ(graded.word_timing_contrast, (std::vector<double>{9.0, 0.0}));
  EXPECT_EQ(graded.word_intensity_contrast, (std::vector<double>{0.0, 0.0}));
  EXPECT_TRUE(graded.complete);
  EXPECT_EQ(graded.goodness_factor, 1.0);
  EXPECT_EQ(graded.prob_good_timing, 1.0);
}

TEST_F(GradingBounds, ReleasedScoresAreGoneAndTheRestStays) {
  GradedResult graded;
  for (std::vector<int>* scores :
       {&graded.phoneme_pronunciation, &graded.syllable_pronunciation, &graded.syllable_pitch,
        &graded.syllable_timing, &graded.syllable_intensity, &graded.syllable_timing_percent,
        &graded.syllable_intensity_percent, &graded.words.pronunciation, &graded.words.pitch,
        &graded.words.timing, &graded.words.intensity, &graded.words.total}) {
    *scores = {1};
  }
  graded.total = 3;
  graded.pitch_advice = "h";
  graded.word_pitch_contrast = {2.0};
  graded.complete = true;
  graded.ReleaseScores();
  for (const std::vector<int>* scores :
       {&graded.phoneme_pronunciation, &graded.syllable_pronunciation, &graded.syllable_pitch,
        &graded.syllable_timing, &graded.syllable_intensity, &graded.syllable_timing_percent,
        &graded.syllable_intensity_percent, &graded.words.pronunciation, &graded.words.pitch,
        &graded.words.timing, &graded.words.intensity, &graded.words.total}) {
    EXPECT_TRUE(scores->empty());
  }
  EXPECT_EQ(graded.total, 3);
  EXPECT_EQ(graded.pitch_advice, "h");
  EXPECT_EQ(graded.word_pitch_contrast, std::vector<double>{2.0});
  EXPECT_TRUE(graded.complete);
}

}  // namespace
}  // namespace veral3
