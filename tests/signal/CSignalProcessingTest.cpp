#include "signal/CSignalProcessing.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdlib>
#include <thread>

#include "signal/FatalErrors.h"
#include "signal/HMem.h"
#include "signal/HSigP.h"
#include "signal/Mfcc.h"
#include "support/MessageCapture.h"
#include "support/Vectors.h"

namespace {

using veral3::IOConfigRec;

// All of an utterance through the operations.
std::vector<float> Rows(const std::vector<std::int16_t>& samples,
                        CSignalProcessing::Switches switches) {
  IOConfigRec config;
  CSignalProcessing& front_end = FrontEnd();
  EXPECT_TRUE(front_end.SetUpUtterance(config, static_cast<int>(samples.size()), CWaveFrameDef(),
                                       switches));
  std::vector<float> rows(static_cast<std::size_t>(front_end.NumFrames() * config.nCols));
  for (int i = 0; i < front_end.NumFrames(); ++i) {
    EXPECT_TRUE(front_end.ConvertFrameSamples(config, samples.data() + i * config.frRate,
                                              rows.data() + i * config.nCols));
  }
  if (config.eNormalise) {
    front_end.NormaliseUtteranceEnergy(config, rows.data(), front_end.NumFrames());
  }
  front_end.AddDerivatives(config, rows.data());
  EXPECT_EQ(config.curPK, config.tgtPK);
  EXPECT_EQ(config.nUsed, 39);
  front_end.ReleaseUtterance();
  return rows;
}

TEST(CSignalProcessing, FrameDefinition) {
  const CWaveFrameDef frame_def;
  EXPECT_EQ(frame_def.sample_rate, 22050);
  EXPECT_EQ(frame_def.bits_per_sample, 16);
  EXPECT_EQ(frame_def.frame_length, 551);
  EXPECT_EQ(frame_def.frame_shift, 220);
}

TEST(CSignalProcessing, SetUpFillsTheRecord) {
  IOConfigRec config;
  ASSERT_TRUE(FrontEnd().SetUpUtterance(config, 22050, CWaveFrameDef(), {1, 1, 1}));
  EXPECT_EQ(config.srcPK, 0);
  EXPECT_EQ(config.srcFF, 12);
  EXPECT_EQ(config.srcSampRate, 453.51473922902494);
  EXPECT_EQ(config.zMeanSrc, 1);
  EXPECT_EQ(config.tgtPK, 0xB46);
  EXPECT_EQ(config.tgtFF, 2);
  EXPECT_EQ(config.tgtSampRate, 99773.24263038549);
  EXPECT_EQ(config.winDur, 249886.62131519275);
  EXPECT_EQ(config.useHam, 1);
  EXPECT_EQ(std::bit_cast<std::uint32_t>(config.preEmph), 0x3F733333u);
  EXPECT_EQ(config.numChans, 26);
  EXPECT_EQ(config.cepLifter, 22);
  EXPECT_EQ(config.numCepCoef, 12);
  EXPECT_EQ(config.rawEnergy, 1);
  EXPECT_EQ(config.eNormalise, 1);
  EXPECT_EQ(config.eScale, 0.1F);
  EXPECT_EQ(config.silFloor, 50.0F);
  EXPECT_EQ(config.delWin, 2);
  EXPECT_EQ(config.accWin, 2);
  EXPECT_EQ(config.nSamples, 22050);
  EXPECT_EQ(config.frSize, 551);
  EXPECT_EQ(config.frRate, 220);
  EXPECT_EQ(config.nCols, 39);
  EXPECT_EQ(FrontEnd().RowLength(), 39);
  EXPECT_EQ(FrontEnd().FrameLength(), 551);
  EXPECT_EQ(FrontEnd().FrameShift(), 220);
  FrontEnd().ReleaseUtterance();

  ASSERT_TRUE(FrontEnd().SetUpUtterance(config, 22050, CWaveFrameDef(), {0, 0, 0}));
  EXPECT_EQ(config.tgtPK, 0x346);
  EXPECT_EQ(config.eNormalise, 0);
  EXPECT_EQ(config.zMeanSrc, 0);
  FrontEnd().ReleaseUtterance();
}

// A record that was used before keeps nothing.
TEST(CSignalProcessing, SetUpStartsAnew) {
  IOConfigRec config;
  ASSERT_TRUE(FrontEnd().SetUpUtterance(config, 22050, CWaveFrameDef(), {1, 1, 1}));
  veral3::MemHeap heap;
  veral3::CreateHeap(heap, "mean", veral3::HeapKind::kMstak, 1, 0.0F, 100, 100);
  config.mean = veral3::CreateVector(heap, 12);
  config.curVol = 3.0F;
  config.simpleDiffs = config.v1Compat = config.doubleFFT = 1;
  config.addDither = 1.0F;
  config.usePower = config.saveCompressed = config.saveWithCRC = 0;
  ASSERT_TRUE(FrontEnd().SetUpUtterance(config, 22050, CWaveFrameDef(), {1, 1, 1}));
  EXPECT_FALSE(config.mean);
  EXPECT_EQ(config.curVol, 0.0F);
  EXPECT_EQ(config.simpleDiffs, 0);
  EXPECT_EQ(config.v1Compat, 0);
  EXPECT_EQ(config.doubleFFT, 0);
  EXPECT_EQ(config.addDither, 0.0F);
  EXPECT_EQ(config.usePower, 1);
  EXPECT_EQ(config.saveCompressed, 1);
  EXPECT_EQ(config.saveWithCRC, 1);
  EXPECT_EQ(config.loFBankFreq, -1.0F);
  EXPECT_EQ(config.hiFBankFreq, -1.0F);
  EXPECT_EQ(config.warpFreq, 1.0F);
  EXPECT_EQ(config.lpcOrder, 12);
  EXPECT_EQ(config.compressFact, 0.33F);
  EXPECT_EQ(config.cepScale, 1.0F);
  FrontEnd().ReleaseUtterance();
}

TEST(CSignalProcessing, FrameCountTruncatesTowardZero) {
  const auto vectors = veral3::test::LoadVectorJson("mfcc.json");
  for (const auto& [samples, frames] : vectors["frame_counts"].items()) {
    IOConfigRec config;
    FrontEnd().SetUpUtterance(config, std::stoi(samples), CWaveFrameDef(), {1, 1, 1});
    EXPECT_EQ(FrontEnd().NumFrames(), frames.get<int>()) << samples;
  }
  for (const int samples : {331, 0, -5, INT32_MIN, INT32_MAX}) {
    IOConfigRec config;
    FrontEnd().SetUpUtterance(config, samples, CWaveFrameDef(), {1, 1, 1});
    EXPECT_EQ(FrontEnd().NumFrames(), (std::int64_t{samples} - 551) / 220 + 1);
  }
  FrontEnd().ReleaseUtterance();
}

TEST(CSignalProcessing, WithoutMeanRemovalOnlyTheCepstraDiffer) {
  const auto vectors = veral3::test::LoadVectorJson("mfcc.json");
  for (const auto& example : vectors["cases"]) {
    SCOPED_TRACE(example["name"].get<std::string>());
    const auto samples = veral3::test::LoadVector<std::int16_t>(example["samples"]);
    const auto plain = Rows(samples, {1, 0, 1});
    const auto removed = Rows(samples, {1, 1, 1});
    ASSERT_EQ(plain.size(), removed.size());
    const std::vector<double> expected = example["no_mean_removal_frame0"];
    const std::vector<double> tolerance = example["tol_static_energy_delta_acc"];
    for (std::size_t j = 0; j < 39; ++j) {
      const std::size_t group = j < 12 ? 0 : j == 12 ? 1 : j < 26 ? 2 : 3;
      EXPECT_NEAR(static_cast<double>(plain[j]), expected[j], tolerance[group]) << j;
    }
    for (std::size_t i = 0; i < plain.size(); ++i) {
      if (i % 39 < 12) continue;
      EXPECT_EQ(plain[i], removed[i]);
    }
    EXPECT_EQ(removed,
              veral3::ComputeMfcc(samples.data(), static_cast<std::uint32_t>(samples.size())));
  }
}

TEST(CSignalProcessing, StoredMeanTakesThePlaceOfTheUtterances) {
  const auto samples = veral3::test::LoadVector<std::int16_t>("mfcc/noise.s16");
  const auto plain = Rows(samples, {1, 0, 1});
  auto rows = plain;
  IOConfigRec config;
  FrontEnd().SetUpUtterance(config, static_cast<int>(samples.size()), CWaveFrameDef(), {1, 1, 1});
  veral3::MemHeap heap;
  veral3::CreateHeap(heap, "mean", veral3::HeapKind::kMstak, 1, 0.0F, 100, 100);
  config.mean = veral3::CreateVector(heap, 12);
  for (int i = 1; i <= 12; ++i) config.mean[i] = static_cast<float>(i);
  FrontEnd().AddDerivatives(config, rows.data());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const std::size_t column = i % 39;
    EXPECT_EQ(rows[i], column < 12 ? plain[i] - static_cast<float>(column + 1) : plain[i]);
  }
  FrontEnd().ReleaseUtterance();
}

