#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "training/common/Random.h"

namespace veral3::training {

// Examples `begin` up to (not including) `end` make up `share` of what is learnt from.
struct ExampleGroup {
  std::uint32_t begin = 0;
  std::uint32_t end = 0;
  double share = 1.0;
};

// Deals out the examples of each epoch, so that a synthesiser that speaks for nothing does not
// drown the few voices that were recorded: every group has its share, whatever its size. Within a
// group no example comes twice more often than another.
class Deck {
 public:
  // `size`: examples an epoch. Shares are taken relative to their sum. Throws std::runtime_error
  // for a group without examples or a share that is not above 0.
  Deck(const std::vector<ExampleGroup>& groups, std::size_t size);

  // The next epoch's examples in random order.
  std::vector<std::uint32_t> Deal(Random& random);

 private:
  struct Pile {
    std::vector<std::uint32_t> examples;
    std::size_t next;   // first that is not dealt yet since the pile was shuffled
    std::size_t count;  // dealt an epoch
  };
  std::vector<Pile> m_piles;
};

}  // namespace veral3::training
