#include <gmock/gmock.h>

#include <filesystem>

#include "recognition/FrameScores.h"
#include "training/train/FrameSource.h"
#include "training/train/PhonemeSource.h"

namespace veral3::training {
namespace {

constexpr int kRow = 39;

// Frame f of the file has the value f in all its columns.
std::vector<FeatureFile> TwoUtterances() {
  const auto folder = std::filesystem::path(::testing::TempDir()) / "veral3_sources.features";
  std::vector<float> frames;
  for (int f = 0; f < 60; ++f) frames.insert(frames.end(), kRow, static_cast<float>(f));
  FeatureWriter writer(folder);
  writer.Write(std::span(frames).first(40 * kRow), std::vector<FrameSegment>{{36, 0}, {3, 5}});
  writer.Write(std::span(frames).subspan(40 * kRow), std::vector<FrameSegment>{{36, 0}, {4, 10}});
  writer.Close();
  std::vector<FeatureFile> files;
  files.emplace_back(folder);
  return files;
}

const CPhonemeSet& English() { return *PhonemeSetOf(kLanguageEnglish); }

TEST(FrameSource, AssemblesWhatTheEngineAssembles) {
  const auto files = TwoUtterances();
  FrameSource source(English(), files, 0);
  Random random(1);
  source.BeginEpoch(random);
  ASSERT_EQ(source.NumExamples(), 60u);
  std::vector<float> ours(kFrameInputSize);
  std::vector<float> engine(kFrameInputSize);
  std::vector<std::int64_t> label(1);
  for (std::uint32_t f = 0; f < 60; ++f) {
    source.Fill(std::vector{f}, ours, label);
    const auto& utterance = files[0].Utterances()[f < 40 ? 0 : 1];
    AssembleFrameInput(files[0].FramesOf(utterance), static_cast<int>(f < 40 ? f : f - 40),
                       std::span<float, kFrameInputSize>(engine));
    EXPECT_EQ(ours, engine) << f;
    const int phoneme = f < 5 ? 36 : f < 40 ? 3 : f < 50 ? 36 : 4;
    EXPECT_EQ(label[0] / 3, phoneme) << f;
  }
}

TEST(PhonemeSource, LooksAtSixteenFramesAndAtNothingBeyondTheEnd) {
  const auto files = TwoUtterances();
  PhonemeSource source(English(), files, 0);
  Random random(1);
  source.BeginEpoch(random);
  ASSERT_EQ(source.NumExamples(), 4u);
  std::vector<float> input(624);
  std::vector<std::int64_t> label(1);
  source.Fill(std::vector<std::uint32_t>{1}, input, label);
  EXPECT_EQ(label[0], 3);
  EXPECT_EQ(input[0], 5.0f);
  EXPECT_EQ(input[8 * kRow], 5.0f + 9);
  EXPECT_EQ(input[15 * kRow + 38], 5.0f + 31);
  source.Fill(std::vector<std::uint32_t>{0}, input, label);  // five frames of pause
  EXPECT_EQ(label[0], 36);
  EXPECT_EQ(input[4 * kRow], 4.0f);
  for (std::size_t i = 5 * kRow; i < input.size(); ++i) ASSERT_EQ(input[i], 0.0f) << i;
}

TEST(PhonemeSource, MovedBoundariesStayInsideTheirUtterance) {
  const auto files = TwoUtterances();
  PhonemeSource source(English(), files, 2);
  Random random(1);
  std::vector<float> input(4 * 624);
  std::vector<std::int64_t> labels(4);
  for (int epoch = 0; epoch < 50; ++epoch) {
    source.BeginEpoch(random);
    source.Fill(std::vector<std::uint32_t>{0, 1, 2, 3}, input, labels);
    EXPECT_LE(input[0], 2.0f);
    EXPECT_NEAR(input[624], 5.0f, 2.0f);
    EXPECT_GE(input[2 * 624], 40.0f);
  }
}

}  // namespace
}  // namespace veral3::training
