#pragma once

#include <cstddef>
#include <string_view>

namespace veral3::training {

// The fewest changes that make one sequence of symbols from another (Levenshtein 1966), by kind. Of
// ways that are as short, the one with the most substitutions.
struct Edits {
  std::size_t substitutions = 0;
  std::size_t deletions = 0;   // of the true symbols
  std::size_t insertions = 0;  // of symbols that are not there
  std::size_t length = 0;      // of the true sequence

  std::size_t Total() const { return substitutions + deletions + insertions; }
  double Rate() const {  // of changes by true symbol; 0 for none
    return length == 0 ? 0.0 : static_cast<double>(Total()) / static_cast<double>(length);
  }
  Edits& operator+=(const Edits& other);
  friend bool operator==(const Edits&, const Edits&) = default;
};

Edits CountEdits(std::string_view truth, std::string_view said);

}  // namespace veral3::training
