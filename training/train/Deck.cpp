#include "training/train/Deck.h"

#include <cmath>
#include <numeric>
#include <span>
#include <stdexcept>

namespace veral3::training {

Deck::Deck(const std::vector<ExampleGroup>& groups, std::size_t size) {
  double sum = 0.0;
  for (const ExampleGroup& group : groups) {
    if (group.begin >= group.end) throw std::runtime_error("a group has no examples");
    if (!(group.share > 0.0)) throw std::runtime_error("a group's share must be above 0");
    sum += group.share;
  }
  double upto = 0.0;
  std::size_t dealt = 0;
  for (const ExampleGroup& group : groups) {
    Pile pile{std::vector<std::uint32_t>(group.end - group.begin), 0, 0};
    std::iota(pile.examples.begin(), pile.examples.end(), group.begin);
    pile.next = pile.examples.size();  // shuffled first
    upto += group.share;
    const auto end =
        static_cast<std::size_t>(std::llround(static_cast<double>(size) * (upto / sum)));
    pile.count = end - dealt;
    dealt = end;
    m_piles.push_back(std::move(pile));
  }
}

std::vector<std::uint32_t> Deck::Deal(Random& random) {
  std::vector<std::uint32_t> hand;
  for (Pile& pile : m_piles) {
    for (std::size_t k = 0; k < pile.count; ++k) {
      if (pile.next == pile.examples.size()) {
        random.Shuffle(std::span(pile.examples));
        pile.next = 0;
      }
      hand.push_back(pile.examples[pile.next++]);
    }
  }
  random.Shuffle(std::span(hand));
  return hand;
}

}  // namespace veral3::training
