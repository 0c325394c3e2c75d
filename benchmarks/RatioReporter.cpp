#include "RatioReporter.h"

#include <algorithm>

namespace veral3::bench {

void RatioReporter::ReportRuns(const std::vector<Run>& runs) {
  for (const Run& run : runs) {
    if (run.error_occurred || run.run_type != Run::RT_Iteration || run.iterations == 0) continue;
    const double seconds = run.cpu_accumulated_time / static_cast<double>(run.iterations);
    const auto [entry, added] = m_seconds.try_emplace(run.run_name.function_name, seconds);
    if (!added) entry->second = std::min(entry->second, seconds);
  }
  ConsoleReporter::ReportRuns(runs);
}

double RatioReporter::SecondsOf(const std::string& name) const {
  const auto found = m_seconds.find(name);
  return found == m_seconds.end() ? 0.0 : found->second;
}

}  // namespace veral3::bench
