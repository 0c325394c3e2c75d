#include "signal/Mfcc.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <random>
#include <thread>

#include "signal/CWaveFrameDef.h"
#include "support/MessageCapture.h"
#include "support/Vectors.h"

namespace veral3 {
namespace {

// Column groups of a row: static cepstra, energy, first derivatives, second derivatives.
int GroupOf(int column) {
  if (column < 12) return 0;
  if (column == 12) return 1;
  return column < 26 ? 2 : 3;
}

TEST(Mfcc, AgreesWithTheReferenceVectors) {
  const auto vectors = test::LoadVectorJson("mfcc.json");
  ASSERT_EQ(vectors["cases"].size(), 12u);
  for (const auto& example : vectors["cases"]) {
    SCOPED_TRACE(example["name"].get<std::string>());
    const auto samples = test::LoadVector<std::int16_t>(example["samples"]);
    const auto expected = test::LoadVector<float>(example["expected"]);
    const std::vector<double> tolerance = example["tol_static_energy_delta_acc"];
    const auto rows = ComputeMfcc(samples.data(), static_cast<std::uint32_t>(samples.size()));
    ASSERT_EQ(rows.size(), example["frames"].get<std::size_t>() * kMfccSize);
    ASSERT_EQ(rows.size(), expected.size());
    double worst[4] = {};
    for (std::size_t i = 0; i < rows.size(); ++i) {
      const int group = GroupOf(static_cast<int>(i % kMfccSize));
      worst[group] = std::max(
          worst[group], std::abs(static_cast<double>(rows[i]) - static_cast<double>(expected[i])));
    }
    for (std::size_t group = 0; group < 4; ++group) {
      EXPECT_LE(worst[group], tolerance[group]) << "column group " << group;
    }
  }
}

std::vector<float> Mfcc(const std::vector<std::int16_t>& samples) {
  return ComputeMfcc(samples.data(), static_cast<std::uint32_t>(samples.size()));
}

std::vector<std::int16_t> Noise(std::size_t n, int amplitude) {
  std::minstd_rand engine(static_cast<unsigned>(n));
  std::vector<std::int16_t> samples(n);
  for (std::int16_t& sample : samples) {
    sample = static_cast<std::int16_t>(static_cast<int>(engine() % 65536) * amplitude / 32768 -
                                       amplitude);
  }
  return samples;
}

TEST(Mfcc, FrameCounts) {
  EXPECT_TRUE(Mfcc({}).empty());
  EXPECT_TRUE(ComputeMfcc(nullptr, 22050).empty());
  for (const auto& [samples, frames] :
       {std::pair{1, 0}, {332, 0}, {550, 0}, {551, 1}, {770, 1}, {771, 2}, {22050, 98}}) {
    EXPECT_EQ(Mfcc(Noise(static_cast<std::size_t>(samples), 1000)).size(),
              static_cast<std::size_t>(frames * kMfccSize))
        << samples;
  }
}

TEST(Mfcc, SamplesAfterTheLastWholeFrameDoNotCount) {
  auto samples = Noise(990, 1000);
  const auto rows = Mfcc(samples);
  for (std::size_t i = 771; i < samples.size(); ++i) samples[i] = 32767;
  EXPECT_EQ(Mfcc(samples), rows);
}

TEST(Mfcc, SilenceIsFlat) {
  const auto rows = Mfcc(std::vector<std::int16_t>(2000, 0));
  for (std::size_t i = 0; i < rows.size(); ++i) EXPECT_EQ(rows[i], i % 39 == 12 ? 1.0F : 0.0F);
  // A constant is silence too: each frame's mean is removed.
  EXPECT_EQ(Mfcc(std::vector<std::int16_t>(2000, -32768)), rows);
  EXPECT_EQ(Mfcc(std::vector<std::int16_t>(2000, 32767)), rows);
}

TEST(Mfcc, OneFrameHasNoDerivatives) {
  const auto rows = Mfcc(Noise(551, 1000));
  ASSERT_EQ(rows.size(), 39u);
  for (std::size_t j = 0; j < 39; ++j) EXPECT_EQ(rows[j], j == 12 ? 1.0F : 0.0F);
}

TEST(Mfcc, LevelOnlyMovesWhatTheMeanTakesAway) {
  // Twice the samples: energies and channels rise by a constant, which no column shows.
  const auto samples = Noise(8000, 5000);
  auto louder = samples;
  for (std::int16_t& sample : louder) sample = static_cast<std::int16_t>(2 * sample);
  const auto rows = Mfcc(samples);
  const auto louder_rows = Mfcc(louder);
  for (std::size_t i = 0; i < rows.size(); ++i) EXPECT_NEAR(louder_rows[i], rows[i], 2e-4F) << i;
}

TEST(Mfcc, EnergyStopsAtTheSilenceFloor) {
  // A loud stretch, then one 60 dB and more below.
  auto samples = Noise(11025, 30000);
  const auto faint = Noise(11025, 20);
  samples.insert(samples.end(), faint.begin(), faint.end());
  const auto rows = Mfcc(samples);
  EXPECT_NEAR(rows[rows.size() - 39 + 12], -0.1512925F, 1e-6F);
  float most = -1.0F;
  for (std::size_t i = 12; i < rows.size(); i += 39) {
    EXPECT_GE(rows[i], -0.1512926F);
    most = std::max(most, rows[i]);
  }
  EXPECT_EQ(most, 1.0F);
}

TEST(Mfcc, CepstraHaveNoMean) {
  const auto rows = Mfcc(Noise(22050, 8000));
  for (std::size_t j = 0; j < 12; ++j) {
    double sum = 0.0;
    for (std::size_t i = j; i < rows.size(); i += 39) sum += static_cast<double>(rows[i]);
    EXPECT_NEAR(sum / 98.0, 0.0, 1e-5);
  }
}

TEST(Mfcc, MoreSamplesThanTheToolkitCounts) {
  const test::MessageCapture capture;
  const std::int16_t sample = 0;  // never read
  EXPECT_TRUE(ComputeMfcc(&sample, 0x80000000U).empty());
  EXPECT_EQ(capture.StandardError(), "ERROR in ComputeMfcc(), num_samples=2147483648\n");
}

TEST(Mfcc, RowsOfAnotherLengthAreRefused) {
  const test::MessageCapture capture;
  EXPECT_TRUE(IsMfccRowLength(39));
  EXPECT_EQ(capture.All(), "");
  EXPECT_FALSE(IsMfccRowLength(26));
  EXPECT_EQ(capture.StandardError(), "Fatal Error: incorrect number of MFCC features=26\n");
}

TEST(Mfcc, ThreadsSideBySideGiveTheBitsOfOne) {
  const auto first = Noise(30000, 3000);
  const auto second = Noise(20001, 20000);
  const auto first_rows = Mfcc(first);
  const auto second_rows = Mfcc(second);
  const auto work = [](const std::vector<std::int16_t>& samples, const std::vector<float>& rows) {
    for (int i = 0; i < 20; ++i) {
      const auto again = Mfcc(samples);
      ASSERT_EQ(again.size(), rows.size());
      EXPECT_EQ(std::memcmp(again.data(), rows.data(), rows.size() * sizeof(float)), 0);
    }
  };
  std::vector<std::thread> threads;
  for (int i = 0; i < 2; ++i) {
    threads.emplace_back(work, first, first_rows);
    threads.emplace_back(work, second, second_rows);
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace veral3
