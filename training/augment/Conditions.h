#pragma once

#include <array>
#include <span>
#include <string_view>

#include "training/common/Random.h"
#include "training/corpus/Utterance.h"

namespace veral3::training {

// How a recording may reach the engine, for measuring: one fault alone, of a stated size. dB are
// below the speech, whose level is the root mean square of its phonemes, pauses left out
// (SpeechLevel.h). Nothing is clipped but by kClipping6: what became too loud for 16 bits is made
// quieter as a whole.
enum class Condition {
  kClean,
  kWhite20,  // white noise, that many dB under the speech
  kWhite10,
  kWhite5,
  kBabble20,  // 3 to 8 other voices, all at once
  kBabble10,
  kBabble5,
  kHum,          // of the mains and its harmonics, -20 dB
  kReverb,       // a room with a real tail: 60 dB in 0.3 to 0.8 s, 0 to 8 dB under the direct sound
  kTelephone,    // 300 to 3400 Hz
  kOpus12,       // 12 kbit/s
  kMp3At32,      // 32 kbit/s
  kClipping6,    // 6 dB of the recording's peak cut off
  kQuiet40,      // its peak at -40 dB of full scale
  kPadding10ms,  // exactly so much silence before and after the speech, digital silence or
  kPadding3s,    // noise of at most 8 units of 16 bits
  kPitchUp400,   // pitch and formants up by 400 cents, tempo kept (children)
  kTempo07,      // slower, pitch kept
  kTempo15,      // faster, pitch kept
};

inline constexpr std::array kConditions = {
    Condition::kClean,      Condition::kWhite20,   Condition::kWhite10,     Condition::kWhite5,
    Condition::kBabble20,   Condition::kBabble10,  Condition::kBabble5,     Condition::kHum,
    Condition::kReverb,     Condition::kTelephone, Condition::kOpus12,      Condition::kMp3At32,
    Condition::kClipping6,  Condition::kQuiet40,   Condition::kPadding10ms, Condition::kPadding3s,
    Condition::kPitchUp400, Condition::kTempo07,   Condition::kTempo15,
};

std::string_view NameOf(Condition condition);  // "babble 20 dB"

// `others`: utterances by other voices, of which babble is made (those of the same voice are passed
// over); may be empty for the other conditions, and throws std::invalid_argument for babble.
// Labels (and syllable data) are carried along. An empty recording stays what it is, but for its
// padding.
Utterance UnderCondition(const Utterance& clean, Condition condition,
                         std::span<const Utterance> others, Random& random);

}  // namespace veral3::training
