#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "recognition/AlignmentResult.h"
#include "recognition/CPhonemeSet.h"
#include "recognition/DecodingNetwork.h"
#include "recognition/WordEntry.h"

// Finds which of up to eight sentences a recording reads, and where in it each phoneme, syllable
// and word lies.
//
//   ViterbiAligner aligner;
//   aligner.AddSentence(words);                   // once a candidate
//   veral3::AlignmentResult result;
//   const int sentence = aligner.Align(set, num_samples, samples, result);
//   if (sentence >= 0) ... result.phonemes, result.phoneme_start, ...
//
// A value: a copy is independent of its source, and cheap, since both share the network until one
// of them needs another.
//
// The network is built at the first alignment and used for all later ones. When sentences were
// added since, the new network is built beside the old one, whose sentences stay reachable: add
// all sentences first.
//
// Any number of threads may align with one aligner at once. Adding sentences and assigning need
// the aligner for themselves.
class ViterbiAligner {
 public:
  static constexpr int kMaxSentences = 8;

  ViterbiAligner() = default;
  ViterbiAligner(const ViterbiAligner& other);
  ViterbiAligner& operator=(const ViterbiAligner& other);
  ~ViterbiAligner() = default;

  // Adds a candidate. Returns the number of sentences, or -1 with a message when there are
  // kMaxSentences already.
  int AddSentence(veral3::WordSequence words);
  int NumSentences() const { return static_cast<int>(m_sentences.size()); }

  // Aligns a recording: `num_samples` samples, 16 bit, mono, 22050 Hz, at least one frame (551).
  // Computes features and frame scores, and fills all of `result`. Returns the sentence that was
  // read, counted from 0, or a negative value with a message: -1 for bad input, when there is no
  // frame model for the set's language or when no path fits the recording; -2 when the best path
  // tells no sentence. `result` is then incomplete, but for the log probability of -2.
  int Align(const CPhonemeSet* set, std::uint32_t num_samples, const std::int16_t* samples,
            veral3::AlignmentResult& result) const;

  // The same from frame scores: reads num_frames, score_columns and frame_scores of `result` and
  // fills the rest.
  int AlignScores(const CPhonemeSet& set, veral3::AlignmentResult& result) const;

 private:
  // The network of all sentences added so far.
  std::shared_ptr<const veral3::DecodingNetwork> Network() const;

  std::vector<veral3::WordSequence> m_sentences;
  mutable std::mutex m_mutex;  // guards the two below, which alignments change
  mutable bool m_initialised = false;
  mutable std::shared_ptr<const veral3::DecodingNetwork> m_network;
};
