#include "training/measure/ForcedAlignment.h"

#include <algorithm>
#include <memory>
#include <string>

#include "recognition/ViterbiAligner.h"
#include "signal/CWaveFrameDef.h"
#include "signal/HighPassFilter.h"

namespace veral3::training {

WordSequence WordsOfLabels(const Utterance& utterance) {
  WordSequence words;
  std::string phonemes;
  const auto end_word = [&] {
    if (phonemes.empty()) return;
    std::wstring name(phonemes.begin(), phonemes.end());
    std::vector<OwnedWordEntry::Variant> variants = {{phonemes, {0}, {0}}};
    words.AppendOwned(std::make_shared<OwnedWordEntry>(std::move(name), std::move(variants)));
    phonemes.clear();
  };
  for (const PhonemeLabel& label : utterance.labels) {
    if (label.symbol == '-') {
      end_word();
    } else {
      phonemes += label.symbol;
    }
  }
  end_word();
  return words;
}

std::optional<AlignmentResult> AlignToLabels(const Utterance& utterance, const CPhonemeSet& set) {
  const auto unused = std::ranges::find(utterance.labels, kUnused, &PhonemeLabel::symbol);
  if (unused != utterance.labels.end()) return std::nullopt;
  ViterbiAligner aligner;
  if (aligner.AddSentence(WordsOfLabels(utterance)) < 0) return std::nullopt;
  std::vector<std::int16_t> samples = utterance.samples;
  HighPassFilter(samples.data(), static_cast<int>(samples.size()), 80.0, double{kSampleRate});
  AlignmentResult result;
  if (aligner.Align(&set, static_cast<std::uint32_t>(samples.size()), samples.data(), result) < 0) {
    return std::nullopt;
  }
  return result;
}

std::vector<PhonemeLabel> LabelsOf(const AlignmentResult& result) {
  std::vector<PhonemeLabel> labels;
  std::int32_t end = 0;
  for (std::size_t i = 0; i < result.phonemes.size(); ++i) {
    const std::int32_t start = result.phoneme_start[i];
    if (start > end || (i == 0 && start > 0)) labels.push_back({'-', end});
    labels.push_back({result.phonemes[i], start});
    end = result.phoneme_end[i];
  }
  if (end < static_cast<std::int32_t>(result.num_samples)) labels.push_back({'-', end});
  return labels;
}

}  // namespace veral3::training
