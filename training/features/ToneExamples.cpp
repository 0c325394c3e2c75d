#include "training/features/ToneExamples.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

#include "core/PitchSegments.h"
#include "core/SyllablePitch.h"
#include "signal/CPraAutoCorrPDA.h"
#include "signal/CWaveFrameDef.h"
#include "signal/FramePitch.h"
#include "signal/HighPassFilter.h"

namespace veral3::training {
namespace {

constexpr int kMaxSegments = 2;  // of a syllable that the engine classifies

// Logarithm of the typical pitch of a track; 0 for one without voice.
double MeanLogPitch(const ToneTrack& track) {
  double sum = 0.0;
  int count = 0;
  for (const FrameSpan span : track.syllables) {
    for (const std::int32_t hz : Slice(std::span<const std::int32_t>(track.pitch), span)) {
      if (hz <= 0) continue;
      sum += std::log(hz);
      ++count;
    }
  }
  return count == 0 ? 0.0 : sum / count;
}

// Whether a syllable's tone is lost with the voiced frames that are below the tracker.
bool IsLost(std::int64_t below, std::int64_t voiced) { return below > 0 && 5 * below >= voiced; }

// How one speaker differs from another through a whole utterance.
struct SpeakerWarp {
  double mean;      // logarithm of the source's pitch, about which it is stretched
  double shift;     // of log pitch
  double range;     // factor of the distance from the mean
  double fall;      // of log pitch from the first frame to the last
  double duration;  // factor
  double noise;     // deviation of log pitch from frame to frame
  bool creaks;
};

struct WarpedSyllable {
  std::vector<std::int32_t> frames;
  bool lost = false;  // below the tracker
};

// `place`: 0 to 1, where in the utterance the syllable begins.
WarpedSyllable WarpSyllable(std::span<const std::int32_t> frames, const SpeakerWarp& speaker,
                            double place, Random& random) {
  const double duration = speaker.duration * random.Uniform(0.8, 1.25);
  const auto length = std::max<std::size_t>(
      1, static_cast<std::size_t>(std::lround(static_cast<double>(frames.size()) * duration)));
  const double shift = speaker.shift - speaker.fall * place + random.Normal() * 0.02;
  const double range = speaker.range * random.Uniform(0.85, 1.2);
  const double slope = random.Normal() * 0.035 * range;
  const double bend = random.Uniform(0.8, 1.25);  // time runs slower first, or last
  std::int32_t lowest = 0;
  for (const std::int32_t hz : frames) {
    if (hz > 0 && (lowest == 0 || hz < lowest)) lowest = hz;
  }
  const bool creaks = speaker.creaks && random.Chance(0.4);
  const double creak_below = lowest * random.Uniform(1.02, 1.15);
  double wander = 0.0;
  std::int64_t voiced = 0;
  std::int64_t below = 0;
  std::vector<std::int32_t> warped(length, 0);
  for (std::size_t i = 0; i < length; ++i) {
    const double part = (static_cast<double>(i) + 0.5) / static_cast<double>(length);
    const auto source = std::min(
        frames.size() - 1,
        static_cast<std::size_t>(std::pow(part, bend) * static_cast<double>(frames.size())));
    wander = 0.9 * wander + random.Normal() * speaker.noise * range;
    const std::int32_t hz = frames[source];
    if (hz <= 0 || (creaks && hz < creak_below)) continue;
    const double log_hz = speaker.mean + (std::log(hz) - speaker.mean) * range + shift +
                          slope * (part - 0.5) + wander;
    const double warped_hz = std::exp(log_hz);
    ++voiced;
    below += warped_hz < kWidestFloor;
    // The tracker follows nothing outside.
    if (warped_hz >= kWidestFloor && warped_hz <= kWidestCeiling) {
      warped[i] = static_cast<std::int32_t>(warped_hz);
    }
  }
  return {std::move(warped), IsLost(below, voiced)};
}

// Moves the boundaries between syllables by up to two frames.
std::vector<FrameSpan> MovedSyllables(const ToneTrack& track, Random& random) {
  std::vector<FrameSpan> spans = track.syllables;
  const auto last_frame = static_cast<int>(track.pitch.size());
  for (std::size_t i = 0; i < spans.size(); ++i) {
    const bool joined = i > 0 && track.syllables[i - 1].end == track.syllables[i].begin;
    const int least = i == 0 ? 0 : spans[i - 1].begin + 1;
    spans[i].begin = std::clamp(spans[i].begin + random.Between(-2, 2), std::min(least, last_frame),
                                std::max(least, spans[i].end - 1));
    if (joined) spans[i - 1].end = spans[i].begin;
    spans[i].end = std::min(std::max(spans[i].end, spans[i].begin), last_frame);
  }
  return spans;
}

template <typename Tracker>
ToneTrack TrackOf(const Utterance& utterance, const Tracker& tracker) {
  ToneTrack track;
  track.syllables = SyllableFrames(utterance);
  std::vector<std::int16_t> samples = utterance.samples;
  HighPassFilter(samples.data(), static_cast<int>(samples.size()), 80.0, double{kSampleRate});
  const auto count = static_cast<std::uint32_t>(samples.size());
  if (count < kFrameLength) return track;
  track.pitch.resize(static_cast<std::size_t>(NumFrames(count)));
  tracker(samples.data(), count, std::span<int>(track.pitch));
  return track;
}

}  // namespace

int ToneClassOf(char tone) {
  if (tone < '1' || tone > '5') throw std::runtime_error("no such tone");
  return (tone - '0') % 5;
}

std::vector<FrameSpan> SyllableFrames(const Utterance& utterance) {
  struct Times {
    std::int32_t start;
    std::int32_t end;
  };
  std::vector<Times> phonemes;
  for (std::size_t i = 0; i < utterance.labels.size(); ++i) {
    if (utterance.labels[i].symbol == '-') continue;
    const std::int32_t end = i + 1 < utterance.labels.size()
                                 ? utterance.labels[i + 1].start
                                 : static_cast<std::int32_t>(utterance.samples.size());
    phonemes.push_back({utterance.labels[i].start, end});
  }
  std::vector<FrameSpan> spans;
  for (std::size_t i = 0; i < utterance.syllables.size(); ++i) {
    const auto first = static_cast<std::size_t>(utterance.syllables[i]);
    const std::size_t next = i + 1 < utterance.syllables.size()
                                 ? static_cast<std::size_t>(utterance.syllables[i + 1])
                                 : phonemes.size();
    if (next <= first || next > phonemes.size()) throw std::runtime_error("syllables are damaged");
    spans.push_back({phonemes[first].start / kFrameShift, phonemes[next - 1].end / kFrameShift});
  }
  return spans;
}

ToneTrack ToneTrackOf(const Utterance& utterance) {
  return TrackOf(utterance, [](const std::int16_t* samples, std::uint32_t n, std::span<int> pitch) {
    CalculateFramePitch(samples, n, pitch);
  });
}

ToneTrack DeepTrackOf(const Utterance& utterance) {
  constexpr double kDeepFloor = 40.0;  // Hz
  return TrackOf(utterance, [](const std::int16_t* samples, std::uint32_t n, std::span<int> pitch) {
    const auto track = CPraAutoCorrPDA().SoundToPitch(samples, n, 1.0 / kSampleRate, 0.0,
                                                      kDeepFloor, kWidestCeiling);
    if (track) MapTrackToFrames(*track, pitch);
  });
}

double MeanPitch(const ToneTrack& track) {
  double sum = 0.0;
  int count = 0;
  for (const FrameSpan span : track.syllables) {
    for (const std::int32_t hz : Slice(std::span<const std::int32_t>(track.pitch), span)) {
      sum += hz;
      count += hz > 0;
    }
  }
  return count == 0 ? 0.0 : sum / count;
}

std::vector<bool> FallBelowTracker(const ToneTrack& deep) {
  std::vector<bool> fall;
  for (const FrameSpan span : deep.syllables) {
    const auto frames = Slice(std::span<const std::int32_t>(deep.pitch), span);
    const auto voiced = std::ranges::count_if(frames, [](std::int32_t hz) { return hz > 0; });
    const auto below =
        std::ranges::count_if(frames, [](std::int32_t hz) { return hz > 0 && hz < kWidestFloor; });
    fall.push_back(IsLost(below, voiced));
  }
  return fall;
}

ToneTrack WarpTrack(const ToneTrack& track, Random& random) {
  SpeakerWarp speaker{};
  speaker.mean = MeanLogPitch(track);
  speaker.shift = random.Uniform(-0.5, 0.5);
  speaker.range = std::exp(random.Uniform(-0.5, 0.8));
  speaker.fall = random.Uniform(-0.05, 0.2);
  speaker.duration = std::exp(random.Uniform(-0.45, 0.45));
  speaker.noise = random.Uniform(0.0, 0.01);
  speaker.creaks = random.Chance(0.3);
  ToneTrack warped;
  const std::vector<FrameSpan> spans = MovedSyllables(track, random);
  const std::span<const std::int32_t> pitch(track.pitch);
  for (std::size_t i = 0; i < spans.size(); ++i) {
    const double place = static_cast<double>(i) / static_cast<double>(spans.size());
    const auto frames = Slice(pitch, spans[i]);
    bool lost = false;
    FrameSpan span{static_cast<int>(warped.pitch.size()), static_cast<int>(warped.pitch.size())};
    if (!frames.empty()) {
      const WarpedSyllable syllable = WarpSyllable(frames, speaker, place, random);
      warped.pitch.insert(warped.pitch.end(), syllable.frames.begin(), syllable.frames.end());
      span.end = static_cast<int>(warped.pitch.size());
      lost = syllable.lost;
    }
    warped.lost.push_back(lost || (i < track.lost.size() && track.lost[i]));
    warped.syllables.push_back(span);
  }
  return warped;
}

std::vector<ToneExample> ToneExamplesOf(const ToneTrack& track, std::string_view tones) {
  if (tones.size() != track.syllables.size())
    throw std::runtime_error("tones are not one a syllable");
  const std::span<const std::int32_t> pitch(track.pitch);
  std::vector<std::int32_t> highest;
  for (const FrameSpan span : track.syllables) highest.push_back(HighestPitch(pitch, span));
  const int average_pitch = AveragePitch(highest);
  const int average_length = AverageLength(track.syllables);
  std::vector<ToneExample> examples;
  for (std::size_t i = 0; i < tones.size(); ++i) {
    if (i < track.lost.size() && track.lost[i]) continue;
    const auto frames = Slice(pitch, track.syllables[i]);
    if (CountPitchSegments(kLanguageChinese, frames).segments > kMaxSegments) continue;
    const int syllable = static_cast<int>(i);
    examples.push_back(
        {ToneFeaturesOf(pitch, track.syllables, average_pitch, average_length, syllable),
         ToneClassOf(tones[i]), syllable});
  }
  return examples;
}

}  // namespace veral3::training
