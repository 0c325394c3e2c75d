#include "recognition/AlignmentFromPath.h"

#include <cstddef>
#include <new>

#include "common/MessageWriter.h"

namespace veral3 {

namespace {

std::size_t Index(int i) { return static_cast<std::size_t>(i); }

int TooMany(const char* what, int limit) {
  Message(MessageStream::kError) << "ERROR in ViterbiAligner::Align(), more than " << limit << " "
                                 << what << "\n";
  return -1;
}

bool IsRealPhoneme(char phoneme) {
  return phoneme != ViterbiNode::kStart && phoneme != ViterbiNode::kPause &&
         phoneme != ViterbiNode::kEnd;
}

bool StartsSegment(const PathEntry& before, const PathEntry& entry) {
  return entry.phoneme != before.phoneme || entry.state < before.state || entry.word_start;
}

// Words and syllables of a path, collected as its word starts come by.
class WordCollector {
 public:
  WordCollector(std::span<const WordSequence> sentences, int matched, AlignmentResult& result)
      : m_sentences(sentences), m_matched(sentences[Index(matched)]), m_result(result) {}

  // A word begins at the last phoneme of the result. Returns 0, or -1 with a message.
  int Start(const ViterbiNode& node) {
    if (m_started >= kMaxWords) return TooMany("words", kMaxWords);
    const int phoneme = m_result.NumPhonemes() - 1;
    const Pronunciation& pronunciation = PronunciationOf(node);
    m_result.word_start[Index(m_started++)] = phoneme;
    for (std::size_t i = 0; i < pronunciation.syllable_starts.size(); ++i) {
      if (m_result.num_syllables >= kMaxSyllables) return TooMany("syllables", kMaxSyllables);
      const std::size_t syllable = Index(m_result.num_syllables++);
      m_result.syllable_start[syllable] = phoneme + pronunciation.syllable_starts[i];
      m_result.syllable_mark[syllable] = pronunciation.syllable_marks[i];
    }
    return 0;
  }

 private:
  // Shared nodes were made for the first sentence's word, and nodes of an earlier network for
  // whatever was read then: the matched sentence's word counts wherever it has the variant.
  const Pronunciation& PronunciationOf(const ViterbiNode& node) const {
    const std::size_t variant = Index(node.variant);
    if (m_started < m_matched.Count()) {
      const auto pronunciations = m_matched[m_started].pronunciations;
      if (variant < pronunciations.size() && CanBeAligned(pronunciations[variant])) {
        return pronunciations[variant];
      }
    }
    return m_sentences[Index(node.word_sentence)][node.word].pronunciations[variant];
  }

  std::span<const WordSequence> m_sentences;
  const WordSequence& m_matched;
  AlignmentResult& m_result;
  int m_started = 0;
};

}  // namespace

int SentenceOfPath(const DecodingNetwork& network, std::span<const PathStep> steps) {
  int sentence = -1;
  for (const PathStep& step : steps) {
    const int owner = network.nodes[Index(step.node)].sentence;
    if (owner != -1) sentence = owner;
  }
  return sentence;
}

int FillAlignment(const DecodingNetwork& network, std::span<const WordSequence> sentences,
                  int matched, std::span<const PathStep> steps, AlignmentResult& result) {
  result.path.clear();
  result.path.reserve(steps.size());
  result.phonemes.clear();
  result.num_syllables = 0;
  result.words.clear();
  WordCollector words(sentences, matched, result);
  bool in_phoneme = false;
  for (const PathStep& step : steps) {
    const ViterbiNode& node = network.nodes[Index(step.node)];
    const PathEntry entry{node.phoneme, node.state, node.word_start,
                          node.variant, step.node,  step.frame * kFrameShift};
    const bool continues = !result.path.empty() && !StartsSegment(result.path.back(), entry);
    result.path.push_back(entry);
    if (continues) continue;

    if (in_phoneme) result.phoneme_end[Index(result.NumPhonemes() - 1)] = entry.time;
    in_phoneme = IsRealPhoneme(entry.phoneme);
    if (!in_phoneme) continue;
    if (result.NumPhonemes() >= kMaxPhonemes) return TooMany("phonemes", kMaxPhonemes);
    result.phoneme_start[result.phonemes.size()] = entry.time;
    result.phonemes.push_back(entry.phoneme);
    if (entry.word_start && words.Start(node) < 0) return -1;
  }

  const WordSequence& sentence = sentences[Index(matched)];
  result.num_words = sentence.Count();
  for (int i = 0; i < sentence.Count(); ++i) {
    if (result.words.emplace_back(sentence[i].word).IsLost()) throw std::bad_alloc();
  }
  return 0;
}

}  // namespace veral3
