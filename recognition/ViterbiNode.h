#pragma once

#include <cstdint>
#include <vector>

// One state of one phoneme in the decoding network. Nodes live in one vector and know each other by
// their place in it (their number), so that a network is copied like any value.
struct ViterbiNode {
  static constexpr int kMaxNextNodes = 32;
  static constexpr char kPause = '-';
  static constexpr char kStart = '*';
  static constexpr char kEnd = '$';

  char phoneme = kPause;            // symbol of the phoneme set, '-' pause, '*' start, '$' end
  std::int8_t state = 0;            // 0, 1 or 2
  bool word_start = false;          // state 0 of the first phoneme of a word's variant
  std::int16_t variant = 0;         // which pronunciation of the word, where it belongs to one
  std::int32_t sentence = -1;       // the sentence that owns the node; -1: shared by all
  std::int32_t word_sentence = -1;  // where the word that the node was made for stands: sentence
  std::int32_t word = -1;           // and place in it; -1 for pauses, start and end
  std::vector<std::int32_t> next;   // successors, in the order they were added

  // Adds a successor. Beyond kMaxNextNodes it is ignored, with a message.
  void AddNextNode(std::int32_t node);
};

// The entry nodes of a part of the network, in the order they were added.
class ViterbiHeads {
 public:
  static constexpr int kMaxHeads = 32;

  // Adds a node, which may be there already. Beyond kMaxHeads it is ignored, with a message.
  void AddHead(std::int32_t node);
  void AddHeads(const ViterbiHeads& heads);

  const std::vector<std::int32_t>& Nodes() const { return m_nodes; }

 private:
  std::vector<std::int32_t> m_nodes;
};
