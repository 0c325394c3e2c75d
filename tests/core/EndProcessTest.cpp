// Where the engine would end the process, an application's handler may throw: the operation refuses
// and the object serves again.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

#include "core/AnalyzedAudio.h"
#include "core/Measurements.h"
#include "recognition/CheckModelFile.h"
#include "support/MessageCapture.h"
#include "support/SmallEngine.h"
#include "support/UndefinedActivation.h"

namespace veral3 {
namespace {

using Samples = std::vector<std::int16_t>;

class EndProcessHandlers : public testing::Test {
 protected:
  static void SetUpTestSuite() { test::LoadSmallEngine(); }

  EndProcessHandlers() {
    SetEndProcessHandler([](int status) {
      throw std::runtime_error("the status would be " + std::to_string(status));
    });
    m_audio.AddPossibleSentence(L"I ATE");
    m_messages.Clear();
  }
  ~EndProcessHandlers() override { SetEndProcessHandler({}); }

  int Align() {
    m_samples = test::ChainRecording("en_learner");
    return m_audio.Align(Count(), m_samples.data());
  }
  std::uint32_t Count() const { return static_cast<std::uint32_t>(m_samples.size()); }

  // The two messages of an operation that would have ended the process, and nothing more.
  void ExpectTold(const std::string& operation) {
    EXPECT_EQ(m_messages.All(),
              test::kUndefinedActivation +
                  ("ERROR in AnalyzedAudio::" + operation + "(), the status would be -1\n"));
    m_messages.Clear();
  }

  test::MessageCapture m_messages;
  AnalyzedAudio m_audio{kLanguageEnglish};
  Samples m_samples;
};

TEST_F(EndProcessHandlers, AnAlignmentRefusesAndTheObjectServesAgain) {
  {
    const test::UndefinedActivation model(kFrameModelEnglish);
    EXPECT_THAT(CheckModelFile(model.Path().c_str(), kFrameModelEnglish),
                testing::HasSubstr("activation"));
    m_messages.Clear();
    for (int i = 0; i < 2; ++i) {
      EXPECT_EQ(Align(), -1);
      ExpectTold("Align");
    }
    EXPECT_EQ(m_audio.GetMatchedSentenceIndex(), -1);
    EXPECT_EQ(m_audio.GetNumOfPhonemes(), 0);
    EXPECT_EQ(m_audio.AlignAgainstTutor(&m_audio, Count(), m_samples.data()), -1);
    ExpectTold("AlignAgainstTutor");
  }
  AnalyzedAudio fresh(kLanguageEnglish);
  fresh.AddPossibleSentence(L"I ATE");
  Samples samples = test::ChainRecording("en_learner");
  ASSERT_EQ(fresh.Align(static_cast<std::uint32_t>(samples.size()), samples.data()), 0);
  ASSERT_EQ(fresh.Analyze(0, samples.data()), 0);
  ASSERT_EQ(Align(), 0);
  ASSERT_EQ(m_audio.Analyze(0, m_samples.data()), 0);
  EXPECT_EQ(test::MeasurementsOf(m_audio), test::MeasurementsOf(fresh));
}

TEST_F(EndProcessHandlers, AnAnalysisRefusesAndKeepsWhatWasMeasured) {
  ASSERT_EQ(Align(), 0);
  ASSERT_EQ(m_audio.Analyze(0, m_samples.data()), 0);
  const test::Measurements before = test::MeasurementsOf(m_audio);
  {
    const test::UndefinedActivation model(kPhonemeModelEnglish);
    m_messages.Clear();
    EXPECT_EQ(m_audio.AnalyzePronunOnly(m_samples.data()), -1);
    EXPECT_THAT(m_messages.All(), testing::StartsWith(test::kUndefinedActivation));
    EXPECT_EQ(test::MeasurementsOf(m_audio), before);
  }
  EXPECT_EQ(m_audio.Analyze(0, m_samples.data()), 0);
  EXPECT_EQ(test::MeasurementsOf(m_audio), before);
}

TEST_F(EndProcessHandlers, AGoodnessThatCannotBeToldIsNegative) {
  ASSERT_EQ(Align(), 0);
  const test::UndefinedActivation model(kUttGoodnessModel);
  m_messages.Clear();
  EXPECT_EQ(m_audio.GetProbOfGoodAlignment(), -1.0);
  ExpectTold("GetProbOfGoodAlignment");
}

// Where there is none, or it returns, std::exit follows; the system keeps 8 bits of the status.
using EndProcessHandlersDeathTest = EndProcessHandlers;

TEST_F(EndProcessHandlersDeathTest, WithoutOneTheProcessEnds) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const test::UndefinedActivation model(kFrameModelEnglish);
  SetMessageHandler({});
  SetEndProcessHandler({});
  EXPECT_EXIT(Align(), testing::ExitedWithCode(255), "Activation type:\\[y\\] not defined!");
  SetEndProcessHandler([](int) {});
  EXPECT_EXIT(Align(), testing::ExitedWithCode(255), "Activation type:\\[y\\] not defined!");
  SetEndProcessHandler([](int) { std::_Exit(3); });
  EXPECT_EXIT(Align(), testing::ExitedWithCode(3), "Activation type:\\[y\\] not defined!");
}

}  // namespace
}  // namespace veral3
