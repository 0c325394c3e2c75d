#include "training/measure/EditDistance.h"

#include <vector>

namespace veral3::training {
namespace {

// Fewer changes first; of as many, more substitutions.
bool Better(const Edits& a, const Edits& b) {
  return a.Total() != b.Total() ? a.Total() < b.Total() : a.substitutions > b.substitutions;
}

}  // namespace

Edits& Edits::operator+=(const Edits& other) {
  substitutions += other.substitutions;
  deletions += other.deletions;
  insertions += other.insertions;
  length += other.length;
  return *this;
}

Edits CountEdits(std::string_view truth, std::string_view said) {
  // row[j]: from the true symbols so far to the first j symbols said.
  std::vector<Edits> row(said.size() + 1);
  for (std::size_t j = 1; j <= said.size(); ++j) row[j].insertions = j;
  for (std::size_t i = 1; i <= truth.size(); ++i) {
    Edits diagonal = row[0];
    ++row[0].deletions;
    for (std::size_t j = 1; j <= said.size(); ++j) {
      Edits best = diagonal;
      best.substitutions += truth[i - 1] != said[j - 1];
      Edits deleted = row[j];
      ++deleted.deletions;
      Edits inserted = row[j - 1];
      ++inserted.insertions;
      if (Better(deleted, best)) best = deleted;
      if (Better(inserted, best)) best = inserted;
      diagonal = row[j];
      row[j] = best;
    }
  }
  Edits edits = row[said.size()];
  edits.length = truth.size();
  return edits;
}

}  // namespace veral3::training
