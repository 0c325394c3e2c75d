#include <gmock/gmock.h>

#include <cmath>
#include <filesystem>
#include <fstream>

#include "recognition/FrameScores.h"
#include "training/train/FrameSource.h"
#include "training/train/PhonemeSource.h"
#include "training/train/VectorSource.h"

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

// Frames 0 to 4 are a pause, 5 to 11 unused, 12 to 19 a phoneme; frame f has the value f.
std::vector<FeatureFile> OneUtteranceWithAnUnusedSegment() {
  const auto folder = std::filesystem::path(::testing::TempDir()) / "veral3_unused.features";
  std::vector<float> frames;
  for (int f = 0; f < 20; ++f) frames.insert(frames.end(), kRow, static_cast<float>(f));
  FeatureWriter writer(folder);
  writer.Write(frames, std::vector<FrameSegment>{{36, 0}, {-1, 5}, {3, 12}});
  writer.Close();
  std::vector<FeatureFile> files;
  files.emplace_back(folder);
  return files;
}

TEST(FrameSource, LearnsNothingOfUnusedFrames) {
  const auto files = OneUtteranceWithAnUnusedSegment();
  for (const int jitter : {0, 2}) {
    FrameSource source(English(), files, jitter);
    Random random(1);
    ASSERT_EQ(source.NumExamples(), 13u);
    std::vector<float> inputs(13 * kFrameInputSize);
    std::vector<std::int64_t> labels(13);
    const std::vector<std::uint32_t> all = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    for (int epoch = 0; epoch < 20; ++epoch) {
      source.BeginEpoch(random);
      source.Fill(all, inputs, labels);
      for (std::size_t i = 0; i < 13; ++i) {
        EXPECT_EQ(labels[i] / 3, i < 5 ? 36 : 3) << i;
        // The frame itself stands in the middle of the five; unused ones may stand beside it.
        EXPECT_EQ(inputs[i * kFrameInputSize + 2 * kRow], static_cast<float>(i < 5 ? i : i + 7));
      }
      EXPECT_EQ(inputs[4 * kFrameInputSize + 4 * kRow], 6.0f);
    }
  }
}

TEST(PhonemeSource, LearnsNothingOfUnusedSegments) {
  const auto files = OneUtteranceWithAnUnusedSegment();
  PhonemeSource source(English(), files, 0);
  Random random(1);
  source.BeginEpoch(random);
  ASSERT_EQ(source.NumExamples(), 2u);
  std::vector<float> inputs(2 * 624);
  std::vector<std::int64_t> labels(2);
  source.Fill(std::vector<std::uint32_t>{0, 1}, inputs, labels);
  EXPECT_THAT(labels, ::testing::ElementsAre(36, 3));
  EXPECT_EQ(inputs[4 * kRow], 4.0f);  // the pause ends where the unused segment begins
  EXPECT_EQ(inputs[5 * kRow], 0.0f);
  EXPECT_EQ(inputs[624], 12.0f);
}

std::filesystem::path VectorPath(const char* name) {
  return std::filesystem::path(::testing::TempDir()) / name;
}

void WriteVectors(const std::filesystem::path& path, std::initializer_list<int> classes) {
  VectorWriter writer(path, 3, 5);
  for (const int c : classes) {
    writer.Write(std::vector<float>(3, static_cast<float>(c) + 0.5f), c);
  }
  writer.Close();
}

TEST(VectorSource, GivesTheRowsOfAllFiles) {
  WriteVectors(VectorPath("veral3_a.vectors"), {4, 0});
  WriteVectors(VectorPath("veral3_b.vectors"), {2});
  const std::vector<VectorFile> files = {ReadVectorFile(VectorPath("veral3_a.vectors")),
                                         ReadVectorFile(VectorPath("veral3_b.vectors"))};
  VectorSource source(files);
  EXPECT_EQ(source.NumExamples(), 3u);
  EXPECT_EQ(source.NumInputs(), 3);
  EXPECT_EQ(source.NumClasses(), 5);
  std::vector<float> rows(6);
  std::vector<std::int64_t> classes(2);
  source.Fill(std::vector<std::uint32_t>{2, 0}, rows, classes);
  EXPECT_THAT(rows, ::testing::ElementsAre(2.5f, 2.5f, 2.5f, 4.5f, 4.5f, 4.5f));
  EXPECT_THAT(classes, ::testing::ElementsAre(2, 4));
  ASSERT_TRUE(source.HasWeights());
  std::vector<float> weights(10);
  source.FillWeights(std::vector<std::uint32_t>{2, 0}, weights);
  EXPECT_THAT(weights, ::testing::ElementsAre(0, 0, 1, 0, 0, 0, 0, 0, 0, 1));
}

