// Where the front end finds no memory for its own heaps it ends the process; an application's
// handler that throws makes a refusal of it.
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "Readings.h"
#include "Trials.h"
#include "common/Messages.h"
#include "signal/HShell.h"

namespace veral3::test {
namespace {

int AlignOnce(GradedAudio& audio, const Material& material) {
  std::vector<std::int16_t> samples = material.learner;
  return audio.Align(static_cast<std::uint32_t>(samples.size()), samples.data());
}

TEST(FatalExit, AHandlerThatThrowsMakesARefusalOfIt) {
  Load(SmallResources());
  const Material material = ChainMaterial(kLanguageEnglish);
  const MessageLog log;
  GradedAudio audio(material.language);
  for (const std::string& sentence : material.sentences) {
    ASSERT_GE(audio.AddPossibleSentence(sentence.c_str()), 1);
  }
  const int matched = AlignOnce(audio, material);
  ASSERT_GE(matched, 0);
  const std::string expected = ReadingsOf(audio);
  FailAllocation(0, Fault::kOne);
  AlignOnce(audio, material);
  const long allocations = StopFailing();

  int ended = 0;
  SetEndProcessHandler([&](int status) {
    StopFailing();
    EXPECT_EQ(status, kErrorAllocation);
    ++ended;
    throw std::runtime_error("the process would end");
  });
  std::vector<std::int16_t> samples;
  for (long n = 1; n <= allocations; ++n) {
    samples = material.learner;
    const int before = ended;
    MessageLog::Clear();
    FailAllocation(n, Fault::kRest);
    const int result = audio.Align(static_cast<std::uint32_t>(samples.size()), samples.data());
    StopFailing();
    if (ended == before) continue;
    EXPECT_EQ(result, -1) << n;
    EXPECT_NE(MessageLog::Text().find("ERROR in AnalyzedAudio::Align(), the process would end\n"),
              std::string_view::npos)
        << MessageLog::Text();
    EXPECT_EQ(audio.GetNumOfPhonemes(), 0) << n;
    EXPECT_EQ(AlignOnce(audio, material), matched) << n;
    EXPECT_EQ(ReadingsOf(audio), expected) << n;
  }
  SetEndProcessHandler({});
  EXPECT_GT(ended, 0);
}

}  // namespace
}  // namespace veral3::test
