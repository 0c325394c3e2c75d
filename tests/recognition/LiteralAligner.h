#pragma once

#include <cstdint>
#include <list>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "recognition/CPhonemeSet.h"
#include "recognition/WordEntry.h"

// The aligner done in the slowest and plainest way: nodes linked by pointers, tokens in lists, each
// token with a history of its own that is copied with it. It shares nothing with the engine's
// decoder but the words and phoneme sets, and is what that decoder is compared with.
namespace veral3::test {

struct LiteralResult {
  struct Step {
    char phoneme;
    int state;
    bool word_start;
    int variant;
    int time;
    bool operator==(const Step&) const = default;
  };

  int answer = -1;
  bool by_fallback = false;  // the winner entered no sentence's own node
  int ties = 0;              // how often tokens of one score met in a node
  std::string messages;
  double log_probability = 0.0;
  std::vector<Step> history;
  std::string phonemes;
  std::vector<int> phoneme_start, phoneme_end, syllable_start, syllable_mark, word_start;
  std::vector<std::wstring> words;
  std::vector<double> path_posterior, phoneme_probability, pause_probability;
};

class LiteralAligner {
 public:
  LiteralAligner();
  ~LiteralAligner();

  void AddSentence(WordSequence words);

  // `scores`: num_frames rows of 3 x set size values.
  LiteralResult Align(const CPhonemeSet& set, std::span<const double> scores, int num_frames);

 private:
  struct Node;
  struct Token;
  struct Heads;
  using TokenList = std::list<Token*>;  // the front is the front

  Node* NewNode(char phoneme, int state, int sentence);
  void AddHead(Heads& heads, Node* node);
  void AddNextNode(Node* node, Node* next);
  Heads BuildPhoneme(char phoneme, const Heads& following, int sentence);
  Heads BuildVariant(const std::string& phonemes, const Heads& following, int sentence);
  Heads BuildWords(int source, int i, int j, const Heads& following, int sentence, bool pause);
  void BuildNetwork();
  double StepScore(const CPhonemeSet& set, const Node* node, std::span<const double> row) const;
  Token* CopyOf(const Token& token);
  void Recycle(Token* token);
  void PassTokens(const CPhonemeSet& set, std::span<const double> row, int time);
  void Fill(const CPhonemeSet& set, const Token& winner, int matched,
            std::span<const double> scores, int num_frames, LiteralResult& result) const;

  std::vector<WordSequence> m_sentences;
  std::vector<std::unique_ptr<Node>> m_nodes;  // in order of creation; start and end too
  Node* m_end = nullptr;
  Node* m_start = nullptr;
  bool m_initialised = false;
  int m_fallback = -1;
  TokenList m_active;
  std::vector<std::unique_ptr<Token>> m_tokens;
  std::vector<Token*> m_free;
  std::string m_messages;
  int m_ties = 0;
};

}  // namespace veral3::test
