#include "signal/CPraAutoCorrPDA.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <new>
#include <string>
#include <vector>

#include "common/MessageWriter.h"
#include "signal/PitchPath.h"
#include "signal/ShortTermAutocorrelation.h"
#include "signal/SincInterpolation.h"

namespace {

using veral3::Message;
using veral3::MessageStream;

constexpr double kLowGap = 60.0;            // Hz
constexpr double kHighGap = 50.0;           // Hz, deliberately another
constexpr double kLongestWindow = 1 << 28;  // samples, whose transform's length still is an int

// As printf's %.8g and %f, whatever locale the application has set.
std::string Formatted(double value, std::chars_format format, int precision) {
  std::string text(400, '\0');  // room for every double
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value, format, precision);
  text.resize(static_cast<std::size_t>(end.ptr - text.data()));
  return text;
}

// The distance of the farthest sample from the mean of all.
double GlobalPeak(std::span<const std::int16_t> samples) {
  std::int64_t total = 0;
  for (const std::int16_t sample : samples) total += sample;
  const double mean = static_cast<double>(total) / static_cast<double>(samples.size());
  const auto [least, greatest] = std::minmax_element(samples.begin(), samples.end());
  return std::max(*greatest - mean, mean - *least);
}

// Finds the candidates of one frame after another.
class CandidateSearch {
 public:
  CandidateSearch(double dx, double ceiling, const CPraAutoCorrPDA::Settings& settings,
                  std::size_t max_candidates)
      : m_dx(dx), m_ceiling(ceiling), m_settings(settings), m_max_candidates(max_candidates) {}

  // The unvoiced candidate and the maxima of `symmetric` that are periods within the range.
  std::span<const CPraPitchCandidate> Find(std::span<const double> symmetric) {
    const int reach = static_cast<int>(symmetric.size() / 2);
    const double* const r = symmetric.data() + reach;
    const double shortest = 1.0 / (m_ceiling * m_dx);
    const int first = shortest < 2.0 ? 2 : shortest < reach ? static_cast<int>(shortest) : reach;
    const double enough = 0.5 * m_settings.voicing_threshold;
    FindNone();
    for (int lag = first; lag < reach; ++lag) {
      if (r[lag] > enough && r[lag] > r[lag - 1] && r[lag] >= r[lag + 1]) {
        Add(veral3::RefineMaximum(symmetric, lag));
      }
    }
    return m_candidates;
  }

  // The unvoiced candidate alone.
  std::span<const CPraPitchCandidate> FindNone() {
    m_candidates.assign(1, CPraPitchCandidate());
    return m_candidates;
  }

 private:
  void Add(const veral3::LagMaximum& maximum) {
    const double frequency = 1.0 / (maximum.lag * m_dx);
    if (!(frequency >= m_settings.floor && frequency <= m_ceiling)) return;
    // Dividing by the window's autocorrelation can lift a maximum over 1, which no correlation
    // reaches: as far above as below counts the same.
    const double strength = maximum.value > 1.0 ? 1.0 / maximum.value : maximum.value;
    const CPraPitchCandidate candidate(frequency, strength);
    if (m_candidates.size() < m_max_candidates) {
      m_candidates.push_back(candidate);
      return;
    }
    const auto weakest = std::min_element(
        m_candidates.begin() + 1, m_candidates.end(),
        [this](const auto& a, const auto& b) { return LocalStrength(a) < LocalStrength(b); });
    if (weakest != m_candidates.end() && LocalStrength(*weakest) < LocalStrength(candidate)) {
      *weakest = candidate;
    }
  }

  // What decides which candidates are kept: the shorter of two equal periods counts more.
  double LocalStrength(const CPraPitchCandidate& candidate) const {
    return candidate.strength + m_settings.octave_cost * std::log2(candidate.frequency);
  }

  double m_dx;
  double m_ceiling;
  const CPraAutoCorrPDA::Settings& m_settings;
  std::size_t m_max_candidates;
  std::vector<CPraPitchCandidate> m_candidates;
};

}  // namespace

std::unique_ptr<CPraPitch> CPraAutoCorrPDA::SoundToPitch(const std::int16_t* samples,
                                                         std::uint32_t n, double dx,
                                                         double time_step, double floor,
                                                         double ceiling) const {
  Settings settings;
  settings.time_step = time_step;
  settings.floor = floor;
  settings.ceiling = ceiling;
  return Analyze({samples, samples ? n : 0U}, dx, settings);
}

std::unique_ptr<CPraPitch> CPraAutoCorrPDA::Analyze(std::span<const std::int16_t> samples,
                                                    double dx, const Settings& settings) const {
  try {
    return MakeTrack(samples, dx, settings);
  } catch (const std::bad_alloc&) {
    // Without a track the recording would read as unvoiced: the caller must hear of it.
    Message(MessageStream::kError) << "Pitch not created.\n";
    throw;
  }
}

