#include "training/speech/EspeakSpeech.h"

#include <espeak-ng/speak_lib.h>

#include <cstring>
#include <filesystem>
#include <stdexcept>

#include "signal/CWaveFrameDef.h"

namespace veral3::training {
namespace {

SpokenText* g_receiver = nullptr;  // of the Speak that is running; espeak-ng is one a process

int Receive(short* samples, int count, espeak_EVENT* events) {
  if (g_receiver == nullptr) return 1;
  if (samples != nullptr) {
    g_receiver->samples.insert(g_receiver->samples.end(), samples, samples + count);
  }
  for (; events->type != espeakEVENT_LIST_TERMINATED; ++events) {
    if (events->type != espeakEVENT_PHONEME) continue;
    char name[sizeof events->id.string + 1] = {};  // eight bytes have no room for a zero
    std::memcpy(name, events->id.string, sizeof events->id.string);
    g_receiver->events.push_back({name, events->sample});
  }
  return 0;
}

bool VariantExists(const std::string& variant) {
  const char* data = nullptr;
  espeak_Info(&data);
  return std::filesystem::exists(std::filesystem::path(data) / "voices" / "!v" / variant);
}

// espeak-ng from the first use to the end of the process: started a second time it may wait for
// itself for ever.
struct Process {
  Process()
      : rate(espeak_Initialize(AUDIO_OUTPUT_SYNCHRONOUS, 0, nullptr,
                               espeakINITIALIZE_PHONEME_EVENTS | espeakINITIALIZE_DONT_EXIT)) {}
  ~Process() { espeak_Terminate(); }
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  int rate;
};

}  // namespace

EspeakSpeech::EspeakSpeech() {
  static const Process process;
  if (process.rate != kSampleRate) {
    throw std::runtime_error("espeak-ng did not start at 22050 Hz; is espeak-ng-data installed?");
  }
  espeak_SetSynthCallback(Receive);
}

void EspeakSpeech::SetVoice(const EspeakVoice& voice) {
  const auto plus = voice.name.find('+');
  const bool variant_missing =
      plus != std::string::npos && !VariantExists(voice.name.substr(plus + 1));
  if (variant_missing || espeak_SetVoiceByName(voice.name.c_str()) != EE_OK) {
    throw std::runtime_error("espeak-ng has no voice [" + voice.name + "]");
  }
  espeak_SetParameter(espeakRATE, voice.rate, 0);
  espeak_SetParameter(espeakPITCH, voice.pitch, 0);
  espeak_SetParameter(espeakRANGE, voice.range, 0);
  espeak_SetParameter(espeakWORDGAP, voice.word_gap, 0);
}

SpokenText EspeakSpeech::Speak(const std::string& text) {
  SpokenText spoken;
  g_receiver = &spoken;
  const auto result = espeak_Synth(text.c_str(), text.size() + 1, 0, POS_CHARACTER, 0,
                                   espeakCHARS_UTF8 | espeakPHONEMES, nullptr, nullptr);
  g_receiver = nullptr;
  if (result != EE_OK) throw std::runtime_error("espeak-ng could not speak [" + text + "]");
  return spoken;
}

std::vector<std::string> EspeakSpeech::PhonemeNames(const std::string& text) {
  constexpr int kUnderscoreBetween = '_' << 8;
  std::vector<std::string> names;
  const void* rest = text.c_str();
  while (rest != nullptr) {
    const char* phonemes = espeak_TextToPhonemes(&rest, espeakCHARS_UTF8, kUnderscoreBetween);
    std::string name;
    for (const char* c = phonemes; c != nullptr; ++c) {
      if (*c == '_' || *c == ' ' || *c == '\0') {
        if (!name.empty()) names.push_back(name);
        name.clear();
        if (*c == '\0') break;
      } else if (*c != '\'' && *c != ',' && *c != '%' && *c != '=') {  // stress marks
        name += *c;
      }
    }
  }
  return names;
}

}  // namespace veral3::training
