#include "recognition/TokenPassing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "recognition/PathHistory.h"
#include "recognition/VTokenList.h"

namespace veral3 {

namespace {

constexpr double kNoToken = -std::numeric_limits<double>::infinity();
constexpr double kInitialScore = 1.0;

// What the step into a state costs, for the states of a frame. Each logarithm is taken once, for
// the phonemes that the network uses; a last column is closed to every token.
class StepScores {
 public:
  StepScores(const DecodingNetwork& network, const CPhonemeSet& set)
      : m_columns(static_cast<std::size_t>(set.GetSize()) * 3), m_steps(m_columns + 3, kNoToken) {
    std::vector<bool> used(m_columns, false);
    for (std::size_t node = DecodingNetwork::kFirstPhonemeNode; node < network.nodes.size();
         node += 3) {
      const int state_index = set.GetStateIndex(network.nodes[node].phoneme, 0);
      const std::size_t column =
          state_index < 0 ? m_columns : static_cast<std::size_t>(state_index);
      m_column_of_phoneme.push_back(column);
      if (column < m_columns) used[column] = true;
    }
    for (std::size_t column = 0; column < m_columns; column += 3) {
      if (used[column]) m_used.push_back(column);
    }
  }

  std::size_t NumColumns() const { return m_columns; }

  void Take(std::span<const double> probabilities) {
    for (const std::size_t column : m_used) {
      for (std::size_t i = column; i < column + 3; ++i) m_steps[i] = Step(probabilities[i]);
    }
  }

  // The costs of a phoneme's three states.
  const double* Of(std::size_t phoneme) const { return &m_steps[m_column_of_phoneme[phoneme]]; }

 private:
  static double Step(double probability) {
    // What is not a number, or infinite, is no probability either.
    const bool counts =
        probability >= kLeastProbability && probability <= std::numeric_limits<double>::max();
    return counts ? std::log(probability) : kNextToNothing;
  }

  std::size_t m_columns;
  std::vector<double> m_steps;
  std::vector<std::size_t> m_column_of_phoneme;
  std::vector<std::size_t> m_used;
};

// The network's links turned round: which phonemes lead into a phoneme, or to the end.
class Arrivals {
 public:
  explicit Arrivals(const DecodingNetwork& network)
      : m_begin(static_cast<std::size_t>(network.NumPhonemes()) + 2, 0),
        m_loops(static_cast<std::size_t>(network.NumPhonemes()), 0) {
    std::vector<std::vector<std::int32_t>> into(m_begin.size() - 1);
    const auto target = [&](std::int32_t node) {
      return node == DecodingNetwork::kEndNode ? into.size() - 1 : PhonemeOf(node);
    };
    for (std::size_t phoneme = 0; phoneme < m_loops.size(); ++phoneme) {
      const auto last_state =
          static_cast<std::int32_t>(3 * phoneme) + DecodingNetwork::kFirstPhonemeNode + 2;
      for (const std::int32_t next : network.nodes[static_cast<std::size_t>(last_state)].next) {
        if (next == last_state) {
          m_loops[phoneme] = 1;
          continue;
        }
        // A node that is named twice is entered twice with the same score: once will do.
        std::vector<std::int32_t>& from = into[target(next)];
        const auto number = static_cast<std::int32_t>(phoneme);
        if (from.empty() || from.back() != number) from.push_back(number);
      }
    }
    for (std::size_t i = 0; i < into.size(); ++i) {
      m_from.insert(m_from.end(), into[i].begin(), into[i].end());
      m_begin[i + 1] = m_from.size();
    }
  }

  static std::size_t PhonemeOf(std::int32_t node) {
    return static_cast<std::size_t>(node - DecodingNetwork::kFirstPhonemeNode) / 3;
  }

  // In order of creation.
  std::span<const std::int32_t> Into(std::size_t phoneme) const {
    return std::span(m_from).subspan(m_begin[phoneme], m_begin[phoneme + 1] - m_begin[phoneme]);
  }
  std::span<const std::int32_t> IntoEnd() const { return Into(m_loops.size()); }

  // Whether state 2 leads to itself.
  bool Loops(std::size_t phoneme) const { return m_loops[phoneme] != 0; }

 private:
  std::vector<std::size_t> m_begin;  // places in m_from, phoneme by phoneme, the end node last
  std::vector<std::int32_t> m_from;
  std::vector<std::uint8_t> m_loops;
};

// The tokens of one phoneme's states: scores, kNoToken for none, and history entries.
struct PhonemeTokens {
  std::array<double, 3> score{kNoToken, kNoToken, kNoToken};
};

class Decoder {
 public:
  Decoder(const DecodingNetwork& network, const CPhonemeSet& set)
      : m_network(network),
        m_arrivals(network),
        m_steps(network, set),
        m_tokens(static_cast<std::size_t>(network.NumPhonemes())),
        m_heads(3 * m_tokens.size(), PathHistory::kNone),
        m_history(m_heads.size() + 2) {}

