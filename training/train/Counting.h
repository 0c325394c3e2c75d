#pragma once

#include "training/measure/Scores.h"
#include "training/train/Trainer.h"

namespace veral3::training {

// How many examples of a source a network classes rightly.
struct CountedClasses {
  ClassCounts all;
  ClassCounts without_pauses;
};

// `states`: columns that are summed to a class (3 states of a phoneme); `pause`: the class that is
// left out of the second count, -1 for none. Boundaries are where they are.
CountedClasses CountClasses(const Network& network, ExampleSource& source, std::size_t states,
                            int pause);

// A line each on standard output; the second only where there are pauses. `what` goes before.
void PrintCounts(const char* what, const CountedClasses& counts);

}  // namespace veral3::training
