#include "training/augment/Babble.h"

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <string>

#include "training/augment/Signal.h"
#include "training/augment/SpeechLevel.h"

namespace veral3::training {
namespace {

constexpr int kTries = 50;  // to find a voice that does not speak yet

std::size_t PickSpeaker(std::span<const Utterance> others, std::string_view except,
                        std::span<const std::string_view> taken, Random& random) {
  std::size_t best = 0;
  int best_worth = -1;  // 2 a fresh voice, 1 one that speaks already, 0 the one to be left out
  for (int k = 0; k < kTries && best_worth < 2; ++k) {
    const std::size_t number = random.Below(others.size());
    const std::string_view voice = others[number].voice;
    const int worth = voice == except ? 0 : std::ranges::find(taken, voice) != taken.end() ? 1 : 2;
    if (worth > best_worth) {
      best = number;
      best_worth = worth;
    }
  }
  return best;
}

// Adds one voice to `mix`, from its first sample to its last.
void AddVoice(std::span<const Utterance> others, std::size_t number, std::string_view except,
              std::vector<float>& mix, Random& random) {
  std::size_t done = 0;
  double skip = random.Uniform();  // share of the first utterance that was before
  std::size_t fruitless = 0;       // utterances in a row that gave nothing
  const bool choosy = others[number].voice != except;
  while (done < mix.size() && fruitless <= others.size()) {
    const Utterance& one = others[number];
    number = (number + 1) % others.size();
    ++fruitless;
    if (choosy && one.voice == except) continue;
    const std::vector<float> signal = SignalOf(one);
    const double level = SpeechLevel(signal, one.labels);
    const auto [begin, end] = SpeechEnds(one);
    if (level == 0.0 || begin == end) continue;
    const auto gain = static_cast<float>(1.0 / level);
    const auto passed = static_cast<std::size_t>(skip * static_cast<double>(end - begin));
    skip = 0.0;
    for (std::size_t i = begin + passed; i < end && done < mix.size(); ++i, ++done) {
      mix[done] += gain * signal[i];
    }
    fruitless = 0;
  }
}

}  // namespace

std::vector<float> Babble(std::span<const Utterance> others, std::string_view except, int voices,
                          std::size_t length, Random& random) {
  if (others.empty()) throw std::invalid_argument("babble needs utterances by other voices");
  std::vector<float> mix(length, 0.0F);
  std::vector<std::string_view> taken;
  for (int voice = 0; voice < voices; ++voice) {
    const std::size_t number = PickSpeaker(others, except, taken, random);
    taken.push_back(others[number].voice);
    AddVoice(others, number, except, mix, random);
  }
  return mix;
}

void AddBabble(std::vector<float>& signal, std::span<const Utterance> others,
               std::string_view except, double rms, Random& random) {
  const int voices = random.Between(kFewestBabblers, kMostBabblers);
  const std::vector<float> babble = Babble(others, except, voices, signal.size(), random);
  const double level = RootMeanSquare(babble);
  if (level == 0.0) return;
  const auto gain = static_cast<float>(rms / level);
  for (std::size_t i = 0; i < signal.size(); ++i) signal[i] += gain * babble[i];
}

}  // namespace veral3::training
