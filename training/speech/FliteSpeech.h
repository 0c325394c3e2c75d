#pragma once

#include <string>

#include "training/speech/EspeakSpeech.h"

struct cst_voice_struct;  // flite's

namespace veral3::training {

// Speech of a flite voice (kal16, awb, rms, slt), brought to 22050 Hz, with the phone times of its
// own segment relation in the names of ArpabetEvents.h. One thread.
class FliteSpeech {
 public:
  // Throws std::runtime_error for a voice that it does not know.
  explicit FliteSpeech(const std::string& voice);

  // `stretch`: duration, 1 as the voice has it. `pitch`: mean in Hz, 0 as the voice has it.
  SpokenText Speak(const std::string& text, double stretch, double pitch);

 private:
  cst_voice_struct* m_voice;  // flite keeps it
};

}  // namespace veral3::training
