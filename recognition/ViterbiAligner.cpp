#include "recognition/ViterbiAligner.h"

#include <cstddef>
#include <limits>
#include <new>
#include <optional>
#include <set>
#include <tuple>
#include <utility>

#include "common/MessageWriter.h"
#include "recognition/AlignmentFromPath.h"
#include "recognition/FrameScores.h"
#include "recognition/MfccProbabilities.h"
#include "recognition/TokenPassing.h"
#include "signal/CWaveFrameDef.h"
#include "signal/Mfcc.h"

using veral3::AlignmentResult;
using veral3::DecodingNetwork;
using veral3::Message;
using veral3::MessageStream;

namespace {

int Refuse(const char* reason) {
  Message(MessageStream::kError) << "ERROR in ViterbiAligner::Align(), " << reason << "\n";
  return -1;
}

// Names each pronunciation that has a phoneme which the set lacks: no path goes through it.
void ReportForeignPhonemes(const DecodingNetwork& network,
                           const std::vector<veral3::WordSequence>& sentences,
                           const CPhonemeSet& set) {
  std::set<std::tuple<int, int, int>> reported;
  for (std::size_t i = DecodingNetwork::kFirstPhonemeNode; i < network.nodes.size(); i += 3) {
    const ViterbiNode& node = network.nodes[i];
    if (node.word < 0 || set.GetPhonemeIndex(node.phoneme) >= 0) continue;
    if (!reported.insert({node.word_sentence, node.word, node.variant}).second) continue;
    const veral3::WordEntry& entry =
        sentences[static_cast<std::size_t>(node.word_sentence)][node.word];
    Message(MessageStream::kWideError)
        << "ERROR in ViterbiAligner::Align(), pronunciation " << node.variant << " of word ["
        << entry.word << "] has the unknown phoneme [" << node.phoneme << "]\n";
  }
}

}  // namespace

ViterbiAligner::ViterbiAligner(const ViterbiAligner& other) : m_sentences(other.m_sentences) {
  const std::lock_guard lock(other.m_mutex);
  m_initialised = other.m_initialised;
  m_network = other.m_network;
}

ViterbiAligner& ViterbiAligner::operator=(const ViterbiAligner& other) {
  if (this == &other) return *this;
  ViterbiAligner copy(other);
  m_sentences = std::move(copy.m_sentences);
  m_initialised = copy.m_initialised;
  m_network = std::move(copy.m_network);
  return *this;
}

int ViterbiAligner::AddSentence(veral3::WordSequence words) {
  if (NumSentences() >= kMaxSentences) {
    Message(MessageStream::kError)
        << "ERROR in ViterbiAligner::AddSentence(): Too many sentences!\n";
    return -1;
  }
  m_sentences.push_back(std::move(words));
  m_initialised = false;
  return NumSentences();
}

std::shared_ptr<const DecodingNetwork> ViterbiAligner::Network() const {
  const std::lock_guard lock(m_mutex);
  if (!m_initialised) {
    auto network = m_network ? std::make_shared<DecodingNetwork>(*m_network)
                             : std::make_shared<DecodingNetwork>();
    veral3::ExtendNetwork(*network, m_sentences);
    m_network = std::move(network);
    m_initialised = true;
  }
  return m_network;
}

int ViterbiAligner::Align(const CPhonemeSet* set, std::uint32_t num_samples,
                          const std::int16_t* samples, AlignmentResult& result) const try {
  result = {};
  if (set == nullptr) return Refuse("no phoneme set");
  if (m_sentences.empty()) return Refuse("no sentence was added");
  if (samples == nullptr) return Refuse("no samples");
  if (num_samples < veral3::kFrameLength) return Refuse("fewer samples than one frame");
  if (num_samples > static_cast<std::uint32_t>(std::numeric_limits<int>::max())) {
    return Refuse("too many samples");
  }
  result.num_samples = static_cast<int>(num_samples);
  result.num_frames = veral3::NumFrames(num_samples);
  result.score_columns = 3 * set->GetSize();
  const auto num_frames = static_cast<std::size_t>(result.num_frames);
  result.mfcc = veral3::ComputeMfcc(samples, num_samples);
  if (result.mfcc.size() != num_frames * veral3::kMfccSize) {
    Message(MessageStream::kError)
        << "Fatal Error: incorrect number of MFCC features=" << result.mfcc.size() / num_frames
        << "\n";
    return -1;
  }
  result.frame_scores.assign(num_frames * static_cast<std::size_t>(result.score_columns), 0.0);
  if (veral3::ComputeFrameScores(*set, result.mfcc, result.frame_scores) < 0) return -1;
  return AlignScores(*set, result);
} catch (const std::bad_alloc&) {
  return Refuse("out of memory");
}

int ViterbiAligner::AlignScores(const CPhonemeSet& set, AlignmentResult& result) const try {
  if (m_sentences.empty()) return Refuse("no sentence was added");
  if (result.num_frames < 1) return Refuse("no frames");
  if (result.score_columns != 3 * set.GetSize() ||
      result.frame_scores.size() != static_cast<std::size_t>(result.num_frames) *
                                        static_cast<std::size_t>(result.score_columns)) {
    return Refuse("incorrect number of frame scores");
  }

  const std::shared_ptr<const DecodingNetwork> network = Network();
  ReportForeignPhonemes(*network, m_sentences, set);
  const std::optional<veral3::BestPath> best =
      veral3::PassTokens(*network, set, result.frame_scores, result.num_frames);
  if (!best) return -1;
  result.log_probability = best->score;

  int matched = 0;
  if (NumSentences() > 1) {
    matched = veral3::SentenceOfPath(*network, best->steps);
    if (matched < 0) matched = network->fallback_sentence;
    if (matched < 0) {
      Message(MessageStream::kError) << "Error in ViterbiAligner::Align(): No Sentence matched.";
      return network->fallback_sentence - 1;
    }
  }
  if (veral3::FillAlignment(*network, m_sentences, matched, best->steps, result) < 0) return -1;
  result.matched_sentence_index = matched;
  result.path_posterior = veral3::PathPosterior(set, result);
  result.phoneme_mfcc_prob = veral3::PhonemeProbabilities(result);
  result.pause_mfcc_prob = veral3::PauseProbabilities(result);
  return matched;
} catch (const std::bad_alloc&) {
  return Refuse("out of memory");
}
