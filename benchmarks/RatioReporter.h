#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

namespace veral3::bench {

// Prints the usual table, and remembers the shortest time of each benchmark, so that a program can
// print ratios between benchmarks of the same run.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override;

  // Shortest CPU time of one iteration [s]; 0 when that benchmark did not run.
  double SecondsOf(const std::string& name) const;

 private:
  std::map<std::string, double> m_seconds;
};

}  // namespace veral3::bench