  std::optional<BestPath> Decode(std::span<const double> frame_scores, int num_frames) {
    const ViterbiToken start{kInitialScore,
                             m_history.Append(DecodingNetwork::kStartNode, 0, PathHistory::kNone)};
    for (int t = 0; t + 1 < num_frames; ++t) {
      m_steps.Take(frame_scores.subspan(static_cast<std::size_t>(t) * m_steps.NumColumns(),
                                        m_steps.NumColumns()));
      if (t == 0) {
        Enter(start);
      } else {
        Pass(t);
      }
    }
    VTokenList arrived = num_frames == 1 ? EndFromStart(start) : EndFromPhonemes();
    arrived.KeepBestToken();
    const ViterbiToken* winner = arrived.GetWinnerToken();
    if (winner == nullptr) return std::nullopt;
    return BestPath{winner->score, Trace(winner->history, num_frames), m_history.Capacity()};
  }

 private:
  // Frame 0: from the start node into everything that the network begins with.
  void Enter(const ViterbiToken& start) {
    for (const std::int32_t next : StartNode().next) {
      if (next == DecodingNetwork::kEndNode) continue;
      const std::size_t phoneme = Arrivals::PhonemeOf(next);
      const double score = start.score + m_steps.Of(phoneme)[0];
      if (score == kNoToken || m_tokens[phoneme].score[0] != kNoToken) continue;
      m_tokens[phoneme].score[0] = score;
      m_heads[3 * phoneme] = m_history.Append(next, 0, start.history);
    }
  }

  // A later frame. What leads into a phoneme has a higher number, and a state follows the one
  // before: in this order the tokens of the frame before are still there when they are needed.
  void Pass(int frame) {
    m_history.MakeRoom(m_heads);
    std::int32_t node = DecodingNetwork::kFirstPhonemeNode;
    for (std::size_t phoneme = 0; phoneme < m_tokens.size(); ++phoneme, node += 3) {
      std::array<double, 3>& score = m_tokens[phoneme].score;
      std::int32_t* head = &m_heads[3 * phoneme];
      const double* step = m_steps.Of(phoneme);

      const double loop = m_arrivals.Loops(phoneme) ? score[2] : kNoToken;
      MoveOrStay(score[1] + step[2], head[1], loop + step[2], node + 2, frame, score[2], head[2]);
      MoveOrStay(score[0] + step[1], head[0], score[1] + step[1], node + 1, frame, score[1],
                 head[1]);

      double best = kNoToken;
      std::int32_t best_head = PathHistory::kNone;
      for (const std::int32_t from : m_arrivals.Into(phoneme)) {
        const auto place = static_cast<std::size_t>(from);
        const double arriving = m_tokens[place].score[2] + step[0];
        if (arriving > best) {
          best = arriving;
          best_head = m_heads[3 * place + 2];
        }
      }
      MoveOrStay(best, best_head, score[0] + step[0], node, frame, score[0], head[0]);
    }
  }

  // The survivor of two tokens in a node; the one that enters wins a tie. Which it will be cannot
  // be foreseen, so this is written without branches.
  void MoveOrStay(double move, std::int32_t move_head, double stay, std::int32_t node, int frame,
                  double& score, std::int32_t& head) {
    const int moves = static_cast<int>(!(stay > move)) & static_cast<int>(move > kNoToken);
    const std::int32_t entry = m_history.Append(node, frame, move_head, moves != 0);
    head += (entry - head) & -moves;
    score = stay > move ? stay : move;
  }

  // The last frame: tokens walk up to the end node in falling order of creation.
  VTokenList EndFromPhonemes() const {
    VTokenList arrived;
    const std::span<const std::int32_t> into_end = m_arrivals.IntoEnd();
    for (auto from = into_end.rbegin(); from != into_end.rend(); ++from) {
      const auto place = static_cast<std::size_t>(*from);
      const double score = m_tokens[place].score[2];
      if (score == kNoToken) continue;
      arrived.AddToken({score + kNextToNothing, m_heads[3 * place + 2]});
    }
    return arrived;
  }

  VTokenList EndFromStart(const ViterbiToken& start) const {
    VTokenList arrived;
    for (const std::int32_t next : StartNode().next) {
      if (next != DecodingNetwork::kEndNode) continue;
      arrived.AddToken({start.score + kNextToNothing, start.history});
    }
    return arrived;
  }

  // Steps from the start to `entry`, then the end node. Entries say when a node was first entered;
  // a state 2 is entered again in every later frame that it lasts.
  std::vector<PathStep> Trace(std::int32_t entry, int num_frames) const {
    std::vector<PathStep> steps{{DecodingNetwork::kEndNode, num_frames - 1}};
    for (; entry != PathHistory::kNone; entry = m_history[entry].previous) {
      const auto [node, first, previous] = m_history[entry];
      if (m_network.nodes[static_cast<std::size_t>(node)].state == 2) {
        for (int t = steps.back().frame - 1; t > first; --t) steps.push_back({node, t});
      }
      steps.push_back({node, first});
    }
    std::ranges::reverse(steps);
    return steps;
  }

  const ViterbiNode& StartNode() const { return m_network.nodes[DecodingNetwork::kStartNode]; }

  const DecodingNetwork& m_network;
  Arrivals m_arrivals;
  StepScores m_steps;
  std::vector<PhonemeTokens> m_tokens;
  std::vector<std::int32_t> m_heads;  // last history entry of each state's token
  PathHistory m_history;
};

}  // namespace

std::optional<BestPath> PassTokens(const DecodingNetwork& network, const CPhonemeSet& set,
                                   std::span<const double> frame_scores, int num_frames) {
  return Decoder(network, set).Decode(frame_scores, num_frames);
}

}  // namespace veral3
