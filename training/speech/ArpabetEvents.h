#pragma once

#include "training/speech/PhonemeEvents.h"

namespace veral3::training {

// The phone names of flite and festival (the ARPA alphabet in lower case) in the symbols of the
// English set. The speakers of these events call an r after its vowel "r_coda".
const EventTable& ArpabetEventTable();

// True for the name of a vowel.
bool IsArpabetVowel(std::string_view name);

}  // namespace veral3::training
