#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "core/FrameSpan.h"
#include "core/Tones.h"
#include "training/common/Random.h"
#include "training/corpus/Utterance.h"

// From an utterance with known syllables and tones to examples for the tone classifier, by the
// engine's own pitch tracker and tone features:
//
//   const ToneTrack track = ToneTrackOf(utterance);
//   for (const ToneExample& example : ToneExamplesOf(WarpTrack(track, random), tones)) ...
namespace veral3::training {

// The pitch of an utterance's frames ([Hz], 0 unvoiced) and the frames of its syllables.
struct ToneTrack {
  std::vector<std::int32_t> pitch;
  std::vector<FrameSpan> syllables;
  // Syllables whose tone is lost, because a fifth or more of their voice lies below the tracker.
  // Empty where nobody looked.
  std::vector<bool> lost = {};
};

struct ToneExample {
  ToneFeatures features;
  int tone_class;  // 0 to 4
  int syllable;    // of the utterance
};

// Tones 1 to 4 are classes of their own number, the neutral tone, 5, is class 0.
int ToneClassOf(char tone);

// The syllables where the labels have them; samples filtered as alignment filters them.
ToneTrack ToneTrackOf(const Utterance& utterance);

// The same by a tracker that follows a voice down to 40 Hz, to tell what the engine's loses.
ToneTrack DeepTrackOf(const Utterance& utterance);

// Mean of the voiced frames of all syllables [Hz], 0 where there are none.
double MeanPitch(const ToneTrack& track);

// For each syllable whether a fifth or more of its voiced frames lie below the engine's tracker:
// what of its tone is left is then chance. `deep`: the track of DeepTrackOf.
std::vector<bool> FallBelowTracker(const ToneTrack& deep);

// The frames of an utterance's syllables by its labels.
std::vector<FrameSpan> SyllableFrames(const Utterance& utterance);

// The same utterance as another speaker might have said it, who speaks higher or lower, livelier or
// flatter, faster or slower, whose contours are bent and unsteady, whose voice creaks where it is
// low, and whose syllables are cut a little wrong. All that is by chance and leaves the tones what
// they are, but for those that are lost below the tracker.
ToneTrack WarpTrack(const ToneTrack& track, Random& random);

// One example a syllable; none for lost ones, and for those in more than two pieces, which the
// engine does not classify. `tones`: digits 1 to 5, one a syllable.
std::vector<ToneExample> ToneExamplesOf(const ToneTrack& track, std::string_view tones);

}  // namespace veral3::training
