#include "training/corpus/RecordedVoices.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "training/speech/RecordedPhones.h"

namespace veral3::training {
namespace {

using enum Synthesiser;

// The three Indian packages (festvox-te-nsk, -hi-nsk, -mr-nsk) hold the same recordings: one is
// here.
constexpr auto kVoices = std::to_array<RecordedVoice>({
    {kFlite, "kal16", "flite1-dev", "flite (BSD-like)", 16000, "UTF-8", ArpabetPhones},
    {kFlite, "awb", "flite1-dev", "flite (BSD-like)", 16000, "UTF-8", ArpabetPhones},
    {kFlite, "rms", "flite1-dev", "flite (BSD-like)", 16000, "UTF-8", ArpabetPhones},
    {kFlite, "slt", "flite1-dev", "flite (BSD-like)", 16000, "UTF-8", ArpabetPhones},
    {kFestival, "ked_diphone", "festvox-kdlpc16k", "festvox (BSD-like)", 16000, "UTF-8",
     ArpabetPhones},
    {kFestival, "kal_diphone", "festvox-kallpc16k", "festvox (BSD-like)", 16000, "UTF-8",
     ArpabetPhones},
    {kFestival, "czech_dita", "festvox-czech-dita", "GPL-3+", 32000, "ISO-8859-2", CzechPhones,
     ForeignLanguage::kCzech},
    {kFestival, "czech_krb", "festvox-czech-krb", "GPL-3+", 32000, "ISO-8859-2", CzechPhones,
     ForeignLanguage::kCzech},
    {kFestival, "czech_machac", "festvox-czech-machac", "GPL-3+", 32000, "ISO-8859-2", CzechPhones,
     ForeignLanguage::kCzech},
    {kFestival, "suo_fi_lj_diphone", "festvox-suopuhe-lj", "LGPL-2+", 22050, "ISO-8859-1",
     FinnishPhones, ForeignLanguage::kFinnish},
    {kFestival, "lp_diphone", "festvox-italp16k", "GPL-2+", 16000, "ISO-8859-1", ItalianPhones,
     ForeignLanguage::kItalian},
    {kFestival, "msu_ru_nsh_clunits", "festvox-ru", "BSD-like", 16000, "UTF-8", RussianPhones,
     ForeignLanguage::kRussian},
    {kFestival, "telugu_NSK_diphone", "festvox-te-nsk", "GPL-2+", 16000, "UTF-8", TeluguPhones,
     ForeignLanguage::kTelugu},
    {kFestival, "upc_ca_ona_hts", "festvox-ca-ona-hts", "LGPL-2.1+", 16000, "ISO-8859-1",
     CatalanPhones, ForeignLanguage::kCatalan},
    // The speaker of flite's slt in another technology: figures on it come from models that never
    // heard slt.
    {kFestival, "cmu_us_slt_arctic_hts", "festvox-us-slt-hts", "EST-2003", 32000, "UTF-8",
     ArpabetPhones, std::nullopt, true},
});

}  // namespace

std::span<const RecordedVoice> RecordedVoices() { return kVoices; }

const RecordedVoice& RecordedVoiceOf(Synthesiser synthesiser, std::string_view name) {
  const auto voice = std::ranges::find_if(kVoices, [&](const RecordedVoice& v) {
    return v.synthesiser == synthesiser && v.name == name;
  });
  if (voice != kVoices.end()) return *voice;
  std::string known;
  for (const RecordedVoice& v : kVoices) {
    if (v.synthesiser == synthesiser) known += " " + std::string(v.name);
  }
  throw std::runtime_error("no voice " + std::string(name) + ", but" + known);
}

void RequireAllowed(const RecordedVoice& voice, LanguageType language, bool held_out) {
  const std::string name(voice.name);
  if (voice.measuring_only && !held_out) {
    throw std::runtime_error(name + " is for measuring only: --held-out");
  }
  if (held_out && (voice.reads || language != kLanguageEnglish)) {
    throw std::runtime_error(name + " has held-out sentences " +
                             (voice.reads ? "in no language" : "in English only"));
  }
}

}  // namespace veral3::training
