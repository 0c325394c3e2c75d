#include "core/AnalysisChecks.h"

#include <gtest/gtest.h>

#include "support/MessageCapture.h"

namespace veral3 {
namespace {

using test::MessageCapture;

AnalysisState English() {
  AnalysisState state;
  state.language = kLanguageEnglish;
  state.phoneme_set = PhonemeSetOf(kLanguageEnglish);
  return state;
}

AnalysisState Aligned(int sentence) {
  AnalysisState state = English();
  auto result = std::make_shared<AlignmentResult>();
  result->matched_sentence_index = sentence;
  state.result = std::move(result);
  state.num_samples = 1;
  return state;
}

TEST(AnalysisChecks, UsableIsAnObjectOfALanguage) {
  const MessageCapture messages;
  const AnalysisState english = English();
  EXPECT_TRUE(IsUsable(&english, "Step"));
  EXPECT_EQ(messages.All(), "");
  const AnalysisState unknown;
  EXPECT_FALSE(IsUsable(&unknown, "Step"));
  EXPECT_FALSE(IsUsable(nullptr, "Other"));
  EXPECT_EQ(messages.StandardError(),
            "ERROR in AnalyzedAudio::Step(), unknown Language Type\n"
            "ERROR in AnalyzedAudio::Other(), memory ran out when the object was made\n");
}

TEST(AnalysisChecks, SamplesAreAsManyAsAnIntCounts) {
  const MessageCapture messages;
  const std::int16_t sample = 0;
  EXPECT_TRUE(AreSamples(0, nullptr, "Step"));
  EXPECT_TRUE(AreSamples(1, &sample, "Step"));
  EXPECT_TRUE(AreSamples(0x7FFFFFFFU, &sample, "Step"));
  EXPECT_EQ(messages.All(), "");
  EXPECT_FALSE(AreSamples(0x80000000U, &sample, "Step"));
  EXPECT_FALSE(AreSamples(1, nullptr, "Step"));
  EXPECT_EQ(messages.StandardError(),
            "ERROR in AnalyzedAudio::Step(), dNumOfSamples too large\n"
            "ERROR in AnalyzedAudio::Step(), no samples\n");
}

TEST(AnalysisChecks, AlignedIsWhatMatchedASentence) {
  const MessageCapture messages;
  const std::int16_t sample = 0;
  for (const int sentence : {0, 1, 7}) {
    const AnalysisState state = Aligned(sentence);
    EXPECT_TRUE(IsAligned(&state, "Step"));
    EXPECT_TRUE(IsAligned(&state, &sample, "Step"));
  }
  EXPECT_EQ(messages.All(), "");
  const AnalysisState failed = Aligned(-1), fresh = English(), first = Aligned(0);
  EXPECT_FALSE(IsAligned(&failed, "Step"));
  EXPECT_FALSE(IsAligned(&fresh, &sample, "Step"));
  EXPECT_FALSE(IsAligned(&first, nullptr, "Step"));
  EXPECT_FALSE(IsAligned(nullptr, "Step"));
  EXPECT_EQ(messages.StandardError(),
            "ERROR in AnalyzedAudio::Step(), nothing is aligned\n"
            "ERROR in AnalyzedAudio::Step(), nothing is aligned\n"
            "ERROR in AnalyzedAudio::Step(), no samples\n"
            "ERROR in AnalyzedAudio::Step(), memory ran out when the object was made\n");
}

TEST(AnalysisChecks, PitchAndIntensityAreThoseOfFrames) {
  AnalysisState state = English();
  EXPECT_FALSE(HasPitch(state));
  EXPECT_FALSE(HasIntensity(state));
  auto prosody = std::make_shared<ProsodyResult>();
  prosody->pitch.frame = {0};
  state.prosody = prosody;
  EXPECT_TRUE(HasPitch(state));
  EXPECT_FALSE(HasIntensity(state));
  prosody = std::make_shared<ProsodyResult>();
  prosody->intensity.frame = {0.0};
  state.prosody = prosody;
  EXPECT_FALSE(HasPitch(state));
  EXPECT_TRUE(HasIntensity(state));
}

}  // namespace
}  // namespace veral3
