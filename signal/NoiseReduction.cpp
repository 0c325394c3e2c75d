#include "signal/NoiseReduction.h"

#include <array>
#include <cmath>
#include <memory>

#include "common/MessageWriter.h"
#include "signal/WebRtcNs.h"

namespace veral3 {
namespace {

// The suppressor refuses 22050 Hz. Its configuration for 16000 Hz is the one meant: blocks of 160
// samples with an analysis of 256 points.
constexpr std::uint32_t kSuppressorRate = 16000;
constexpr std::uint32_t kBlock = 160;

struct FreeInstance {
  void operator()(NsHandle* instance) const { WebRtcNs_Free(instance); }
};

std::int16_t Rounded(float x) {
  if (std::isnan(x)) return 0;
  if (x >= 32767.0F) return 32767;
  if (x <= -32768.0F) return -32768;
  return static_cast<std::int16_t>(std::lround(x));
}

}  // namespace

int NoiseReduction(std::int16_t* samples, std::uint32_t num_samples, int policy) {
  if (samples == nullptr || num_samples == 0) return -1;
  const std::unique_ptr<NsHandle, FreeInstance> suppressor(WebRtcNs_Create());
  if (WebRtcNs_Init(suppressor.get(), kSuppressorRate) != 0) {
    Message(MessageStream::kOutput) << "WebRtcNs_Init fail\n";
    return -1;
  }
  if (WebRtcNs_set_policy(suppressor.get(), policy) != 0) {
    Message(MessageStream::kOutput) << "WebRtcNs_set_policy fail\n";
    return -1;
  }
  std::array<float, kBlock> block;
  const float* input = block.data();
  float* output = block.data();
  for (std::uint32_t left = num_samples; left >= kBlock; left -= kBlock, samples += kBlock) {
    for (std::size_t i = 0; i < kBlock; ++i) block[i] = samples[i];
    WebRtcNs_Analyze(suppressor.get(), block.data());
    WebRtcNs_Process(suppressor.get(), &input, 1, &output);
    for (std::size_t i = 0; i < kBlock; ++i) samples[i] = Rounded(block[i]);
  }
  return 1;
}

}  // namespace veral3
