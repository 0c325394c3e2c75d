#pragma once

#include <cstdint>
#include <random>

#include "grading/RecordingView.h"

// Random pairs of learner and tutor: many ties, zeros and missing peaks, tutors of the same and of
// another text (of other counts, too), pauses about as long as those that count.
namespace veral3::test {

using Generator = std::mt19937;  // the same numbers everywhere, unlike the standard distributions

struct Pair {
  LearnerView learner;
  RecordingView tutor;
  double probability = 1.0;  // that the learner read the sentence at all
};

// Every syllable has a vowel, so that every pair can be graded.
Pair MakePair(Generator& random);

// The same, with what a recogniser seldom gives: values from everywhere, syllables without vowels
// or of more phonemes than count, words that were not found, more or fewer measured syllables.
Pair MakeOddPair(Generator& random);

int Below(Generator& random, int limit);
inline bool OneIn(Generator& random, int n) { return Below(random, n) == 0; }

}  // namespace veral3::test
