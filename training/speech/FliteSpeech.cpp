#include "training/speech/FliteSpeech.h"

#include <flite/flite.h>

#include <cmath>
#include <memory>
#include <stdexcept>
#include <string_view>

#include "signal/CWaveFrameDef.h"
#include "training/augment/Augment.h"
#include "training/speech/ArpabetEvents.h"

extern "C" {
cst_voice* register_cmu_us_kal16(const char* folder);
cst_voice* register_cmu_us_awb(const char* folder);
cst_voice* register_cmu_us_rms(const char* folder);
cst_voice* register_cmu_us_slt(const char* folder);
}

namespace veral3::training {
namespace {

const cst_item* WordOf(const cst_item* segment) {
  const cst_item* syllable = item_parent(item_as(segment, "SylStructure"));
  return syllable == nullptr ? nullptr : item_parent(syllable);
}

}  // namespace

FliteSpeech::FliteSpeech(const std::string& voice) : m_voice(nullptr) {
  flite_init();
  if (voice == "kal16") m_voice = register_cmu_us_kal16(nullptr);
  if (voice == "awb") m_voice = register_cmu_us_awb(nullptr);
  if (voice == "rms") m_voice = register_cmu_us_rms(nullptr);
  if (voice == "slt") m_voice = register_cmu_us_slt(nullptr);
  if (m_voice == nullptr) throw std::runtime_error("flite has no voice [" + voice + "]");
}

SpokenText FliteSpeech::Speak(const std::string& text, double stretch, double pitch) {
  flite_feat_set_float(m_voice->features, "duration_stretch", static_cast<float>(stretch));
  if (pitch > 0.0) {
    flite_feat_set_float(m_voice->features, "int_f0_target_mean", static_cast<float>(pitch));
  }
  const std::unique_ptr<cst_utterance, void (*)(cst_utterance*)> utterance(
      flite_synth_text(text.c_str(), m_voice), delete_utterance);
  const cst_wave* wave = utterance ? utt_wave(utterance.get()) : nullptr;
  if (wave == nullptr) throw std::runtime_error("flite could not speak [" + text + "]");

  SpokenText spoken;
  const std::vector<float> own(wave->samples, wave->samples + wave->num_samples);
  for (const float x : Resample(own, double{kSampleRate} / wave->sample_rate)) {
    spoken.samples.push_back(
        static_cast<std::int16_t>(std::lround(std::fmax(-32768.0f, std::fmin(32767.0f, x)))));
  }
  double start = 0.0;
  for (const cst_item* segment = relation_head(utt_relation(utterance.get(), "Segment"));
       segment != nullptr; segment = item_next(segment)) {
    std::string name = item_feat_string(segment, "name");
    const cst_item* next = item_next(segment);
    const bool before_vowel = next != nullptr && WordOf(next) == WordOf(segment) &&
                              IsArpabetVowel(item_feat_string(next, "name"));
    if (name == "r" && !before_vowel) name = "r_coda";
    spoken.events.push_back({name, static_cast<std::int32_t>(std::lround(start * kSampleRate))});
    start = static_cast<double>(item_feat_float(segment, "end"));
  }
  return spoken;
}

}  // namespace veral3::training
