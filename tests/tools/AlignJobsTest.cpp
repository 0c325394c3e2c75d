#include "tools/AlignJobs.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sndfile.h>

#include "SoundFiles.h"
#include "support/SmallEngine.h"
#include "support/Vectors.h"
#include "tools/AlignmentFormats.h"
#include "tools/InOrder.h"

namespace veral3::tools {
namespace {

// Also run under ThreadSanitizer.
TEST(AlignJobsThreads, OutcomesAreThoseOfOneThreadInOrder) {
  veral3::test::LoadSmallEngine();
  const veral3::test::ScratchFolder folder;
  std::vector<AlignJob> jobs;
  for (int i = 0; i < 10; ++i) {
    const std::string file = folder.Path() / test::NumberedWav(i);
    std::vector<double> values;
    for (const std::int16_t sample :
         veral3::test::NoiseBursts(6000 + 1500 * (i % 3), static_cast<std::uint32_t>(i))) {
      values.push_back(sample / 32768.0);
    }
    test::WriteSoundFile(file, values, i % 2 == 0 ? 22050 : 16000, 1,
                         SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    jobs.push_back({i == 4 ? file + ".none" : file, {"Apple", "A"}, {"Apple", "A"}});
  }
  const auto run = [&](int threads) {
    std::string all;
    RunInOrder<AlignOutcome>(
        jobs.size(), threads, [&](std::size_t i) { return RunAlignJob(jobs[i], kLanguageEnglish); },
        [&](const AlignOutcome& outcome) {
          all += Json(outcome.report) + outcome.messages + "\n";
        });
    return all;
  };
  const std::string one = run(1);
  EXPECT_THAT(one, testing::HasSubstr("does not exist"));
  EXPECT_EQ(run(2), one);
  EXPECT_EQ(run(7), one);
  EXPECT_EQ(run(64), one);
}

TEST(AlignJobs, ReportHasWhatTheEngineFound) {
  veral3::test::LoadSmallEngine();
  const veral3::test::ScratchFolder folder;
  const std::string file = folder.Path() / "a.wav";
  test::WriteSoundFile(file, test::Sine(300, 0.3, 1.0, 22050, 1), 22050, 1,
                       SF_FORMAT_WAV | SF_FORMAT_PCM_16);
  const AlignOutcome outcome = RunAlignJob({file, {"An apple!"}, {"an apple"}}, kLanguageEnglish);
  const AlignmentReport& report = outcome.report;
  EXPECT_EQ(report.error, "");
  EXPECT_EQ(report.sentence, "An apple!");
  EXPECT_EQ(report.num_samples, 22050);
  ASSERT_FALSE(report.words.empty());
  EXPECT_EQ(report.words.back().text, "APPLE");
  EXPECT_EQ(report.words.back().parts, 2);
  EXPECT_EQ(report.syllables.back().end, report.phonemes.back().end);
  std::string joined;
  std::string symbols;
  int parts = 0;
  for (const Segment& syllable : report.syllables) {
    joined += syllable.text;
    parts += syllable.parts;
    EXPECT_GT(syllable.confidence, 0.0);
    EXPECT_LE(syllable.confidence, 1.0);
  }
  for (const Segment& phoneme : report.phonemes) symbols += phoneme.text;
  EXPECT_EQ(joined, symbols);
  EXPECT_EQ(parts, static_cast<int>(report.phonemes.size()));
}

TEST(AlignJobs, RefusedSentenceIsTheFilesError) {
  veral3::test::LoadSmallEngine();
  const veral3::test::ScratchFolder folder;
  const std::string file = folder.Path() / "a.wav";
  test::WriteSoundFile(file, test::Sine(300, 0.3, 0.5, 22050, 1), 22050, 1,
                       SF_FORMAT_WAV | SF_FORMAT_PCM_16);
  const AlignOutcome outcome = RunAlignJob({file, {"|1 x|y"}, {"|1 x|y"}}, kLanguageEnglish);
  EXPECT_THAT(outcome.report.error, testing::StartsWith("sentence \"|1 x|y\" cannot be used: "));
}

}  // namespace
}  // namespace veral3::tools
