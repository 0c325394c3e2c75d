#include "recognition/PathHistory.h"

#include <algorithm>

namespace veral3 {

namespace {
constexpr std::size_t kLeastCapacity = 4096;  // entries, 48 KB: stays in a processor's cache
}

PathHistory::PathHistory(std::size_t most_a_frame)
    : m_most_a_frame(most_a_frame + 1),  // an unwanted entry needs its place too
      m_entries(std::max(kLeastCapacity, 4 * m_most_a_frame)) {}

void PathHistory::Reclaim(std::span<std::int32_t> heads) {
  constexpr std::int32_t kReached = 0;
  m_moved.assign(m_size, kNone);
  for (const std::int32_t head : heads) {
    for (std::int32_t entry = head;
         entry != kNone && m_moved[static_cast<std::size_t>(entry)] == kNone;
         entry = (*this)[entry].previous) {
      m_moved[static_cast<std::size_t>(entry)] = kReached;
    }
  }

  // An entry's previous one has a lower number, so its new number is known in time.
  std::size_t kept = 0;
  for (std::size_t i = 0; i < m_size; ++i) {
    if (m_moved[i] == kNone) continue;
    Entry entry = m_entries[i];
    if (entry.previous != kNone) entry.previous = m_moved[static_cast<std::size_t>(entry.previous)];
    m_moved[i] = static_cast<std::int32_t>(kept);
    m_entries[kept++] = entry;
  }
  m_size = kept;
  for (std::int32_t& head : heads) {
    if (head != kNone) head = m_moved[static_cast<std::size_t>(head)];
  }

  // Half of the room free keeps the cost of reclaiming in proportion to what is appended.
  if (m_entries.size() < 2 * (kept + m_most_a_frame)) {
    m_entries.resize(2 * (kept + m_most_a_frame));
  }
}

}  // namespace veral3