// The energy is the last column filled, were it the only one.
TEST(CSignalProcessing, EnergyOfTheLastColumn) {
  IOConfigRec config;
  config.silFloor = 50.0F;
  config.eScale = 0.1F;
  config.nCols = 2;
  const std::vector<float> rows = {20.0F, 7.0F, 10.0F, 9.0F};
  auto copy = rows;
  config.nUsed = 1;
  FrontEnd().NormaliseUtteranceEnergy(config, copy.data(), 2);
  EXPECT_EQ(copy, (std::vector<float>{1.0F, 7.0F, 0.0F, 9.0F}));
  copy = rows;
  config.nUsed = 2;
  FrontEnd().NormaliseUtteranceEnergy(config, copy.data(), 2);
  EXPECT_EQ(copy[0], 20.0F);
  EXPECT_EQ(copy[3], 1.0F);
  EXPECT_NEAR(copy[1], 0.8F, 1e-6F);
  copy = rows;
  config.nUsed = 0;
  FrontEnd().NormaliseUtteranceEnergy(config, copy.data(), 2);
  EXPECT_EQ(copy, rows);
}

// The derivatives of the same static columns, however many columns were filled before.
TEST(CSignalProcessing, DerivativesMayBeAddedAgain) {
  const auto samples = veral3::test::LoadVector<std::int16_t>("mfcc/noise.s16");
  const auto plain = Rows(samples, {1, 0, 1});
  IOConfigRec config;
  FrontEnd().SetUpUtterance(config, static_cast<int>(samples.size()), CWaveFrameDef(), {1, 0, 1});
  auto rows = plain;
  rows.resize(rows.size() + 200);  // room for columns past the last row's
  for (int round = 0; round < 2; ++round) {
    FrontEnd().AddDerivatives(config, rows.data());
    EXPECT_EQ(config.nUsed, 39);
    EXPECT_TRUE(std::equal(plain.begin(), plain.end(), rows.begin()));
  }
  FrontEnd().ReleaseUtterance();
}

