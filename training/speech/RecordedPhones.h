#pragma once

#include "training/speech/PhoneInventory.h"

// The phones of the recorded voices (corpus/RecordedVoices.h), by the language they were recorded
// in. Aspirated plosives are Chinese p t k and voiceless ones without aspiration Chinese b d g;
// English wants aspiration before vowels and takes the others after s and at the end of a syllable.
// What is long enough to be two Japanese symbols reads as two.
namespace veral3::training {

const PhoneInventory&
ArpabetPhones();  // English, of flite and festival; the alphabet in lower case
const PhoneInventory& CatalanPhones();
const PhoneInventory& CzechPhones();
const PhoneInventory& FinnishPhones();
const PhoneInventory& ItalianPhones();
const PhoneInventory& RussianPhones();
const PhoneInventory& TeluguPhones();

}  // namespace veral3::training