TEST(VectorSource, GivesWeightsOfClasses) {
  VectorWriter writer(VectorPath("veral3_w.vectors"), 1, 2);
  writer.Write(std::vector{1.0f}, std::vector{0.75f, 0.25f});
  writer.Write(std::vector{2.0f}, std::vector{0.125f, 0.875f});
  writer.Close();
  EXPECT_EQ(writer.NumExamples(), 2u);
  const std::vector<VectorFile> files = {ReadVectorFile(VectorPath("veral3_w.vectors"))};
  EXPECT_EQ(files[0].NumExamples(), 2u);
  VectorSource source(files);
  std::vector<float> rows(2);
  std::vector<float> weights(4);
  std::vector<std::int64_t> classes(2);
  source.Fill(std::vector<std::uint32_t>{1, 0}, rows, classes);
  source.FillWeights(std::vector<std::uint32_t>{1, 0}, weights);
  EXPECT_THAT(rows, ::testing::ElementsAre(2.0f, 1.0f));
  EXPECT_THAT(weights, ::testing::ElementsAre(0.125f, 0.875f, 0.75f, 0.25f));
  EXPECT_THAT(classes, ::testing::ElementsAre(1, 0));
}

TEST(VectorSource, RefusesFilesThatDiffer) {
  const std::vector<VectorFile> files = {{3, 5, {}, {}}, {3, 2, {}, {}}};
  EXPECT_THROW(VectorSource{files}, std::runtime_error);
  EXPECT_THROW(VectorSource{std::span<const VectorFile>{}}, std::runtime_error);
}

TEST(VectorFile, RefusesWhatDoesNotFit) {
  VectorWriter writer(VectorPath("veral3_c.vectors"), 3, 2);
  EXPECT_THROW(writer.Write(std::vector<float>(2), 0), std::invalid_argument);
  EXPECT_THROW(writer.Write(std::vector<float>(3), 2), std::invalid_argument);
  EXPECT_THROW(writer.Write(std::vector<float>(3), -1), std::invalid_argument);
  for (const std::vector<float>& weights :
       {std::vector{1.0f}, std::vector{0.5f, 0.25f}, std::vector{1.5f, -0.5f},
        std::vector{std::nanf(""), 1.0f}}) {
    EXPECT_THROW(writer.Write(std::vector<float>(3), weights), std::invalid_argument);
  }
  EXPECT_THROW(VectorWriter(VectorPath("veral3_d.vectors"), 0, 2), std::invalid_argument);
}

TEST(VectorFile, RefusesDamagedFiles) {
  const auto path = VectorPath("veral3_e.vectors");
  std::filesystem::remove(path);
  EXPECT_THROW(ReadVectorFile(path), std::runtime_error);
  std::ofstream(path) << "V3VECT2\n";
  EXPECT_THROW(ReadVectorFile(path), std::runtime_error);
  WriteVectors(path, {1, 2, 3});
  EXPECT_EQ(ReadVectorFile(path).NumExamples(), 3u);
  std::filesystem::resize_file(path, std::filesystem::file_size(path) - 1);
  EXPECT_THROW(ReadVectorFile(path), std::runtime_error);
  WriteVectors(path, {1, 2, 3});
  std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
  file.seekp(-1, std::ios::end);
  file.put('\x40');  // a weight of 2 more
  file.close();
  EXPECT_THROW(ReadVectorFile(path), std::runtime_error);
}

}  // namespace
}  // namespace veral3::training
