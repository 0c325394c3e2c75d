#pragma once

#include <string>

#include "training/corpus/Utterance.h"
#include "training/speech/EspeakSpeech.h"
#include "training/speech/PhonemeEvents.h"

namespace veral3::training {

// What a synthesiser spoke of a text, with its events in the symbols of the table's language.
// Throws std::runtime_error, which names event and text, for an event that the table lacks.
Utterance LabelledSpeech(std::string text, std::string voice, SpokenText spoken,
                         const EventTable& table);

}  // namespace veral3::training
