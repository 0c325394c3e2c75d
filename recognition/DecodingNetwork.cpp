#include "recognition/DecodingNetwork.h"

#include <algorithm>

#include "common/MessageWriter.h"

namespace veral3 {

namespace {

// Where a word stands and how its nodes are marked.
struct WordPlace {
  int source;  // sentence whose entry is used
  int word;
  int owner;  // sentence that owns the nodes, -1 for shared ones
};

// Leading words that are the same in all sentences.
int CommonPrefix(std::span<const WordSequence> sentences, int shortest) {
  int length = 0;
  const auto same = [&](const WordSequence& sentence) {
    return sentence[length].word == sentences.front()[length].word;
  };
  while (length < shortest && std::ranges::all_of(sentences, same)) ++length;
  return length;
}

// Trailing words that are the same in all sentences, at most `limit`.
int CommonSuffix(std::span<const WordSequence> sentences, int limit) {
  int length = 0;
  const auto last_but = [&](const WordSequence& sentence) {
    return sentence[sentence.Count() - 1 - length].word;
  };
  const auto same = [&](const WordSequence& sentence) {
    return last_but(sentence) == last_but(sentences.front());
  };
  while (length < limit && std::ranges::all_of(sentences, same)) ++length;
  return length;
}

// Builds from the end to the start: each part is given the heads of what follows it and returns its
// own.
class NetworkBuilder {
 public:
  NetworkBuilder(DecodingNetwork& network, std::span<const WordSequence> sentences)
      : m_network(network), m_sentences(sentences) {}

  void Build() {
    ViterbiHeads end;
    end.AddHead(DecodingNetwork::kEndNode);
    ViterbiHeads end_heads;
    end_heads.AddHead(AddPause(end, -1));
    end_heads.AddHead(DecodingNetwork::kEndNode);

    const ViterbiHeads heads = m_sentences.size() == 1
                                   ? AddWords(0, 0, m_sentences[0].Count(), end_heads, -1, true)
                                   : AddSentences(end_heads);
    for (const std::int32_t head : heads.Nodes()) {
      m_network.nodes[DecodingNetwork::kStartNode].AddNextNode(head);
    }
  }

 private:
  ViterbiNode& Node(std::int32_t node) { return m_network.nodes[static_cast<std::size_t>(node)]; }

  // Returns the number of state 0, the phoneme's one head.
  std::int32_t AddPhoneme(const ViterbiNode& model, const ViterbiHeads& following) {
    const auto first = static_cast<std::int32_t>(m_network.nodes.size());
    for (std::int8_t state = 0; state < 3; ++state) {
      m_network.nodes.push_back(model);
      m_network.nodes.back().state = state;
    }
    for (const std::int32_t head : following.Nodes()) Node(first + 2).AddNextNode(head);
    for (std::int32_t node = first; node < first + 3; ++node) Node(node).AddNextNode(node);
    Node(first).AddNextNode(first + 1);
    Node(first + 1).AddNextNode(first + 2);
    return first;
  }

  std::int32_t AddPause(const ViterbiHeads& following, int owner) {
    ViterbiNode model;
    model.sentence = owner;
    return AddPhoneme(model, following);
  }

  std::int32_t AddVariant(std::string_view phonemes, const WordPlace& place, int variant,
                          const ViterbiHeads& following) {
    ViterbiNode model;
    model.sentence = place.owner;
    model.word_sentence = place.source;
    model.word = place.word;
    model.variant = static_cast<std::int16_t>(variant);
    ViterbiHeads heads = following;
    std::int32_t first = -1;
    for (std::size_t i = phonemes.size(); i-- > 0;) {
      model.phoneme = phonemes[i];
      first = AddPhoneme(model, heads);
      heads = {};
      heads.AddHead(first);
    }
    Node(first).word_start = true;
    return first;
  }

  ViterbiHeads AddWord(const WordPlace& place, const ViterbiHeads& following, bool pause) {
    const WordEntry& entry = m_sentences[static_cast<std::size_t>(place.source)][place.word];
    ViterbiHeads heads;
    int variant = 0;
    for (const Pronunciation& pronunciation : entry.pronunciations) {
      if (!CanBeAligned(pronunciation)) {
        Message(MessageStream::kWideError)
            << "ERROR in ViterbiAligner::Align(), pronunciation " << variant << " of word ["
            << entry.word << "] cannot be used\n";
      } else {
        heads.AddHead(AddVariant(pronunciation.phonemes, place, variant, following));
      }
      ++variant;
    }
    if (pause) heads.AddHead(AddPause(heads, place.owner));
    return heads;
  }

  // Words `first` to `end` - 1 of a sentence. `pause`: whether one may precede the first of them;
  // it may always precede the others.
  ViterbiHeads AddWords(int source, int first, int end, const ViterbiHeads& following, int owner,
                        bool pause) {
    ViterbiHeads heads = following;
    for (int word = end - 1; word >= first; --word) {
      heads = AddWord({source, word, owner}, heads, pause || word > first);
    }
    return heads;
  }

  ViterbiHeads AddSentences(const ViterbiHeads& end_heads) {
    int shortest = WordSequence::kMaxWords;
    for (const WordSequence& sentence : m_sentences) {
      shortest = std::min(shortest, sentence.Count());
    }
    const int prefix = CommonPrefix(m_sentences, shortest);
    const int suffix = CommonSuffix(m_sentences, shortest - prefix);
    const int first_count = m_sentences[0].Count();
    const ViterbiHeads suffix_heads =
        AddWords(0, first_count - suffix, first_count, end_heads, -1, true);

    ViterbiHeads middle;
    for (int i = 0; i < static_cast<int>(m_sentences.size()); ++i) {
      const int count = m_sentences[static_cast<std::size_t>(i)].Count();
      if (count <= prefix + suffix) {
        m_network.fallback_sentence = i;
        middle.AddHeads(suffix_heads);
      } else {
        middle.AddHeads(AddWords(i, prefix, count - suffix, suffix_heads, i, false));
      }
    }
    middle.AddHead(AddPause(middle, -1));
    return AddWords(0, 0, prefix, middle, -1, true);
  }

  DecodingNetwork& m_network;
  std::span<const WordSequence> m_sentences;
};

}  // namespace

bool CanBeAligned(const Pronunciation& pronunciation) {
  if (!pronunciation.IsUsable()) return false;
  if (pronunciation.syllable_marks.size() < pronunciation.syllable_starts.size()) return false;
  const auto length = static_cast<std::int64_t>(pronunciation.phonemes.size());
  return std::ranges::all_of(pronunciation.syllable_starts,
                             [=](std::int32_t start) { return start >= 0 && start <= length; });
}

DecodingNetwork::DecodingNetwork() : nodes(kFirstPhonemeNode) {
  nodes[kEndNode].phoneme = ViterbiNode::kEnd;
  nodes[kStartNode].phoneme = ViterbiNode::kStart;
}

void ExtendNetwork(DecodingNetwork& network, std::span<const WordSequence> sentences) {
  if (!sentences.empty()) NetworkBuilder(network, sentences).Build();
}

}  // namespace veral3
