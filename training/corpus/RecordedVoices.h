#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "common/LanguageType.h"
#include "training/corpus/ForeignTexts.h"
#include "training/speech/PhoneInventory.h"

// The voices that were made from recordings of a person, of flite and festival. English ones read
// English sentences, the others words of their own language; in each language that their phones are
// near to they are learnt from.
namespace veral3::training {

enum class Synthesiser { kFlite, kFestival };

struct RecordedVoice {
  Synthesiser synthesiser;
  std::string_view name;      // the synthesiser's own
  std::string_view package;   // Debian's
  std::string_view licence;   // as the package's copyright file names it; whole in NOTICE
  int sampling_rate;          // Hz
  std::string_view encoding;  // of the texts it reads, as iconv calls it
  const PhoneInventory& (*phones)();
  std::optional<ForeignLanguage> reads = std::nullopt;  // none: English
  bool measuring_only = false;                          // no training ever hears it
};

std::span<const RecordedVoice> RecordedVoices();

// Throws std::runtime_error, which lists those there are, for a voice that is not among them.
const RecordedVoice& RecordedVoiceOf(Synthesiser synthesiser, std::string_view name);

// Throws std::runtime_error where the voice may not speak for `language`: held-out sentences are
// English, of English voices; a measuring voice reads nothing else.
void RequireAllowed(const RecordedVoice& voice, LanguageType language, bool held_out);

}  // namespace veral3::training
