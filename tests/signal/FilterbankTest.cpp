#include "signal/Filterbank.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <thread>
#include <tuple>

#include "signal/CSignalProcessing.h"
#include "signal/FatalErrors.h"
#include "signal/HShell.h"
#include "signal/HSigP.h"
#include "support/MessageCapture.h"
#include "support/Vectors.h"

namespace veral3 {
namespace {

constexpr FilterbankOptions kOptions = {.frame_size = 551, .samp_period = 453, .num_chans = 26};

TEST(Filterbank, DesignAgreesWithTheReferenceVectors) {
  const auto vectors = test::LoadVectorJson("mfcc.json");
  const auto& expected = vectors["filterbank"];
  const FilterbankDesign design = DesignFilterbank(kOptions);
  EXPECT_EQ(design.fft_n, expected["fftN"]);
  EXPECT_EQ(design.klo, expected["klo"]);
  EXPECT_EQ(design.khi, expected["khi"]);
  EXPECT_NEAR(design.upper_mel, expected["mel_upper"], 1e-9);
  const std::vector<double> centres = expected["centres_1_27"];
  ASSERT_EQ(design.centres.size(), centres.size() + 1);
  EXPECT_EQ(design.centres[0], 0.0F);
  for (std::size_t j = 0; j < centres.size(); ++j) {
    EXPECT_EQ(design.centres[j + 1], static_cast<float>(centres[j]));
  }
  const std::vector<int> channels = expected["lower_channel_bin_1_512"];
  const std::vector<double> weights = expected["weights_bin_1_512"];
  ASSERT_EQ(design.lower_channels.size(), channels.size() + 1);
  ASSERT_EQ(design.lower_weights.size(), weights.size() + 1);
  for (std::size_t k = 0; k < channels.size(); ++k) {
    EXPECT_EQ(design.lower_channels[k + 1], channels[k]) << k + 1;
    EXPECT_NEAR(static_cast<double>(design.lower_weights[k + 1]), weights[k], 3e-8) << k + 1;
  }
}

TEST(Filterbank, ChannelBinsAreTheRunsOfTheLowerChannels) {
  for (const float lo : {-1.0F, 0.0F, 300.0F}) {
    for (const float hi : {-1.0F, 3400.0F, 1.0e9F}) {
      FilterbankOptions options = kOptions;
      options.lo_freq = lo;
      options.hi_freq = hi;
      const FilterbankDesign design = DesignFilterbank(options);
      EXPECT_EQ(design.channel_bins.front(), design.klo);
      EXPECT_EQ(design.channel_bins.back(), design.khi + 1);
      for (std::size_t ch = 0; ch + 1 < design.channel_bins.size(); ++ch) {
        for (int k = design.channel_bins[ch]; k < design.channel_bins[ch + 1]; ++k) {
          EXPECT_EQ(design.lower_channels[static_cast<std::size_t>(k)], static_cast<int>(ch));
        }
      }
      for (int k = 1; k <= design.fft_n / 2; ++k) {
        if (k >= design.klo && k <= design.khi) continue;
        EXPECT_EQ(design.lower_channels[static_cast<std::size_t>(k)], -1);
        EXPECT_EQ(design.lower_weights[static_cast<std::size_t>(k)], 0.0F);
      }
    }
  }
}

TEST(Filterbank, CutOffs) {
  FilterbankOptions options = kOptions;
  options.lo_freq = 300.0F;
  options.hi_freq = 3400.0F;
  const FilterbankDesign design = DesignFilterbank(options);
  EXPECT_EQ(design.klo, 16);   // 300 x 453e-7 x 1024 + 2.5
  EXPECT_EQ(design.khi, 158);  // 3400 x 453e-7 x 1024 + 0.5
  EXPECT_NEAR(design.lower_mel, 1127.0 * std::log(1.0 + 300.0 / 700.0), 1e-9);
  EXPECT_NEAR(design.upper_mel, 1127.0 * std::log(1.0 + 3400.0 / 700.0), 1e-9);
  // Bins are rounded to the nearest, the lower one a bin further in.
  for (const auto& [hertz, klo, khi] :
       {std::tuple{310.0F, 16, 14}, {313.0F, 17, 15}, {312.0F, 16, 14}, {1.0F, 2, 0}}) {
    options.lo_freq = hertz;  // 310 x 453e-7 x 1024 = 14.38, 312: 14.47, 313: 14.52
    options.hi_freq = -1.0F;
    EXPECT_EQ(DesignFilterbank(options).klo, klo) << hertz;
    options.lo_freq = -1.0F;
    options.hi_freq = hertz;
    EXPECT_EQ(DesignFilterbank(options).khi, khi) << hertz;
  }
  options.lo_freq = 0.0F;
  options.hi_freq = 20000.0F;
  EXPECT_EQ(DesignFilterbank(options).klo, 2);
  EXPECT_EQ(DesignFilterbank(options).khi, 512);
  options.lo_freq = 20000.0F;  // nothing is left
  options.hi_freq = 100.0F;
  const FilterbankDesign empty = DesignFilterbank(options);
  EXPECT_EQ(empty.channel_bins.front(), empty.channel_bins.back());
}

TEST(Filterbank, OptionsThatNobodySets) {
  const FilterbankOptions options;
  EXPECT_EQ(options.frame_size, 0);
  EXPECT_EQ(options.samp_period, 0);
  EXPECT_EQ(options.num_chans, 0);
  EXPECT_EQ(options.lo_freq, -1.0F);
  EXPECT_EQ(options.hi_freq, -1.0F);
  EXPECT_TRUE(options.use_power);
  EXPECT_TRUE(options.take_logs);
  EXPECT_FALSE(options.double_fft);
}

TEST(Filterbank, TransformLength) {
  FilterbankOptions options = kOptions;
  for (const auto& [frame_size, fft_n] : {std::pair{2, 2}, {3, 4}, {512, 512}, {513, 1024}}) {
    options.frame_size = frame_size;
    EXPECT_EQ(DesignFilterbank(options).fft_n, fft_n);
  }
  options.double_fft = true;
  EXPECT_EQ(DesignFilterbank(options).fft_n, 2048);
}

class Wave2FBankTest : public testing::Test {
 protected:
  void SetUp() override {
    FrontEnd();
    CreateHeap(m_heap, "test", HeapKind::kMstak, 1, 0.0F, 100000, 1U << 30);
  }
  Vector Tone(int n, double hertz) {
    const Vector s = CreateVector(m_heap, n);
    for (int i = 1; i <= n; ++i) {
      s[i] = static_cast<float>(1000.0 * std::sin(2.0 * std::numbers::pi * hertz * i / 22050.0));
    }
    return s;
  }
  MemHeap m_heap;
};

// The filterbank from its definition, in double precision.
std::vector<double> Reference(const std::vector<double>& s, const FilterbankOptions& options) {
  const FilterbankDesign design = DesignFilterbank(options);
  std::vector<double> out(static_cast<std::size_t>(options.num_chans) + 2, 0.0);
  for (int k = design.klo; k <= design.khi; ++k) {
    double re = 0.0, im = 0.0;
    for (std::size_t t = 0; t < s.size(); ++t) {
      const double angle = 2.0 * std::numbers::pi * static_cast<double>(t) * (k - 1) / design.fft_n;
      re += s[t] * std::cos(angle);
      im -= s[t] * std::sin(angle);
    }
    double ek = re * re + im * im;
    if (!options.use_power) ek = std::sqrt(ek);
    const auto bin = static_cast<std::size_t>(k);
    const auto ch = static_cast<std::size_t>(design.lower_channels[bin]);
    const double t = static_cast<double>(design.lower_weights[bin]) * ek;
    out[ch] += t;
    out[ch + 1] += ek - t;
  }
  for (double& value : out) {
    if (options.take_logs) value = std::log(std::max(value, 1.0));
  }
  return out;
}

TEST_F(Wave2FBankTest, AgreesWithTheDefinition) {
  for (const bool power : {true, false}) {
    for (const bool logs : {true, false}) {
      FilterbankOptions options = kOptions;
      options.use_power = power;
      options.take_logs = logs;
      options.lo_freq = power ? -1.0F : 200.0F;
      const Vector s = Tone(551, 1234.5);
      const Vector fbank = CreateVector(m_heap, 26);
      FBankInfo info = BuildFilterbank(m_heap, options);
      const std::vector<double> samples(s.Elements().begin(), s.Elements().end());
      const std::vector<double> expected = Reference(samples, options);
      double energy = 0.0;
      Wave2FBank(s, fbank, info, &energy);
      for (int ch = 1; ch <= 26; ++ch) {
        const double value = expected[static_cast<std::size_t>(ch)];
        EXPECT_NEAR(static_cast<double>(fbank[ch]), value, 1e-4 * std::max(1.0, value)) << ch;
      }
      EXPECT_EQ(energy, SumOfSquares(s.Elements()));
    }
  }
}

TEST_F(Wave2FBankTest, SilenceGivesZeroLogarithms) {
  const Vector s = CreateVector(m_heap, 551);
  const Vector fbank = CreateVector(m_heap, 26);
  FBankInfo info = BuildFilterbank(m_heap, kOptions);
  fbank[5] = 7.0F;
  Wave2FBank(s, fbank, info, nullptr);
  for (const float value : fbank.Elements()) EXPECT_EQ(value, 0.0F);
}

TEST_F(Wave2FBankTest, SizesMustAgreeWithTheDesign) {
  FBankInfo info = BuildFilterbank(m_heap, kOptions);
  const Vector s = Tone(551, 100.0), short_s = Tone(550, 100.0);
  const Vector fbank = CreateVector(m_heap, 26), short_fbank = CreateVector(m_heap, 25);
  test::ExpectFatal(6321, "Wave2FBank: frame size mismatch",
                    [&] { Wave2FBank(short_s, fbank, info, nullptr); });
  test::ExpectFatal(6321, "Wave2FBank: num channels mismatch",
                    [&] { Wave2FBank(s, short_fbank, info, nullptr); });
}

TEST_F(Wave2FBankTest, DesignIsSharedByThreads) {
  std::shared_ptr<const FilterbankDesign> theirs;
  std::thread other([&theirs] {
    MemHeap heap;
    CreateHeap(heap, "other", HeapKind::kMstak, 1, 0.0F, 10000, 10000);
    theirs = BuildFilterbank(heap, kOptions).design;
  });
  const FBankInfo mine = BuildFilterbank(m_heap, kOptions);
  other.join();
  EXPECT_EQ(mine.design, theirs);
  FilterbankOptions options = kOptions;
  for (int chans = 2; chans < 40; ++chans) {  // more designs than are kept
    options.num_chans = chans;
    EXPECT_EQ(BuildFilterbank(m_heap, options).design->options, options);
  }
  EXPECT_EQ(*&BuildFilterbank(m_heap, kOptions).design->lower_weights, mine.design->lower_weights);
}

TEST_F(Wave2FBankTest, TraceLines) {
  {
    const test::MessageCapture capture;
    BuildFilterbank(m_heap, kOptions);
    EXPECT_EQ(capture.All(), "");
  }
  // The module reads its settings when it starts, which a process does once: in a child process.
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(
      {
        EndSigP();
        AddConfig({"HSIGP", "TRACE", 1});
        StartSigP();
        const test::MessageCapture capture;
        BuildFilterbank(m_heap, kOptions);
        std::fputs(capture.StandardOutput().c_str(), stderr);
        std::_Exit(0);
      },
      testing::ExitedWithCode(0),
      "FFT passband 2 to 512 out of 1 to 512\nMel passband 0.000000 to 3177.538339\n");
}

}  // namespace
}  // namespace veral3
