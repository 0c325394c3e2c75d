#include "signal/NoiseReduction.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <random>
#include <thread>
#include <vector>

#include "signal/WebRtcNs.h"
#include "support/MessageCapture.h"

// The suppressor's operations pass through here, so that a test can make the start fail and count
// the instances.
namespace {

std::atomic<bool> g_init_fails = false;
std::atomic<int> g_live_instances = 0;
std::atomic<std::uint32_t> g_rate = 0;

template <typename F>
F Real(const char* name) {
  return reinterpret_cast<F>(dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" {

__attribute__((visibility("default"))) NsHandle* WebRtcNs_Create() {
  ++g_live_instances;
  return Real<NsHandle* (*)()>("WebRtcNs_Create")();
}
__attribute__((visibility("default"))) void WebRtcNs_Free(NsHandle* instance) {
  --g_live_instances;
  Real<void (*)(NsHandle*)>("WebRtcNs_Free")(instance);
}
__attribute__((visibility("default"))) int WebRtcNs_Init(NsHandle* instance, std::uint32_t rate) {
  g_rate = rate;
  if (g_init_fails) return -1;
  return Real<int (*)(NsHandle*, std::uint32_t)>("WebRtcNs_Init")(instance, rate);
}
}

namespace veral3 {
namespace {

using Samples = std::vector<std::int16_t>;

Samples Noise(std::size_t n, int amplitude) {
  std::minstd_rand engine(3);
  Samples samples(n);
  for (std::int16_t& sample : samples) {
    sample = static_cast<std::int16_t>(
        static_cast<int>(engine() % static_cast<unsigned>(2 * amplitude + 1)) - amplitude);
  }
  return samples;
}

int Reduce(Samples& samples, int policy) {
  return NoiseReduction(samples.data(), static_cast<std::uint32_t>(samples.size()), policy);
}

double Power(const Samples& samples, std::size_t from) {
  double sum = 0.0;
  for (std::size_t i = from; i < samples.size(); ++i) {
    const double x = samples[i];
    sum += x * x;
  }
  return sum / static_cast<double>(samples.size() - from);
}

TEST(NoiseReduction, NothingToDo) {
  std::int16_t sample = 7;
  EXPECT_EQ(NoiseReduction(nullptr, 160, 1), -1);
  EXPECT_EQ(NoiseReduction(&sample, 0, 1), -1);
  Samples samples = Noise(159, 1000);
  const Samples before = samples;
  EXPECT_EQ(Reduce(samples, 1), 1);
  EXPECT_EQ(samples, before);
}

TEST(NoiseReduction, OnlyWholeBlocksChange) {
  Samples samples = Noise(160 * 100 + 159, 1000);
  const Samples before = samples;
  EXPECT_EQ(Reduce(samples, 1), 1);
  EXPECT_EQ(Samples(samples.end() - 159, samples.end()), Samples(before.end() - 159, before.end()));
  EXPECT_NE(Samples(samples.begin(), samples.end() - 159),
            Samples(before.begin(), before.end() - 159));
}

TEST(NoiseReduction, StrongerPoliciesLeaveLess) {
  const Samples noise = Noise(160 * 400, 1000);
  double power = Power(noise, 160 * 300);
  for (int policy = 0; policy <= 3; ++policy) {
    Samples samples = noise;
    EXPECT_EQ(Reduce(samples, policy), 1);
    const double left = Power(samples, 160 * 300);
    EXPECT_LT(left, power) << policy;
    power = left;
  }
  EXPECT_EQ(g_rate, 16000u);
}

TEST(NoiseReduction, ToneOverNoiseIsKept) {
  Samples samples = Noise(160 * 600, 100);
  for (std::size_t i = 160 * 300; i < samples.size(); ++i) {
    const double tone = 8000.0 * std::sin(0.1 * static_cast<double>(i));
    samples[i] = static_cast<std::int16_t>(samples[i] + static_cast<int>(tone));
  }
  const double before = Power(samples, 160 * 310);
  ASSERT_EQ(Reduce(samples, 2), 1);
  EXPECT_GT(Power(samples, 160 * 310), 0.5 * before);
}

TEST(NoiseReduction, FullScaleIsNotWrapped) {
  Samples samples(160 * 50);
  for (std::size_t i = 0; i < samples.size(); ++i) {
    samples[i] = i / 50 % 2 == 0 ? std::int16_t{32767} : std::int16_t{-32768};
  }
  const Samples before = samples;
  ASSERT_EQ(Reduce(samples, 0), 1);
  // A wrapped sample would turn up with the other sign within a plateau. The output is delayed by
  // the analysis window's overlap of 96 samples.
  for (std::size_t i = 200; i < samples.size(); ++i) {
    if ((i - 96) % 50 < 10 || (i - 96) % 50 > 40) continue;
    EXPECT_GT(before[i - 96] > 0 ? samples[i] : -samples[i], 0) << i;
  }
}

TEST(NoiseReduction, BadPolicyChangesNothing) {
  for (const int policy : {-1, 4, 1000}) {
    Samples samples = Noise(1600, 1000);
    const Samples before = samples;
    const test::MessageCapture capture;
    EXPECT_EQ(Reduce(samples, policy), -1);
    EXPECT_EQ(capture.StandardOutput(), "WebRtcNs_set_policy fail\n");
    EXPECT_EQ(samples, before);
  }
  EXPECT_EQ(g_live_instances, 0);
}

TEST(NoiseReduction, FailedStartChangesNothing) {
  Samples samples = Noise(1600, 1000);
  const Samples before = samples;
  g_init_fails = true;
  {
    const test::MessageCapture capture;
    EXPECT_EQ(Reduce(samples, 1), -1);
    EXPECT_EQ(capture.StandardOutput(), "WebRtcNs_Init fail\n");
  }
  g_init_fails = false;
  EXPECT_EQ(samples, before);
  EXPECT_EQ(g_live_instances, 0);
}

TEST(NoiseReduction, SameBitsEveryTimeAndOnAnyThread) {
  Samples first = Noise(160 * 200, 3000);
  Samples second = first, third = first;
  EXPECT_EQ(Reduce(first, 2), 1);
  std::thread other([&second] { EXPECT_EQ(Reduce(second, 2), 1); });
  EXPECT_EQ(Reduce(third, 2), 1);
  other.join();
  EXPECT_EQ(first, second);
  EXPECT_EQ(first, third);
  EXPECT_EQ(g_live_instances, 0);
}

}  // namespace
}  // namespace veral3
