#include "training/train/Counting.h"

#include <algorithm>
#include <cstdio>
#include <numeric>
#include <vector>

namespace veral3::training {

CountedClasses CountClasses(const Network& network, ExampleSource& source, std::size_t states,
                            int pause) {
  Random random(1);
  source.BeginEpoch(random);
  constexpr std::size_t kChunk = 8192;
  const auto columns = static_cast<std::size_t>(source.NumClasses());
  const auto num_classes = static_cast<int>(columns / states);
  CountedClasses counts{ClassCounts(num_classes), ClassCounts(num_classes)};
  std::vector<double> sums(columns / states);
  for (std::size_t first = 0; first < source.NumExamples(); first += kChunk) {
    std::vector<std::uint32_t> examples(std::min(kChunk, source.NumExamples() - first));
    std::iota(examples.begin(), examples.end(), static_cast<std::uint32_t>(first));
    std::vector<float> inputs(examples.size() * static_cast<std::size_t>(source.NumInputs()));
    std::vector<std::int64_t> classes(examples.size());
    source.Fill(examples, inputs, classes);
    const std::vector<float> scores = Classify(network, inputs);
    for (std::size_t i = 0; i < examples.size(); ++i) {
      std::ranges::fill(sums, 0.0);
      for (std::size_t c = 0; c < columns; ++c) {
        sums[c / states] += static_cast<double>(scores[i * columns + c]);
      }
      const int truth = static_cast<int>(classes[i]) / static_cast<int>(states);
      counts.all.Add(truth, sums);
      if (truth != pause) counts.without_pauses.Add(truth, sums);
    }
  }
  return counts;
}

void PrintCounts(const char* what, const CountedClasses& counts) {
  const auto print = [&](const char* which, const ClassCounts& own) {
    std::printf("%s, %s: %zu examples, top-1 %.4f, top-3 %.4f, macro F1 %.4f\n", what, which,
                own.Total(), own.TopOne(), own.TopThree(), own.MacroF1());
  };
  print("all", counts.all);
  if (counts.without_pauses.Total() != counts.all.Total()) {
    print("without pauses", counts.without_pauses);
  }
}

}  // namespace veral3::training
