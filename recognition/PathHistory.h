#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace veral3 {

// The histories of all tokens of one decoding, as a forest: each entry says which node was entered
// at which frame and which entry came before. Tokens name their last entry, so that copying a
// token costs nothing, whatever its history.
//
//   PathHistory history(most_a_frame);
//   for each frame:
//     history.MakeRoom(heads);              // heads: the tokens' last entries, renumbered here
//     heads[i] = history.Append(node, frame, heads[j]);
//
// Entries that no token reaches any more are dropped when room runs out, so memory follows the
// live paths and not the length of the recording.
class PathHistory {
 public:
  static constexpr std::int32_t kNone = -1;

  struct Entry {
    std::int32_t node;
    std::int32_t frame;
    std::int32_t previous;  // kNone for the first
  };

  // `most_a_frame`: how many entries one frame can append.
  explicit PathHistory(std::size_t most_a_frame);

  // Makes sure that a frame's entries fit. `heads` name every entry that is still wanted (kNone:
  // nothing); entries may move, and `heads` follow them.
  void MakeRoom(std::span<std::int32_t> heads) {
    if (m_entries.size() - m_size < m_most_a_frame) Reclaim(heads);
  }

  // Appends an entry and returns its number. Not `wanted`: the same without the entry, so that a
  // decision that no processor can foresee needs no branch.
  std::int32_t Append(std::int32_t node, std::int32_t frame, std::int32_t previous,
                      bool wanted = true) {
    m_entries[m_size] = {node, frame, previous};
    const auto number = static_cast<std::int32_t>(m_size);
    m_size += wanted ? 1 : 0;
    return number;
  }

  const Entry& operator[](std::int32_t number) const {
    return m_entries[static_cast<std::size_t>(number)];
  }

  // Entries that fit in the memory held now.
  std::size_t Capacity() const { return m_entries.size(); }

 private:
  void Reclaim(std::span<std::int32_t> heads);

  std::size_t m_most_a_frame;
  std::size_t m_size = 0;
  std::vector<Entry> m_entries;       // m_size of them in use, each after its previous one
  std::vector<std::int32_t> m_moved;  // new numbers, while reclaiming
};

}  // namespace veral3
