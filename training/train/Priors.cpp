#include "training/train/Priors.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <stdexcept>

#include "grading/PhonProbGrader.h"
#include "recognition/CPhonemeSet.h"

namespace veral3::training {

std::vector<double> ClassShares(const ExampleSource& source, std::span<const ExampleGroup> groups) {
  constexpr std::uint32_t kChunk = 512;
  std::vector<ExampleGroup> all(groups.begin(), groups.end());
  if (all.empty()) all.push_back({0, static_cast<std::uint32_t>(source.NumExamples()), 1.0});
  double sum = 0.0;
  for (const ExampleGroup& group : all) sum += group.share;
  std::vector<double> shares(static_cast<std::size_t>(source.NumClasses()), 0.0);
  std::vector<float> inputs(static_cast<std::size_t>(source.NumInputs()) * kChunk);
  std::vector<std::int64_t> classes(kChunk);
  std::vector<std::uint32_t> examples(kChunk);
  for (const ExampleGroup& group : all) {
    std::vector<std::size_t> counts(shares.size(), 0);
    for (std::uint32_t first = group.begin; first < group.end; first += kChunk) {
      const std::size_t count = std::min(kChunk, group.end - first);
      std::iota(examples.begin(), examples.end(), first);
      source.Fill(std::span(examples).first(count), inputs, classes);
      for (std::size_t i = 0; i < count; ++i) ++counts[static_cast<std::size_t>(classes[i])];
    }
    const double each = group.share / sum / static_cast<double>(group.end - group.begin);
    for (std::size_t c = 0; c < shares.size(); ++c) {
      shares[c] += each * static_cast<double>(counts[c]);
    }
  }
  return shares;
}

std::vector<double> ScoredShares(LanguageType language, std::span<const double> learnt) {
  const CPhonemeSet* set = PhonemeSetOf(language);
  if (set == nullptr) throw std::runtime_error("no such language");
  const auto pause = static_cast<std::size_t>(set->GetPhonemeIndex('-'));
  const std::span<const double> normalisers = PhonemeNormalisersOf(language);
  std::vector<double> shares(normalisers.begin(), normalisers.end());
  if (learnt.size() != shares.size()) throw std::runtime_error("other classes than the phonemes");
  shares[pause] = 0.0;
  const double sum = std::accumulate(shares.begin(), shares.end(), 0.0);
  for (double& share : shares) share *= std::min(share, 1.0) * (1.0 - learnt[pause]) / sum;
  shares[pause] = learnt[pause];
  return shares;
}

Network WithPriors(const Network& network, std::span<const double> learnt,
                   std::span<const double> wanted) {
  Network result = network;
  std::vector<float>& bias = result.layers.back().bias;
  if (learnt.size() != bias.size() || wanted.size() != bias.size()) {
    throw std::runtime_error("as many shares as classes are needed");
  }
  for (std::size_t c = 0; c < bias.size(); ++c) {
    if (!(learnt[c] > 0.0)) continue;
    if (!(wanted[c] > 0.0)) throw std::runtime_error("a wanted share must be above 0");
    bias[c] += static_cast<float>(std::log(wanted[c] / learnt[c]));
  }
  return result;
}

}  // namespace veral3::training
