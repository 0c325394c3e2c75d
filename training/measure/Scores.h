#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace veral3::training {

// Counts what a classifier said of examples of known class.
class ClassCounts {
 public:
  explicit ClassCounts(int classes);

  // One example; `scores`: one a class. Ties go to the lower class.
  void Add(int truth, std::span<const double> scores);
  void Merge(const ClassCounts& other);

  std::size_t Total() const { return m_total; }
  double TopOne() const;    // share of examples whose class has the highest score
  double TopThree() const;  // ... one of the three highest
  // Mean over the classes that occur of 2 x precision x recall / (precision + recall).
  double MacroF1() const;

 private:
  std::size_t m_classes;
  std::size_t m_total = 0;
  std::size_t m_top_three = 0;
  std::vector<std::size_t> m_truth;  // examples of a class
  std::vector<std::size_t> m_said;   // examples said to be of a class
  std::vector<std::size_t> m_right;
};

double Median(std::vector<double> values);  // 0 for none

// The value below which `percent` (0 to 100) of the values lie: the nearest one, rounded up. 0 for
// none.
double Percentile(std::vector<double> values, double percent);

// How many of the values lie below `bound`, as a share; 0 for none. ShareFrom: at it or above.
double ShareBelow(std::span<const double> values, double bound);
double ShareFrom(std::span<const double> values, double bound);

// Probability that a value of `higher` exceeds one of `lower`, ties counted half: the area under
// the curve of a test that tells them apart. 0 when either is empty.
double AreaUnderCurve(std::span<const double> higher, std::span<const double> lower);

}  // namespace veral3::training