// What the target lacks is not added: of a kind without derivatives the other columns stay.
TEST(CSignalProcessing, OnlyWhatTheTargetHasIsAdded) {
  const auto samples = veral3::test::LoadVector<std::int16_t>("mfcc/noise.s16");
  const auto plain = Rows(samples, {1, 0, 1});
  for (const auto& [kind, columns] :
       {std::pair{"MFCC_E_Z", 13}, std::pair{"MFCC_E_D_Z", 26}, std::pair{"MFCC_E", 13}}) {
    IOConfigRec config;
    FrontEnd().SetUpUtterance(config, static_cast<int>(samples.size()), CWaveFrameDef(), {1, 0, 1});
    config.tgtPK = veral3::Str2ParmKind(kind);
    auto rows = plain;
    for (std::size_t i = 0; i < rows.size(); ++i) {
      if (i % 39 >= 13) rows[i] = 77.0F;
    }
    FrontEnd().AddDerivatives(config, rows.data());
    EXPECT_EQ(config.nUsed, columns) << kind;
    EXPECT_EQ(config.curPK, config.tgtPK) << kind;
    const bool zero_mean = (config.tgtPK & veral3::kHasZeroMean) != 0;
    bool moved = false;
    for (std::size_t i = 0; i < rows.size(); ++i) {
      const int column = static_cast<int>(i % 39);
      if (column < 12) {
        moved = moved || rows[i] != plain[i];
      } else {
        EXPECT_EQ(rows[i], column < columns ? plain[i] : 77.0F) << kind << " " << i;
      }
    }
    EXPECT_EQ(moved, zero_mean) << kind;
  }
  FrontEnd().ReleaseUtterance();
}

