#include "training/augment/Conditions.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "training/augment/Augment.h"
#include "training/augment/Babble.h"
#include "training/augment/BandPass.h"
#include "training/augment/Clipping.h"
#include "training/augment/Codec.h"
#include "training/augment/Hum.h"
#include "training/augment/Padding.h"
#include "training/augment/RoomResponse.h"
#include "training/augment/Signal.h"
#include "training/augment/SpeechLevel.h"
#include "training/augment/TimeStretch.h"

namespace veral3::training {
namespace {

Utterance Padded(const Utterance& clean, double seconds, Random& random) {
  const std::size_t length = SamplesOf(seconds);
  const double noise = random.Chance(0.5) ? 0.0 : random.Uniform(1.0, 8.0);
  return WithEdges(clean, {length, length, noise}, random);
}

Utterance Stretched(const Utterance& clean, double tempo, double pitch) {
  Utterance result = WithSignal(clean, TimeStretch(SignalOf(clean), tempo, pitch));
  StretchLabels(result.labels, 1.0 / tempo);
  return result;
}

void Attenuate(std::vector<float>& signal, double peak) {
  float loudest = 0.0F;
  for (const float x : signal) loudest = std::max(loudest, std::abs(x));
  if (loudest == 0.0F) return;
  const auto gain = static_cast<float>(peak / double{loudest});
  for (float& x : signal) x *= gain;
}

}  // namespace

std::string_view NameOf(Condition condition) {
  switch (condition) {
    case Condition::kClean:
      return "clean";
    case Condition::kWhite20:
      return "white 20 dB";
    case Condition::kWhite10:
      return "white 10 dB";
    case Condition::kWhite5:
      return "white 5 dB";
    case Condition::kBabble20:
      return "babble 20 dB";
    case Condition::kBabble10:
      return "babble 10 dB";
    case Condition::kBabble5:
      return "babble 5 dB";
    case Condition::kHum:
      return "hum -20 dB";
    case Condition::kReverb:
      return "reverb";
    case Condition::kTelephone:
      return "telephone";
    case Condition::kOpus12:
      return "Opus 12 kbit/s";
    case Condition::kMp3At32:
      return "MP3 32 kbit/s";
    case Condition::kClipping6:
      return "clipping 6 dB";
    case Condition::kQuiet40:
      return "level -40 dB";
    case Condition::kPadding10ms:
      return "padding 10 ms";
    case Condition::kPadding3s:
      return "padding 3 s";
    case Condition::kPitchUp400:
      return "+400 cents";
    case Condition::kTempo07:
      return "tempo 0.7";
    case Condition::kTempo15:
      return "tempo 1.5";
  }
  return "";
}

Utterance UnderCondition(const Utterance& clean, Condition condition,
                         std::span<const Utterance> others, Random& random) {
  std::vector<float> signal = SignalOf(clean);
  const double level = SpeechLevel(signal, clean.labels);
  const auto with_white = [&](double db) {
    AddNoise(signal, 0.0, level * FactorOfDb(-db), random);
    return WithSignal(clean, signal);
  };
  const auto with_babble = [&](double db) {
    AddBabble(signal, others, clean.voice, level * FactorOfDb(-db), random);
    return WithSignal(clean, signal);
  };
  switch (condition) {
    case Condition::kClean:
      return clean;
    case Condition::kWhite20:
      return with_white(20.0);
    case Condition::kWhite10:
      return with_white(10.0);
    case Condition::kWhite5:
      return with_white(5.0);
    case Condition::kBabble20:
      return with_babble(20.0);
    case Condition::kBabble10:
      return with_babble(10.0);
    case Condition::kBabble5:
      return with_babble(5.0);
    case Condition::kHum:
      AddHum(signal, level * FactorOfDb(-20.0), random);
      return WithSignal(clean, signal);
    case Condition::kReverb: {
      const double rt60 = random.Uniform(0.3, 0.8);
      Reverberate(signal, RoomResponse(rt60, random.Uniform(0.0, 8.0), random));
      return WithSignal(clean, signal);
    }
    case Condition::kTelephone:
      BandPass(signal, 300.0, 3400.0);
      return WithSignal(clean, signal);
    case Condition::kOpus12:
      return WithSignal(clean, ThroughCodec(signal, Codec::kOpus, 12.0));
    case Condition::kMp3At32:
      return WithSignal(clean, ThroughCodec(signal, Codec::kMp3, 32.0));
    case Condition::kClipping6:
      Clip(signal, 6.0);
      return WithSignal(clean, signal);
    case Condition::kQuiet40:
      Attenuate(signal, 32768.0 * FactorOfDb(-40.0));
      return WithSignal(clean, signal);
    case Condition::kPadding10ms:
      return Padded(clean, 0.01, random);
    case Condition::kPadding3s:
      return Padded(clean, 3.0, random);
    case Condition::kPitchUp400:
      return Stretched(clean, 1.0, std::exp2(4.0 / 12.0));
    case Condition::kTempo07:
      return Stretched(clean, 0.7, 1.0);
    case Condition::kTempo15:
      return Stretched(clean, 1.5, 1.0);
  }
  return clean;
}

}  // namespace veral3::training
