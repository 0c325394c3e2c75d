#include "training/measure/Scores.h"

#include <algorithm>
#include <cmath>

namespace veral3::training {
namespace {

double Share(std::size_t part, std::size_t whole) {
  return whole == 0 ? 0.0 : static_cast<double>(part) / static_cast<double>(whole);
}

}  // namespace

ClassCounts::ClassCounts(int classes)
    : m_classes(static_cast<std::size_t>(classes)),
      m_truth(m_classes),
      m_said(m_classes),
      m_right(m_classes) {}

void ClassCounts::Add(int truth, std::span<const double> scores) {
  const auto wanted = static_cast<std::size_t>(truth);
  std::size_t best = 0;
  std::size_t above = 0;  // classes ranked before the true one
  for (std::size_t c = 0; c < m_classes; ++c) {
    if (scores[c] > scores[best]) best = c;
    above += scores[c] > scores[wanted] || (scores[c] == scores[wanted] && c < wanted);
  }
  ++m_total;
  ++m_truth[wanted];
  ++m_said[best];
  if (best == wanted) ++m_right[wanted];
  if (above < 3) ++m_top_three;
}

void ClassCounts::Merge(const ClassCounts& other) {
  m_total += other.m_total;
  m_top_three += other.m_top_three;
  for (std::size_t c = 0; c < m_classes; ++c) {
    m_truth[c] += other.m_truth[c];
    m_said[c] += other.m_said[c];
    m_right[c] += other.m_right[c];
  }
}

double ClassCounts::TopOne() const {
  std::size_t right = 0;
  for (const std::size_t count : m_right) right += count;
  return Share(right, m_total);
}

double ClassCounts::TopThree() const { return Share(m_top_three, m_total); }

double ClassCounts::MacroF1() const {
  double sum = 0.0;
  std::size_t classes = 0;
  for (std::size_t c = 0; c < m_classes; ++c) {
    if (m_truth[c] == 0) continue;
    ++classes;
    // 2pr / (p + r) with p = right / said and r = right / truth.
    sum += Share(2 * m_right[c], m_said[c] + m_truth[c]);
  }
  return classes == 0 ? 0.0 : sum / static_cast<double>(classes);
}

double Median(std::vector<double> values) {
  if (values.empty()) return 0.0;
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

double Percentile(std::vector<double> values, double percent) {
  if (values.empty()) return 0.0;
  std::ranges::sort(values);
  const double rank = std::ceil(percent / 100.0 * static_cast<double>(values.size())) - 1.0;
  return values[static_cast<std::size_t>(std::max(rank, 0.0))];
}

double ShareBelow(std::span<const double> values, double bound) {
  const auto below = std::ranges::count_if(values, [&](double value) { return value < bound; });
  return Share(static_cast<std::size_t>(below), values.size());
}

double ShareFrom(std::span<const double> values, double bound) {
  return values.empty() ? 0.0 : 1.0 - ShareBelow(values, bound);
}

double AreaUnderCurve(std::span<const double> higher, std::span<const double> lower) {
  if (higher.empty() || lower.empty()) return 0.0;
  std::vector<double> sorted(lower.begin(), lower.end());
  std::ranges::sort(sorted);
  double wins = 0.0;
  for (const double value : higher) {
    const auto [first, last] = std::equal_range(sorted.begin(), sorted.end(), value);
    wins += static_cast<double>(first - sorted.begin()) + 0.5 * static_cast<double>(last - first);
  }
  return wins / (static_cast<double>(higher.size()) * static_cast<double>(lower.size()));
}

}  // namespace veral3::training
