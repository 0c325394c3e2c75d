#pragma once

#include <span>
#include <vector>

#include "common/LanguageType.h"
#include "training/train/Deck.h"
#include "training/train/Network.h"
#include "training/train/Trainer.h"

// A classifier's probabilities hang on how often each class came while it learnt. Corpora may say
// rare sounds more often than people do, so that they are learnt, as long as that is taken back
// after.
namespace veral3::training {

// How often each class comes among what a Deck of these groups deals, adding up to 1. No groups:
// all examples alike.
std::vector<double> ClassShares(const ExampleSource& source, std::span<const ExampleGroup> groups);

// The shares that suit phoneme scores of the language, beside pauses as often as in `learnt`:
// proportional to the normalisers of the scores, which are frequencies; and where a normaliser is
// below 1, times it once more, because there a score divides by its square, so that a phoneme which
// is heard as another would pass by arithmetic. They add up to less than 1.
std::vector<double> ScoredShares(LanguageType language, std::span<const double> learnt);

// The network as if the classes had come with the shares `wanted` while it learnt, and not with
// those of `learnt` (Saerens, Latinne and Decaestecker 2002): each column's bias gains the
// logarithm of their quotient. A class that never came stays as it is. Throws std::runtime_error
// for other numbers of classes, or where a wanted share is not above 0.
Network WithPriors(const Network& network, std::span<const double> learnt,
                   std::span<const double> wanted);

}  // namespace veral3::training
