#include "training/measure/SentenceChoice.h"

#include <algorithm>
#include <utility>

#include "recognition/ViterbiAligner.h"
#include "signal/CWaveFrameDef.h"
#include "signal/HighPassFilter.h"

namespace veral3::training {

Candidates EightCandidates(const HeldOutTexts& texts, const std::string& read,
                           bool one_word_changed, Random& random) {
  Candidates candidates{{}, random.Between(0, 7)};
  auto& sentences = candidates.sentences;
  while (sentences.size() < 8) {
    std::string text = read;
    if (static_cast<int>(sentences.size()) != candidates.right) {
      text = one_word_changed ? texts.WithOneWordChanged(read, random) : texts.Draw(random);
      if (text == read || std::ranges::find(sentences, text) != sentences.end()) continue;
    }
    sentences.push_back(std::move(text));
  }
  return candidates;
}

int ChooseSentence(const CPhonemeSet& set, const VeralDictionary& dictionary,
                   const Candidates& candidates, std::vector<std::int16_t> samples) {
  ViterbiAligner aligner;
  for (const std::string& text : candidates.sentences) {
    WordSequence words;
    if (dictionary.LookupSentence(CString(text), words) < 0) return kRefusedSentence;
    aligner.AddSentence(std::move(words));
  }
  HighPassFilter(samples.data(), static_cast<int>(samples.size()), 80.0, double{kSampleRate});
  AlignmentResult result;
  return aligner.Align(&set, static_cast<std::uint32_t>(samples.size()), samples.data(), result);
}

}  // namespace veral3::training
