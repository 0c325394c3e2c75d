#include "training/speech/LabelledSpeech.h"

#include <exception>
#include <stdexcept>
#include <utility>

namespace veral3::training {

Utterance LabelledSpeech(std::string text, std::string voice, SpokenText spoken,
                         const EventTable& table) {
  Utterance utterance;
  utterance.text = std::move(text);
  utterance.voice = std::move(voice);
  try {
    utterance.labels =
        LabelsFromEvents(spoken.events, table, static_cast<std::int32_t>(spoken.samples.size()));
  } catch (const std::exception& error) {
    throw std::runtime_error(std::string(error.what()) + " in \"" + utterance.text + "\"");
  }
  utterance.samples = std::move(spoken.samples);
  return utterance;
}

}  // namespace veral3::training
