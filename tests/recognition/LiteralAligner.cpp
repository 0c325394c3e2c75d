#include "recognition/LiteralAligner.h"

#include <algorithm>
#include <cmath>

namespace veral3::test {

struct LiteralAligner::Node {
  char phoneme = '-';
  int state = 0;
  int sentence = -1;
  bool word_start = false;
  int variant = 0;
  const WordEntry* word = nullptr;
  std::vector<Node*> next;
  TokenList tokens;
};

struct LiteralAligner::Heads {
  std::vector<Node*> nodes;
};

struct LiteralAligner::Token {
  double score = 1.0;
  Node* node = nullptr;
  int sentence = -1;
  char last_phoneme = '*';
  std::vector<std::pair<Node*, int>> history;
};

LiteralAligner::LiteralAligner() {
  m_end = NewNode('$', 0, -1);
  m_start = NewNode('*', 0, -1);
}

LiteralAligner::~LiteralAligner() = default;

void LiteralAligner::AddSentence(WordSequence words) {
  m_sentences.push_back(std::move(words));
  m_initialised = false;
}

LiteralAligner::Node* LiteralAligner::NewNode(char phoneme, int state, int sentence) {
  m_nodes.push_back(std::make_unique<Node>());
  Node* node = m_nodes.back().get();
  node->phoneme = phoneme;
  node->state = state;
  node->sentence = sentence;
  return node;
}

void LiteralAligner::AddHead(Heads& heads, Node* node) {
  if (heads.nodes.size() == 32) {
    m_messages += "ERROR: Too many heads in ViterbiHeads::AddHead()\n";
  } else {
    heads.nodes.push_back(node);
  }
}

void LiteralAligner::AddNextNode(Node* node, Node* next) {
  if (node->next.size() == 32) {
    m_messages += "ERROR: Too many Next Nodes in ViterbiNode::AddNextNode\n";
  } else {
    node->next.push_back(next);
  }
}

LiteralAligner::Heads LiteralAligner::BuildPhoneme(char phoneme, const Heads& following,
                                                   int sentence) {
  Node* c0 = NewNode(phoneme, 0, sentence);
  Node* c1 = NewNode(phoneme, 1, sentence);
  Node* c2 = NewNode(phoneme, 2, sentence);
  for (Node* node : following.nodes) AddNextNode(c2, node);
  AddNextNode(c0, c0);
  AddNextNode(c1, c1);
  AddNextNode(c2, c2);
  AddNextNode(c0, c1);
  AddNextNode(c1, c2);
  Heads heads;
  AddHead(heads, c0);
  return heads;
}

LiteralAligner::Heads LiteralAligner::BuildVariant(const std::string& phonemes,
                                                   const Heads& following, int sentence) {
  if (phonemes.empty()) return following;
  return BuildPhoneme(phonemes[0], BuildVariant(phonemes.substr(1), following, sentence), sentence);
}

LiteralAligner::Heads LiteralAligner::BuildWords(int source, int i, int j, const Heads& following,
                                                 int sentence, bool pause) {
  if (i > j) return following;
  const Heads after = BuildWords(source, i + 1, j, following, sentence, true);
  const WordEntry& entry = m_sentences[static_cast<std::size_t>(source)][i];
  Heads heads;
  for (int v = 0; v < static_cast<int>(entry.pronunciations.size()); ++v) {
    const Pronunciation& pronunciation = entry.pronunciations[static_cast<std::size_t>(v)];
    if (pronunciation.phonemes.empty()) continue;
    Node* first = BuildVariant(std::string(pronunciation.phonemes), after, sentence).nodes[0];
    first->word_start = true;
    first->variant = v;
    first->word = &entry;
    AddHead(heads, first);
  }
  if (pause) AddHead(heads, BuildPhoneme('-', heads, sentence).nodes[0]);
  return heads;
}

void LiteralAligner::BuildNetwork() {
  Heads end;
  AddHead(end, m_end);
  Heads end_heads;
  AddHead(end_heads, BuildPhoneme('-', end, -1).nodes[0]);
  AddHead(end_heads, m_end);

  Heads network;
  const int n = static_cast<int>(m_sentences.size());
  if (n == 1) {
    network = BuildWords(0, 0, m_sentences[0].Count() - 1, end_heads, -1, true);
  } else {
    int shortest = m_sentences[0].Count();
    for (const WordSequence& s : m_sentences) shortest = std::min(shortest, s.Count());
    int p = 0;
    for (bool equal = true; p < shortest; ++p) {
      for (const WordSequence& s : m_sentences) equal &= s[p].word == m_sentences[0][p].word;
      if (!equal) break;
    }
    int s = 0;
    for (bool equal = true; s < shortest - p; ++s) {
      const WordSequence& a = m_sentences[0];
      for (const WordSequence& b : m_sentences) {
        equal &= a[a.Count() - 1 - s].word == b[b.Count() - 1 - s].word;
      }
      if (!equal) break;
    }
    Heads suffix_heads = end_heads;
    if (s > 0) {
      const int count = m_sentences[0].Count();
      suffix_heads = BuildWords(0, count - s, count - 1, end_heads, -1, true);
    }
    Heads middle;
    for (int i = 0; i < n; ++i) {
      const int count = m_sentences[static_cast<std::size_t>(i)].Count();
      if (count <= p + s) {
        m_fallback = i;
        for (Node* node : suffix_heads.nodes) AddHead(middle, node);
      } else {
        const Heads own = BuildWords(i, p, count - s - 1, suffix_heads, i, false);
        for (Node* node : own.nodes) AddHead(middle, node);
      }
    }
    AddHead(middle, BuildPhoneme('-', middle, -1).nodes[0]);
    network = p > 0 ? BuildWords(0, 0, p - 1, middle, -1, true) : middle;
  }
  for (Node* node : network.nodes) AddNextNode(m_start, node);
  m_initialised = true;
}

double LiteralAligner::StepScore(const CPhonemeSet& set, const Node* node,
                                 std::span<const double> row) const {
  if (node == m_end) return -2.2250738585072014e-303;
  const double p = row[static_cast<std::size_t>(set.GetStateIndex(node->phoneme, node->state))];
  return p < 1e-200 ? -2.2250738585072014e-303 : std::log(p);
}

LiteralAligner::Token* LiteralAligner::CopyOf(const Token& token) {
  if (m_free.empty()) {
    m_tokens.push_back(std::make_unique<Token>());
    m_free.push_back(m_tokens.back().get());
  }
  Token* copy = m_free.back();
  m_free.pop_back();
  *copy = token;
  return copy;
}

void LiteralAligner::Recycle(Token* token) { m_free.push_back(token); }

void LiteralAligner::PassTokens(const CPhonemeSet& set, std::span<const double> row, int time) {
  std::vector<Token*> stray;
  for (Token* token : m_active) {
    Node* n = token->node;
    if (n->next.empty()) {
      n->tokens.remove(token);
      Recycle(token);
      continue;
    }
    const double before = token->score;
    std::vector<Token*> copies{token};
    for (std::size_t k = 1; k < n->next.size(); ++k) copies.push_back(CopyOf(*token));
    for (std::size_t k = 0; k < n->next.size(); ++k) {
      Node* successor = n->next[k];
      Token* copy = copies[k];
      copy->score = before + StepScore(set, successor, row);
      if (successor != token->node) {
        if (k == 0) n->tokens.remove(token);
        copy->node = successor;
        if (successor->sentence != -1) copy->sentence = successor->sentence;
        copy->history.emplace_back(successor, time);
        copy->last_phoneme = successor->phoneme;
        successor->tokens.push_front(copy);
      } else if (k != 0) {
        stray.push_back(copy);  // in no list: it goes nowhere
      }
    }
  }
  for (Token* token : stray) Recycle(token);

  m_active.clear();
  for (const auto& node : m_nodes) {
    if (node->tokens.empty()) continue;
    Token* best = node->tokens.front();
    for (Token* token : node->tokens) {
      if (token->score > best->score) best = token;
    }
    for (Token* token : node->tokens) {
      if (token == best) continue;
      m_ties += token->score == best->score ? 1 : 0;
      Recycle(token);
    }
    node->tokens.assign(1, best);
    m_active.push_front(best);
  }
}

LiteralResult LiteralAligner::Align(const CPhonemeSet& set, std::span<const double> scores,
                                    int num_frames) {
  LiteralResult result;
  m_messages.clear();
  m_ties = 0;
  if (!m_initialised) BuildNetwork();

  const std::size_t columns = static_cast<std::size_t>(set.GetSize()) * 3;
  Token* first = CopyOf(Token{});
  first->node = m_start;
  first->history.emplace_back(m_start, 0);
  m_start->tokens.push_front(first);
  m_active.push_front(first);
  for (int t = 0; t < num_frames; ++t) {
    PassTokens(set, scores.subspan(static_cast<std::size_t>(t) * columns, columns), t * 220);
  }
  m_active.clear();

  const Token* winner = nullptr;
  if (m_end->tokens.empty()) {
    m_messages += "ERROR! No Winner Token  in VTokenList::GetWinnerToken().\n";
  } else {
    if (m_end->tokens.size() > 1) {
      m_messages += "ERROR! More than one Winner Token  in VTokenList::GetWinnerToken().\n";
    }
    winner = m_end->tokens.front();
  }

  if (winner) {
    result.log_probability = winner->score;
    int matched = 0;
    if (m_sentences.size() > 1) {
      matched = winner->sentence >= 0 ? winner->sentence : m_fallback;
    }
    if (matched < 0) {
      m_messages += "Error in ViterbiAligner::Align(): No Sentence matched.";
      result.answer = m_fallback - 1;
    } else {
      Fill(set, *winner, matched, scores, num_frames, result);
      result.answer = matched;
      result.by_fallback = m_sentences.size() > 1 && winner->sentence < 0;
    }
  }
  for (const auto& node : m_nodes) node->tokens.clear();
  m_tokens.clear();
  m_free.clear();
  result.messages = m_messages;
  result.ties = m_ties;
  return result;
}

void LiteralAligner::Fill(const CPhonemeSet& set, const Token& winner, int matched,
                          std::span<const double> scores, int num_frames,
                          LiteralResult& result) const {
  const WordSequence& sentence = m_sentences[static_cast<std::size_t>(matched)];
  const auto real = [](char c) { return c != '*' && c != '-' && c != '$'; };
  for (std::size_t k = 0; k < winner.history.size(); ++k) {
    const auto& [node, time] = winner.history[k];
    result.history.push_back({node->phoneme, node->state, node->word_start, node->variant, time});
    const Node* previous = k > 0 ? winner.history[k - 1].first : nullptr;
    if (previous && node->phoneme == previous->phoneme && node->state >= previous->state &&
        !node->word_start) {
      continue;
    }
    if (previous && real(previous->phoneme)) result.phoneme_end.push_back(time);
    if (!real(node->phoneme)) continue;
    const int phoneme = static_cast<int>(result.phonemes.size());
    result.phonemes += node->phoneme;
    result.phoneme_start.push_back(time);
    if (!node->word_start) continue;
    const int word = static_cast<int>(result.word_start.size());
    result.word_start.push_back(phoneme);
    const auto variant = static_cast<std::size_t>(node->variant);
    const WordEntry* entry = word < sentence.Count() ? &sentence[word] : node->word;
    if (variant >= entry->pronunciations.size() ||
        entry->pronunciations[variant].phonemes.empty()) {
      entry = node->word;
    }
    const Pronunciation& pronunciation = entry->pronunciations[variant];
    for (std::size_t i = 0; i < pronunciation.syllable_starts.size(); ++i) {
      result.syllable_start.push_back(phoneme + pronunciation.syllable_starts[i]);
      result.syllable_mark.push_back(pronunciation.syllable_marks[i]);
    }
  }
  for (int i = 0; i < sentence.Count(); ++i) result.words.emplace_back(sentence[i].word);

  const std::size_t columns = static_cast<std::size_t>(set.GetSize()) * 3;
  std::vector<double>& posterior = result.path_posterior;
  posterior.assign(static_cast<std::size_t>(num_frames), 0.0);
  for (std::size_t k = 0; k + 1 < winner.history.size(); ++k) {
    const auto& [node, time] = winner.history[k];
    for (int f = time / 220; f < winner.history[k + 1].second / 220; ++f) {
      double sum = 0.0;
      for (int state = 0; state < 3; ++state) {
        sum += scores[static_cast<std::size_t>(f) * columns +
                      static_cast<std::size_t>(set.GetStateIndex(node->phoneme, state))];
      }
      posterior[static_cast<std::size_t>(f)] = sum;
    }
  }
  const auto mean = [&](int from, int to) {
    if (from >= to) return 1.0;
    double product = 1.0;
    for (int f = from; f < to; ++f) product *= posterior[static_cast<std::size_t>(f)];
    return std::pow(product, 1.0 / (to - from));
  };
  const std::size_t n = result.phonemes.size();
  for (std::size_t i = 0; i < n; ++i) {
    result.phoneme_probability.push_back(
        mean(result.phoneme_start[i] / 220, result.phoneme_end[i] / 220));
  }
  for (std::size_t gap = 0; n > 0 && gap <= n; ++gap) {
    const int from = gap == 0 ? 0 : result.phoneme_end[gap - 1] / 220;
    const int to = gap == n ? num_frames - 1 : result.phoneme_start[gap] / 220;
    result.pause_probability.push_back(mean(from, to));
  }
  if (n == 0) result.pause_probability = {0.0};
}

}  // namespace veral3::test
