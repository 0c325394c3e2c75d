#include "core/PhonemeDistributions.h"

#include <algorithm>
#include <numeric>

#include "common/MessageWriter.h"
#include "core/Finite.h"
#include "core/SyllableSpans.h"
#include "recognition/Languages.h"

namespace veral3 {
namespace {

bool IsKnown(const CPhonemeSet& set) {
  return FindLanguageOfPhonemeSet(set.GetIdentifier()) != nullptr;
}

// The scores of all phonemes, phonemes x set size; empty where there is no model.
std::vector<double> ScoresOf(const AlignmentResult& alignment, std::size_t set_size,
                             const PhonemeScorer& scorer) {
  const std::size_t count = static_cast<std::size_t>(CountPhonemes(alignment));
  std::vector<double> scores(count * set_size);
  if (scores.empty()) return scores;
  std::vector<float> inputs(count * kPhonemeInputSize);
  for (std::size_t i = 0; i < count; ++i) {
    const int phoneme = static_cast<int>(i);
    AssemblePhonemeInput(
        alignment.mfcc, FramesOfPhonemes(alignment, {phoneme, phoneme}),
        std::span(inputs).subspan(i * kPhonemeInputSize).first<kPhonemeInputSize>());
  }
  if (!scorer || !scorer(inputs, scores)) {
    Message(MessageStream::kError)
        << "ERROR in AnalyzedAudio::CalculatePhonProbDistr(), no phoneme model is loaded.\n";
    return {};
  }
  std::transform(scores.begin(), scores.end(), scores.begin(), FiniteOrZero);
  return scores;
}

}  // namespace

std::span<const double> PhonemeDistributions::Row(int phoneme) const {
  const std::size_t count = rows.size() / kDistributionWidth;
  if (phoneme < 0 || static_cast<std::size_t>(phoneme) >= count) return {};
  return std::span(rows).subspan(static_cast<std::size_t>(phoneme) * kDistributionWidth,
                                 kDistributionWidth);
}

void AssemblePhonemeInput(std::span<const float> mfcc, FrameSpan span,
                          std::span<float, kPhonemeInputSize> input) {
  const std::int64_t num_frames = static_cast<std::int64_t>(mfcc.size() / kMfccSize);
  auto out = input.begin();
  for (const int offset : kPhonemeFrameOffsets) {
    const std::int64_t frame = std::int64_t{span.begin} + offset;
    if (frame >= 0 && frame < span.end && frame < num_frames) {
      const auto row = mfcc.subspan(static_cast<std::size_t>(frame) * kMfccSize, kMfccSize);
      out = std::copy(row.begin(), row.end(), out);
    } else {
      out = std::fill_n(out, kMfccSize, 0.0F);
    }
  }
}

PhonemeDistributions ClassifyPhonemes(const CPhonemeSet& set, const AlignmentResult& alignment,
                                      const PhonemeScorer& scorer,
                                      const PhonemeDistributions& previous) {
  const std::size_t count = static_cast<std::size_t>(CountPhonemes(alignment));
  const std::size_t size =
      std::min(static_cast<std::size_t>(std::max(set.GetSize(), 0)), kDistributionWidth);
  PhonemeDistributions result;
  result.rows.resize(count * kDistributionWidth);
  result.sounds_like_prob.resize(count);
  if (size == 0) return result;

  const bool known = IsKnown(set);
  std::vector<double> scores;
  if (known) {
    scores = ScoresOf(alignment, size, scorer);
    if (scores.empty()) return result;
  }
  result.sounds_like.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    const std::span<double> row =
        std::span(result.rows).subspan(i * kDistributionWidth, kDistributionWidth);
    if (known) {
      std::copy_n(scores.begin() + static_cast<std::ptrdiff_t>(i * size), size, row.begin());
    } else {
      Message(MessageStream::kError)
          << "Error, unknown phoneme set in ViterbiAligner::PassToken()\n";
      const auto before = previous.Row(static_cast<int>(i));
      std::copy(before.begin(), before.end(), row.begin());
    }
    const std::span<const double> values = row.first(size);
    const auto highest = std::max_element(values.begin(), values.end());
    const double sum = std::accumulate(values.begin(), values.end(), 0.0);
    result.sounds_like.push_back(set.GetFullSet()[highest - values.begin()]);
    result.sounds_like_prob[i] =
        sum != 0.0
            ? FiniteOrZero(*highest / sum)
            : ReadOr(std::span<const double>(previous.sounds_like_prob), static_cast<int>(i));
  }
  return result;
}

}  // namespace veral3
