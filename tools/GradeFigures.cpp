#include "tools/GradeFigures.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

#include "tools/HtmlText.h"
#include "tools/Numbers.h"

namespace veral3::tools {
namespace {

using Span = DrawnRecording::Span;

constexpr int kWidth = 1000;  // of a figure's own coordinates
constexpr int kHeight = 100;
constexpr double kMiddle = 50.0;
constexpr int kWaveColumns = 400;  // of a whole utterance; a word takes its part of them
constexpr int kMinWaveColumns = 60;
constexpr double kTopOfCurve = 229.0;

std::string Opening(const std::string& css_class, const std::string& label) {
  return "<svg class=\"" + css_class + "\" viewBox=\"0 0 " + std::to_string(kWidth) + " " +
         std::to_string(kHeight) + "\" preserveAspectRatio=\"none\" role=\"img\" aria-label=\"" +
         HtmlText(label) + "\">";
}

std::string Point(double x, double y) {
  std::string text = Fixed(x, 1);
  text += ",";
  return text += Fixed(y, 1);
}

int LengthOf(Span span) { return std::max(span.end - span.start, 0); }

// The span's part that lies in the recording.
Span Inside(const DrawnRecording& recording, Span span) {
  const int size = static_cast<int>(recording.samples.size());
  const int start = std::clamp(span.start, 0, size);
  return {start, std::clamp(span.end, start, size)};
}

int Loudest(const DrawnRecording& recording) {
  const Span span = Inside(recording, recording.utterance);
  int loudest = 0;
  for (int i = span.start; i < span.end; ++i) {
    loudest = std::max(loudest, std::abs(int{recording.samples[static_cast<std::size_t>(i)]}));
  }
  return loudest;
}

// 0 to 1 of the utterance.
double PlaceIn(const DrawnRecording& recording, int sample) {
  const int length = LengthOf(recording.utterance);
  if (length == 0) return 0.0;
  return std::clamp(static_cast<double>(sample - recording.utterance.start) / length, 0.0, 1.0);
}

std::string Boundary(double place) {
  const std::string x = Fixed(place * kWidth, 1);
  return "<line class=\"edge\" x1=\"" + x + "\" y1=\"0\" x2=\"" + x + "\" y2=\"100\"/>";
}

// What of a curve's points is drawn: for pitch from the lowest voiced to the highest point, but no
// less than a fifth of the latter, so that a level voice looks level; for loudness everything.
struct Range {
  double low = 0.0;
  double high = kTopOfCurve;
};

Range RangeOf(const std::vector<int>& points, Curve curve) {
  if (curve == Curve::kIntensity) return {};
  int lowest = 0;
  int highest = 0;
  for (const int point : points) {
    if (point <= 0) continue;
    lowest = lowest == 0 ? point : std::min(lowest, point);
    highest = std::max(highest, point);
  }
  const double middle = 0.5 * (lowest + highest);
  const double half = 0.5 * std::max(highest - lowest, std::max(highest / 5, 1));
  return {middle - half, middle + half};
}

// The curve's stretches, each a list of points in 0 to 1; of a pitch curve the voiced ones.
std::vector<std::vector<std::pair<double, double>>> StretchesOf(const DrawnRecording& recording,
                                                                Curve curve) {
  const bool is_pitch = curve == Curve::kPitch;
  const std::vector<int>& points =
      is_pitch ? recording.contours.pitch : recording.contours.intensity;
  const Range range = RangeOf(points, curve);
  std::vector<std::vector<std::pair<double, double>>> stretches;
  bool goes_on = false;
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (is_pitch && points[i] <= 0) {
      goes_on = false;
      continue;
    }
    if (!std::exchange(goes_on, true)) stretches.emplace_back();
    const double share = std::clamp((points[i] - range.low) / (range.high - range.low), 0.0, 1.0);
    // Loudness as amplitude: energies of soft sounds would all lie on the ground.
    stretches.back().emplace_back(static_cast<double>(i) / static_cast<double>(points.size()),
                                  is_pitch ? share : std::sqrt(share));
  }
  return stretches;
}

template <typename Place>
std::string CurveOf(const DrawnRecording& recording, Curve curve, const char* css_class,
                    Place place) {
  std::string text;
  for (const auto& stretch : StretchesOf(recording, curve)) {
    text += "<polyline class=\"" + std::string(css_class) + "\" points=\"";
    for (const auto& [time, height] : stretch) {
      text += Point(place(time) * kWidth, 95.0 - 90.0 * height) + " ";
    }
    // A single point would draw nothing.
    const auto& [time, height] = stretch.back();
    text += Point(place(time) * kWidth + 4.0, 95.0 - 90.0 * height) + "\"/>";
  }
  return text;
}

}  // namespace

