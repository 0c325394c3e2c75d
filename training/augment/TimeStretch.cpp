#include "training/augment/TimeStretch.h"

#include <soundtouch/SoundTouch.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "signal/CWaveFrameDef.h"

namespace veral3::training {

std::vector<float> TimeStretch(std::span<const float> signal, double tempo, double pitch) {
  constexpr int kStepMs = 30;
  constexpr int kSearchMs = 15;  // longer than a period of a low voice
  constexpr int kFadeMs = 8;
  soundtouch::SoundTouch stretcher;
  stretcher.setSampleRate(kSampleRate);
  stretcher.setChannels(1);
  stretcher.setSetting(SETTING_SEQUENCE_MS, kStepMs);
  stretcher.setSetting(SETTING_SEEKWINDOW_MS, kSearchMs);
  stretcher.setSetting(SETTING_OVERLAP_MS, kFadeMs);
  stretcher.setTempo(tempo);
  stretcher.setPitch(pitch);
  stretcher.putSamples(signal.data(), static_cast<unsigned>(signal.size()));
  stretcher.flush();

  const auto length =
      static_cast<std::size_t>(std::lround(static_cast<double>(signal.size()) / tempo));
  std::vector<float> out(length + kSampleRate);
  std::size_t done = 0;
  while (const auto got = stretcher.receiveSamples(out.data() + done,
                                                   static_cast<unsigned>(out.size() - done))) {
    done += got;
  }
  out.resize(done);
  // Within a step sounds keep their own pace, so in the middle of it they are half a step's
  // difference off: late where speech is to become faster, early where slower.
  const double step = kStepMs / 1000.0 * kSampleRate / std::max(pitch, 1.0);
  const long late = std::lround(step / 2.0 * (1.0 - pitch / tempo));
  if (late < 0) {
    out.insert(out.begin(), static_cast<std::size_t>(-late), 0.0F);
  } else {
    out.erase(out.begin(), out.begin() + std::min(late, static_cast<long>(out.size())));
  }
  out.resize(length, 0.0F);
  return out;
}

}  // namespace veral3::training