TEST(CSignalProcessing, ConversionOfAnotherLengthIsRefused) {
  IOConfigRec config;
  FrontEnd().SetUpUtterance(config, 551, CWaveFrameDef(), {1, 1, 1});
  const std::vector<std::int16_t> samples(551, 100);
  float row[39] = {};
  EXPECT_TRUE(FrontEnd().ConvertFrameSamples(config, samples.data(), row));
  EXPECT_EQ(config.unqPK, 0x46);
  EXPECT_EQ(config.nUsed, 13);
  config.nCvrt = 12;
  EXPECT_FALSE(FrontEnd().ConvertFrameSamples(config, samples.data(), row));
  EXPECT_EQ(config.nUsed, 12);  // what was to be converted, not what came
  FrontEnd().ReleaseUtterance();
}

TEST(CSignalProcessing, SamplesAreNotScaled) {
  IOConfigRec config;
  FrontEnd().SetUpUtterance(config, 551, CWaveFrameDef(), {1, 1, 0});
  config.useHam = 0;
  config.preEmph = 0.0F;
  std::vector<std::int16_t> samples(551, -32768);
  samples[550] = 32767;
  float row[39] = {};
  ASSERT_TRUE(FrontEnd().ConvertFrameSamples(config, samples.data(), row));
  EXPECT_EQ(config.s[1], -32768.0F);
  EXPECT_EQ(config.s[551], 32767.0F);
  FrontEnd().ReleaseUtterance();
}

TEST(CSignalProcessing, ReleasedUtteranceHoldsNoMemory) {
  const auto in_buf = [] {
    for (const veral3::MemHeap* heap : veral3::RecordedHeaps()) {
      if (heap->name == "InBuf" && !heap->blocks.empty()) return true;
    }
    return false;
  };
  IOConfigRec config;
  FrontEnd().SetUpUtterance(config, 551, CWaveFrameDef(), {1, 1, 1});
  EXPECT_TRUE(in_buf());
  FrontEnd().ReleaseUtterance();
  EXPECT_FALSE(in_buf());
}

TEST(CSignalProcessing, EachThreadHasItsUtterance) {
  IOConfigRec mine;
  FrontEnd().SetUpUtterance(mine, 771, CWaveFrameDef(), {1, 1, 1});
  const auto heaps = veral3::RecordedHeaps().size();
  std::thread([heaps] {
    IOConfigRec theirs;
    FrontEnd().SetUpUtterance(theirs, 22050, CWaveFrameDef(), {1, 1, 1});
    EXPECT_EQ(FrontEnd().NumFrames(), 98);
    EXPECT_EQ(veral3::RecordedHeaps().size(), heaps + 1);
    // Left without release: the thread's end gives it back.
  }).join();
  EXPECT_EQ(veral3::RecordedHeaps().size(), heaps);
  EXPECT_EQ(FrontEnd().NumFrames(), 2);
  EXPECT_EQ(mine.s.Size(), 551);
  FrontEnd().ReleaseUtterance();
}

// What ends the toolkit happens in a child process, since it can't be brought up again.
TEST(CSignalProcessingDeathTest, SecondStartEndsTheProcess) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(
      {
        { const CSignalProcessing first; }
        const CSignalProcessing second;
      },
      testing::ExitedWithCode(static_cast<int>(0xFF)), "");
}

TEST(CSignalProcessingDeathTest, DestructionDeletesTheHeaps) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(
      {
        FrontEnd();
        const auto names = [] {
          std::string all;
          for (const veral3::MemHeap* heap : veral3::RecordedHeaps()) all += heap->name + ",";
          return all;
        };
        std::string seen = names();
        { const CSignalProcessing another; }
        seen += "|" + names();
        std::fputs(seen.c_str(), stderr);
        std::_Exit(0);
      },
      testing::ExitedWithCode(0), "^InBuf,sigpHeap,Global Stack,\\|$");
}

TEST(CSignalProcessingDeathTest, NotReady) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  class NotReady : public CSignalProcessing {
   public:
    NotReady() { m_bReady = 0; }
  };
  EXPECT_EXIT(
      {
        NotReady front_end;
        IOConfigRec config;
        const bool done = front_end.SetUpUtterance(config, 22050, CWaveFrameDef(), {1, 1, 1});
        std::_Exit(!done && config.nCols == 0 ? 7 : 1);
      },
      testing::ExitedWithCode(7), "");
}

}  // namespace