std::unique_ptr<CPraPitch> CPraAutoCorrPDA::MakeTrack(std::span<const std::int16_t> samples,
                                                      double dx, const Settings& settings) const {
  const double floor = settings.floor;
  const double duration = static_cast<double>(samples.size()) * dx;
  const double lowest_floor = duration > 0.0 && std::isfinite(duration)
                                  ? settings.periods_per_window / duration
                                  : std::numeric_limits<double>::infinity();
  if (!(lowest_floor <= floor) || !std::isfinite(lowest_floor)) {
    Message(MessageStream::kError)
        << "For this Sound, the parameter 'minimum pitch'\nmay not be less than "
        << Formatted(lowest_floor, std::chars_format::general, 8) << " Hz.\n";
    return nullptr;
  }

  // The window holds an even number of samples, one at least of room on either side.
  const double window_length = settings.periods_per_window / floor;
  const int half = static_cast<int>(std::min(window_length / dx, kLongestWindow)) / 2 - 1;
  if (half < 2) {
    Message(MessageStream::kError) << "Analysis window too short.\n";
    return nullptr;
  }
  if (duration < window_length) {
    Message(MessageStream::kError)
        << "Wav duration " << Formatted(duration, std::chars_format::fixed, 6)
        << " shorter than window length " << Formatted(window_length, std::chars_format::fixed, 6)
        << ".\n";
    return nullptr;
  }

  const double ceiling = std::min(settings.ceiling, 0.5 / dx);
  std::int32_t max_candidates = settings.max_candidates;
  if (ceiling / floor > max_candidates) {
    max_candidates = static_cast<std::int32_t>(ceiling / floor);
  }
  double step =
      settings.time_step > 0.0 ? settings.time_step : settings.periods_per_window / floor / 4.0;
  step = std::clamp(step, dx, duration);
  const double num_frames = std::floor((duration - window_length) / step) + 1.0;
  if (num_frames > std::numeric_limits<std::int32_t>::max()) throw std::bad_alloc();

  auto pitch = std::make_unique<CPraPitch>();
  pitch->xmin = 0.0;
  pitch->xmax = duration;
  pitch->nx = static_cast<std::int32_t>(num_frames);
  pitch->dx = step;
  pitch->x1 = -dx / 2.0 + duration / 2.0 - pitch->nx * step / 2.0 + step / 2.0;
  pitch->ceiling = ceiling;
  pitch->floor = floor;
  pitch->max_candidates = max_candidates;
  pitch->frames.resize(static_cast<std::size_t>(pitch->nx));

  const double global_peak = GlobalPeak(samples);
  veral3::ShortTermAutocorrelation autocorrelation(half);
  CandidateSearch search(dx, ceiling, settings, static_cast<std::size_t>(max_candidates));
  const auto piece_length = static_cast<std::size_t>(autocorrelation.PieceLength());
  const auto last_start = static_cast<double>(samples.size() - piece_length);
  for (std::size_t i = 0; i < pitch->frames.size(); ++i) {
    // As many samples before the centre as after it.
    const double centre = pitch->x1 + static_cast<double>(i) * step;
    const double start = std::clamp(std::floor(centre / dx) + 1.0 - half, 0.0, last_start);
    const double peak =
        autocorrelation.Compute(samples.subspan(static_cast<std::size_t>(start), piece_length));
    CPraPitchFrame& frame = pitch->frames[i];
    frame.intensity = global_peak > 0.0 ? std::min(peak / global_peak, 1.0) : 0.0;
    StoreCandidates(frame,
                    peak > 0.0 ? search.Find(autocorrelation.Symmetric()) : search.FindNone());
  }

  veral3::PitchPathSettings path;
  path.silence_threshold = settings.silence_threshold;
  path.voicing_threshold = settings.voicing_threshold;
  path.octave_cost = settings.octave_cost;
  path.octave_jump_cost = settings.octave_jump_cost;
  path.voiced_unvoiced_cost = settings.voiced_unvoiced_cost;
  path.ceiling = ceiling;
  veral3::FindPitchPath(*pitch, path);
  return pitch;
}

void CPraAutoCorrPDA::StoreCandidates(CPraPitchFrame& frame,
                                      std::span<const CPraPitchCandidate> candidates) const {
  frame.candidates.reserve(candidates.size() + 1);
  frame.candidates.resize(1);
  frame.candidates.insert(frame.candidates.end(), candidates.begin(), candidates.end());
}

bool CPraAutoCorrPDA::EstimatePitchRange(const CPraPitch& pitch, double& low, double& high) const {
  std::vector<double> frequencies;
  frequencies.reserve(pitch.frames.size());
  for (const CPraPitchFrame& frame : pitch.frames) {
    if (pitch.Accepts(frame.Frequency())) frequencies.push_back(frame.Frequency());
  }
  std::sort(frequencies.begin(), frequencies.end());
  const veral3::PitchRange range = veral3::EstimateRangeOfSorted(frequencies);
  low = range.low;
  high = range.high;
  return range.gap_found;
}

namespace veral3 {

PitchRange EstimateRangeOfSorted(std::span<const double> frequencies) {
  const std::size_t n = frequencies.size();
  if (n == 0) return {};
  PitchRange range{frequencies.front(), frequencies.back(), false};
  for (std::size_t i = n / 4; i >= 1; --i) {
    if (frequencies[i] - frequencies[i - 1] > kLowGap) {
      range.low = frequencies[i];
      range.gap_found = true;
      break;
    }
  }
  for (std::size_t j = 3 * n / 4 + 1; j < n; ++j) {
    if (frequencies[j] - frequencies[j - 1] > kHighGap) {
      range.high = frequencies[j - 1];
      range.gap_found = true;
      break;
    }
  }
  return range;
}

}  // namespace veral3