Envelope EnvelopeOf(const DrawnRecording& recording, Span span, int columns) {
  Envelope envelope;
  const Span inside = Inside(recording, span);
  const double scale = std::max(Loudest(recording), 1);
  const auto length = static_cast<std::int64_t>(LengthOf(inside));
  for (int column = 0; column < columns; ++column) {
    const auto from = inside.start + static_cast<int>(length * column / columns);
    const auto to = inside.start + static_cast<int>(length * (column + 1) / columns);
    int low = 0;
    int high = 0;
    for (int i = from; i < to; ++i) {
      low = std::min(low, int{recording.samples[static_cast<std::size_t>(i)]});
      high = std::max(high, int{recording.samples[static_cast<std::size_t>(i)]});
    }
    envelope.low.push_back(std::max(low / scale, -1.0));
    envelope.high.push_back(std::min(high / scale, 1.0));
  }
  return envelope;
}

std::string WaveFigure(const DrawnRecording& recording, Span span, bool words,
                       const std::string& css_class, const std::string& label) {
  const int whole = std::max(LengthOf(recording.utterance), 1);
  const auto part = static_cast<int>(std::int64_t{kWaveColumns} * LengthOf(span) / whole);
  const int columns = std::clamp(part, kMinWaveColumns, kWaveColumns);
  const Envelope envelope = EnvelopeOf(recording, span, columns);
  const double step = static_cast<double>(kWidth) / columns;
  std::string outline;
  // At least a thin line: silence shows too.
  for (int i = 0; i < columns; ++i) {
    outline += i == 0 ? "M" : "L";
    outline +=
        Point((i + 0.5) * step, kMiddle - 1.0 - 47.0 * envelope.high[static_cast<std::size_t>(i)]);
  }
  for (int i = columns; i-- > 0;) {
    outline += "L";
    outline +=
        Point((i + 0.5) * step, kMiddle + 1.0 - 47.0 * envelope.low[static_cast<std::size_t>(i)]);
  }
  std::string text = Opening("wave " + css_class, label);
  text += "<path d=\"" + outline + "Z\"/>";
  for (const Span& word : words ? recording.words : std::vector<Span>()) {
    text += Boundary(PlaceIn(recording, word.start));
  }
  return text + "</svg>";
}

std::string CurveFigure(const DrawnRecording& learner, const DrawnRecording* tutor, Curve curve,
                        const std::string& label) {
  std::string text = Opening("curve", label);
  for (const Span& word : learner.words) text += Boundary(PlaceIn(learner, word.start));
  if (tutor != nullptr) {
    text += CurveOf(*tutor, curve, "tutor",
                    [&](double time) { return WarpedTime(*tutor, learner, time); });
  }
  text += CurveOf(learner, curve, "learner", [](double time) { return time; });
  return text + "</svg>";
}

double WarpedTime(const DrawnRecording& tutor, const DrawnRecording& learner, double time) {
  if (tutor.words.size() != learner.words.size()) return time;
  // From one word edge to the next both run in proportion.
  double from = 0.0;
  double to = 0.0;
  const auto within = [&](double tutor_edge, double learner_edge) {
    const double share = tutor_edge > from ? (time - from) / (tutor_edge - from) : 1.0;
    return to + share * (learner_edge - to);
  };
  for (std::size_t i = 0; i < tutor.words.size(); ++i) {
    const std::pair<int, int> edges[] = {{tutor.words[i].start, learner.words[i].start},
                                         {tutor.words[i].end, learner.words[i].end}};
    for (const auto& [tutor_sample, learner_sample] : edges) {
      const double tutor_edge = PlaceIn(tutor, tutor_sample);
      const double learner_edge = std::max(PlaceIn(learner, learner_sample), to);
      if (tutor_edge < from) continue;
      if (time <= tutor_edge) return within(tutor_edge, learner_edge);
      from = tutor_edge;
      to = learner_edge;
    }
  }
  return within(1.0, 1.0);
}

std::string BarsFigure(double learner, double tutor, const std::string& label) {
  const auto bar = [](const char* css_class, double share, int y) {
    return "<rect class=\"" + std::string(css_class) + "\" x=\"0\" y=\"" + std::to_string(y) +
           "\" width=\"" + Fixed(std::clamp(share, 0.005, 1.0) * kWidth, 1) + "\" height=\"40\"/>";
  };
  return Opening("bars", label) + bar("learner", learner, 5) + bar("tutor", tutor, 55) + "</svg>";
}

}  // namespace veral3::tools
