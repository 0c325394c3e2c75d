#include "tools/AlignmentReport.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/AnalyzedAudio.h"

namespace veral3::tools {
namespace {

// The segment that `parts`, numbers `first` up to `last` (exclusive), make together. Without any
// it lies where the next one starts.
Segment Join(const std::vector<Segment>& parts, int first, int last, int num_samples) {
  Segment whole;
  if (first >= last) {
    const auto next = static_cast<std::size_t>(first);
    whole.start = whole.end = next < parts.size() ? parts[next].start : num_samples;
    return whole;
  }
  double log_sum = 0.0;
  double length = 0.0;
  for (int i = first; i < last; ++i) {
    const Segment& part = parts[static_cast<std::size_t>(i)];
    whole.text += part.text;
    if (part.end <= part.start) continue;
    log_sum += std::log(part.confidence) * (part.end - part.start);
    length += part.end - part.start;
  }
  whole.start = parts[static_cast<std::size_t>(first)].start;
  whole.end = parts[static_cast<std::size_t>(last - 1)].end;
  whole.confidence = length > 0.0 ? std::exp(log_sum / length) : 0.0;
  return whole;
}

}  // namespace

AlignmentReport MakeReport(std::string file, std::string sentence, AnalyzedAudio& audio) {
  AlignmentReport report;
  report.file = std::move(file);
  report.language = audio.GetLanguageType();
  report.sentence_index = audio.GetMatchedSentenceIndex();
  report.sentence = std::move(sentence);
  report.log_probability = audio.GetLogProbOfAlign();
  report.num_samples = audio.GetNumOfSamples();

  const int num_phonemes = audio.GetNumOfPhonemes();
  // The floor under each score can lift a sum of three a little above 1.
  const std::string symbols(audio.GetPhonemes(), static_cast<std::size_t>(num_phonemes));
  for (int i = 0; i < num_phonemes; ++i) {
    report.phonemes.push_back({std::string(1, symbols[static_cast<std::size_t>(i)]),
                               audio.GetPhonemeStartSampleNum(i), audio.GetPhonemeEndSampleNum(i),
                               std::min(audio.GetPhonMFCCProb(i), 1.0), 0});
  }

  const int num_syllables = audio.GetNumOfSyllables();
  std::vector<int> syllable_starts;
  for (int i = 0; i < num_syllables; ++i) {
    const int first = audio.GetSyllableStartPosition(i);
    const int last = i + 1 < num_syllables ? audio.GetSyllableStartPosition(i + 1) : num_phonemes;
    Segment syllable = Join(report.phonemes, first, last, report.num_samples);
    syllable.parts = std::max(last - first, 0);
    report.syllables.push_back(std::move(syllable));
    syllable_starts.push_back(first);
  }

  const int num_words = audio.GetNumOfWords();
  for (int i = 0; i < num_words; ++i) {
    const int first = audio.GetWordStartPosition(i);
    const int last = i + 1 < num_words ? audio.GetWordStartPosition(i + 1) : num_phonemes;
    Segment word = Join(report.phonemes, first, last, report.num_samples);
    word.text = audio.GetWordOfMatchedSentence(i).Utf8();
    word.parts = static_cast<int>(std::ranges::count_if(
        syllable_starts, [&](int start) { return start >= first && start < last; }));
    report.words.push_back(std::move(word));
  }
  return report;
}

}  // namespace veral3::tools
