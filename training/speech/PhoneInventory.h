#pragma once

#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "common/LanguageType.h"
#include "training/speech/PhonemeEvents.h"

// The phones of a recorded voice and what each of them is near enough to in the three phoneme sets
// to be learnt as. A phone that is near nothing reads "?" (kUnused): it is spoken, and nothing is
// learnt of it. A wrong label costs more than a missing one, so doubtful phones are left unused.
//
// Sounds depend on their neighbours, so a phone may have rows for its places beside its own:
//
//   t_onset    a voiceless plosive that opens into a vowel, glide or liquid, not after a sibilant
//   t_medial   the same after a vowel
//   l_coda     a nasal, lateral, glide, h or r that nothing of the syllable follows
//   r_flap     an r between two vowels
//   t_double   the first of two equal phones
//
// A place without a row has the phone's own reading, t_medial that of t_onset.
namespace veral3::training {

enum class PhoneKind {
  kPause,
  kVowel,
  kGlide,
  kGlottal,  // h
  kLateral,
  kRhotic,
  kNasal,
  kSibilant,
  kVoicelessPlosive,
  kOther,
  kPlace,  // the row of a place of another phone
};

struct PhoneReading {
  std::string_view name;
  PhoneKind kind;
  std::string_view english;
  std::string_view chinese;
  std::string_view japanese;
};

class PhoneInventory {
 public:
  // `native`: the language whose phonemes the phones are; none for a foreign voice. Of two equal
  // phones that meet, the first is unused in other languages, but for Japanese, which doubles
  // p, t, k, s and n. Throws std::runtime_error for a phone that stands twice.
  PhoneInventory(std::vector<PhoneReading> readings, std::optional<LanguageType> native);

  const std::vector<PhoneReading>& Readings() const { return m_readings; }

  // The symbols of the phones, and of their places, in the set of a language.
  const EventTable& TableOf(LanguageType language) const;

  // Names each phone by the place it stands in, where the language tells that place apart. Throws
  // std::runtime_error, which names it, for a phone that is not of the inventory.
  void NamePlaces(std::vector<PhonemeEvent>& events, LanguageType language) const;

 private:
  PhoneKind KindOf(std::string_view name) const;

  std::vector<PhoneReading> m_readings;  // by name
  std::vector<EventTable> m_tables;      // of English, Chinese, Japanese
};

}  // namespace veral3::training
