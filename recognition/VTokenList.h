#pragma once

#include <cstdint>
#include <vector>

// A hypothesis: how well the best path to a node scores, and where its history ends.
struct ViterbiToken {
  double score = 1.0;         // sum of natural logarithms, on top of a first 1.0
  std::int32_t history = -1;  // its last entry in the PathHistory
};

// The tokens that meet in one node. The one added last is the front one.
class VTokenList {
 public:
  void AddToken(const ViterbiToken& token) { m_tokens.push_back(token); }
  int GetCount() const { return static_cast<int>(m_tokens.size()); }

  // Keeps the one with the highest score; among equals, the one nearest the front.
  void KeepBestToken();

  // The token that won, for a node that ends the network: null with a message when there is none.
  // There should be just one; more are reported, and the front one wins.
  const ViterbiToken* GetWinnerToken() const;

 private:
  std::vector<ViterbiToken> m_tokens;  // the back of the vector is the front of the list
};
