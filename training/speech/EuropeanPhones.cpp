#include "training/speech/RecordedPhones.h"

namespace veral3::training {

const PhoneInventory& CatalanPhones() {
  using enum PhoneKind;
  static const PhoneInventory inventory(
      {
          {"pau", kPause, "-", "-", "-"},
          {"_", kPause, "-", "-", "-"},
          {"#", kPause, "-", "-", "-"},
          // Vowels; 1 is stress. a is central, ax is open for a schwa, O nearly as open as a.
          {"ax", kVowel, "?", "?", "?"},
          {"a", kVowel, "?", "a", "a"},
          {"a1", kVowel, "?", "a", "a"},
          {"e", kVowel, "?", "?", "e"},
          {"e1", kVowel, "?", "?", "e"},
          {"E", kVowel, "E", "E", "e"},
          {"E1", kVowel, "E", "E", "e"},
          {"i", kVowel, "i", "i", "i"},
          {"i1", kVowel, "i", "i", "i"},
          {"o", kVowel, "?", "o", "o"},
          {"o1", kVowel, "?", "o", "o"},
          {"O", kVowel, "?", "?", "?"},
          {"O1", kVowel, "?", "?", "?"},
          {"u", kVowel, "?", "u", "?"},
          {"u1", kVowel, "?", "u", "?"},
          {"j", kGlide, "j", "i", "j"},
          {"j_coda", kPlace, "?", "?", "?"},
          {"w", kGlide, "w", "u", "w"},
          {"w_coda", kPlace, "?", "?", "?"},
          // Plosives: voiceless without aspiration; voiced ones are approximants after vowels.
          {"p", kVoicelessPlosive, "p", "?", "?"},
          {"p_onset", kPlace, "?", "b", "p"},
          {"t", kVoicelessPlosive, "t", "?", "?"},
          {"t_onset", kPlace, "?", "d", "t"},
          {"k", kVoicelessPlosive, "k", "?", "?"},
          {"k_onset", kPlace, "?", "g", "k"},
          {"b", kOther, "?", "?", "?"},
          {"d", kOther, "?", "?", "?"},
          {"g", kOther, "?", "?", "?"},
          // Fricatives: s and z are drawn back toward sh and zh.
          {"f", kOther, "f", "f", "?"},
          {"s", kSibilant, "?", "?", "?"},
          {"z", kSibilant, "?", "?", "?"},
          {"S", kSibilant, "S", "?", "C"},
          {"Z", kSibilant, "?", "?", "?"},
          // Nasals and liquids: l is dark, r a tap, rr a trill.
          {"m", kNasal, "m", "m", "m"},
          {"m_coda", kPlace, "m", "?", "?"},
          {"n", kNasal, "n", "n", "n"},
          {"J", kOther, "?", "?", "?"},
          {"l", kLateral, "l", "?", "?"},
          {"L", kOther, "?", "?", "?"},
          {"r", kRhotic, "?", "?", "r"},
          {"r_coda", kPlace, "?", "?", "?"},
          {"rr", kOther, "?", "?", "?"},
      },
      std::nullopt);
  return inventory;
}

const PhoneInventory& CzechPhones() {
  using enum PhoneKind;
  static const PhoneInventory inventory(
      {
          {"#", kPause, "-", "-", "-"},
          {"_", kOther, "?", "?", "?"},  // a glottal stroke
          // Vowels: the short i is lax, e is open enough to be heard as Japanese a, o is of middle
          // height.
          {"a", kVowel, "?", "a", "a"},
          {"a:", kVowel, "?", "a", "aa"},
          {"e", kVowel, "E", "?", "?"},
          {"e:", kVowel, "E", "?", "?"},
          {"i", kVowel, "I", "?", "?"},
          {"i:", kVowel, "i", "i", "ii"},
          {"o", kVowel, "?", "o", "o"},
          {"o:", kVowel, "?", "o", "oo"},
          {"u", kVowel, "?", "u", "?"},
          {"u:", kVowel, "?", "u", "?"},
          // Plosives are voiced, or voiceless without aspiration.
          {"p", kVoicelessPlosive, "p", "?", "?"},
          {"p_onset", kPlace, "?", "b", "p"},
          {"t", kVoicelessPlosive, "t", "?", "?"},
          {"t_onset", kPlace, "?", "d", "t"},
          {"k", kVoicelessPlosive, "k", "?", "?"},
          {"k_onset", kPlace, "?", "g", "k"},
          {"b", kOther, "b", "?", "b"},
          {"d", kOther, "d", "?", "d"},
          {"g", kOther, "g", "?", "g"},
          {"t~", kOther, "?", "?", "?"},  // palatal plosives
          {"d~", kOther, "?", "?", "?"},
          // Fricatives and affricates.
          {"f", kOther, "f", "f", "?"},
          {"v", kOther, "v", "?", "?"},
          {"s", kSibilant, "s", "s", "s"},
          {"z", kSibilant, "z", "?", "z"},
          {"s~", kSibilant, "S", "?", "C"},
          {"z~", kSibilant, "Z", "?", "?"},
          {"c", kSibilant, "?", "z", "X"},
          {"c~", kSibilant, "C", "?", "Y"},
          {"dz", kSibilant, "?", "?", "z"},
          {"dz~", kSibilant, "J", "?", "Z"},
          {"ch", kOther, "?", "h", "?"},   // velar
          {"h", kGlottal, "h", "?", "h"},  // voiced
          {"h_coda", kPlace, "?", "?", "?"},
          {"r", kRhotic, "?", "?", "?"},  // a trill
          {"r_flap", kPlace, "?", "?", "r"},
          {"r~", kOther, "?", "?", "?"},
          {"r~*", kOther, "?", "?", "?"},
          // Nasals, l and j.
          {"m", kNasal, "m", "m", "m"},
          {"m_coda", kPlace, "m", "?", "?"},
          {"n", kNasal, "n", "n", "n"},
          {"n*", kNasal, "N", "M", "n"},  // before k and g
          {"n~", kOther, "?", "?", "?"},
          {"l", kLateral, "l", "?", "?"},
          {"l_coda", kPlace, "?", "?", "?"},
          {"j", kGlide, "j", "i", "j"},
          {"j_coda", kPlace, "?", "?", "?"},
      },
      std::nullopt);
  return inventory;
}

const PhoneInventory& FinnishPhones() {
  using enum PhoneKind;
  static const PhoneInventory inventory(
      {
          {"#", kPause, "-", "-", "-"},
          {"##", kPause, "-", "-", "-"},
          // Vowels: a lies between front and back, @ is ä, 7 is ö; e and o are of middle height.
          {"a", kVowel, "?", "a", "a"},
          {"a:", kVowel, "?", "a", "aa"},
          {"e", kVowel, "?", "E", "e"},
          {"e:", kVowel, "?", "E", "ee"},
          {"i", kVowel, "i", "i", "i"},
          {"i:", kVowel, "i", "i", "ii"},
          {"o", kVowel, "?", "o", "o"},
          {"o:", kVowel, "?", "o", "oo"},
          {"u", kVowel, "?", "u", "?"},
          {"u:", kVowel, "?", "u", "?"},
          {"y", kVowel, "?", "U", "?"},
          {"y:", kVowel, "?", "U", "?"},
          {"@", kVowel, "{", "?", "?"},
          {"@:", kVowel, "{", "?", "?"},
          {"7", kVowel, "?", "?", "?"},
          {"7:", kVowel, "?", "?", "?"},
          {"&", kVowel, "@", "@", "?"},
          // Plosives are voiceless without aspiration, d is nearly a tap.
          {"p", kVoicelessPlosive, "p", "?", "?"},
          {"p_onset", kPlace, "?", "b", "p"},
          {"p:", kVoicelessPlosive, "?", "?", "pp"},
          {"t", kVoicelessPlosive, "t", "?", "?"},
          {"t_onset", kPlace, "?", "d", "t"},
          {"t:", kVoicelessPlosive, "?", "?", "tt"},
          {"k", kVoicelessPlosive, "k", "?", "?"},
          {"k_onset", kPlace, "?", "g", "k"},
          {"k:", kVoicelessPlosive, "?", "?", "kk"},
          {"b", kOther, "b", "?", "b"},
          {"b:", kOther, "?", "?", "?"},
          {"d", kOther, "?", "?", "?"},
          {"d:", kOther, "?", "?", "?"},
          {"g", kOther, "g", "?", "g"},
          {"g:", kOther, "?", "?", "?"},
          // Fricatives: s is drawn back toward sh, v is an approximant.
          {"f", kOther, "f", "f", "?"},
          {"f:", kOther, "f", "?", "?"},
          {"T", kOther, "?", "?", "?"},
          {"T:", kOther, "?", "?", "?"},
          {"D:", kOther, "?", "?", "?"},
          {"s", kSibilant, "?", "?", "?"},
          {"s:", kSibilant, "?", "?", "?"},
          {"z:", kSibilant, "?", "?", "?"},
          {"S", kSibilant, "?", "?", "?"},
          {"S:", kSibilant, "?", "?", "?"},
          {"Z:", kSibilant, "?", "?", "?"},
          {"h", kGlottal, "h", "?", "h"},
          {"h_coda", kPlace, "?", "?", "?"},
          {"h:", kOther, "?", "?", "?"},
          {"v", kOther, "?", "?", "?"},
          {"v:", kOther, "?", "?", "?"},
          // Nasals and liquids.
          {"m", kNasal, "m", "m", "m"},
          {"m_coda", kPlace, "m", "?", "?"},
          {"m:", kNasal, "m", "?", "nm"},
          {"n", kNasal, "n", "n", "n"},
          {"n:", kNasal, "n", "?", "nn"},
          {"N", kNasal, "N", "M", "n"},
          {"N:", kNasal, "N", "?", "?"},
          {"l", kLateral, "l", "l", "?"},
          {"l_coda", kPlace, "?", "?", "?"},
          {"l:", kLateral, "l", "?", "?"},
          {"L", kOther, "?", "?", "?"},
          {"L:", kOther, "?", "?", "?"},
          {"r", kRhotic, "?", "?", "?"},  // a trill
          {"r_flap", kPlace, "?", "?", "r"},
          {"r:", kOther, "?", "?", "?"},
          {"j", kGlide, "j", "i", "j"},
          {"j_coda", kPlace, "?", "?", "?"},
          {"j:", kOther, "?", "?", "?"},
          {"w", kGlide, "w", "u", "?"},
          {"w_coda", kPlace, "?", "?", "?"},
          {"w:", kOther, "?", "?", "?"},
      },
      std::nullopt);
  return inventory;
}

const PhoneInventory& ItalianPhones() {
  using enum PhoneKind;
  static const PhoneInventory inventory(
      {
          {"#", kPause, "-", "-", "-"},
          // Vowels; 1 is stress, which lengthens them. a is central, e and o are nearly i and u, E
          // and O open.
          {"i", kVowel, "i", "i", "i"},
          {"e", kVowel, "?", "?", "?"},
          {"E", kVowel, "E", "E", "e"},
          {"a", kVowel, "?", "a", "a"},
          {"o", kVowel, "?", "?", "?"},
          {"O", kVowel, "O", "?", "?"},
          {"u", kVowel, "?", "u", "?"},
          {"i1", kVowel, "i", "i", "i"},
          {"e1", kVowel, "?", "?", "?"},
          {"E1", kVowel, "E", "E", "e"},
          {"a1", kVowel, "?", "a", "a"},
          {"o1", kVowel, "?", "?", "?"},
          {"O1", kVowel, "O", "?", "?"},
          {"u1", kVowel, "?", "u", "?"},
          {"j", kGlide, "j", "i", "j"},
          {"j_coda", kPlace, "?", "?", "?"},
          {"w", kGlide, "w", "u", "w"},
          {"w_coda", kPlace, "?", "?", "?"},
          // Plosives are voiced, or voiceless without aspiration.
          {"p", kVoicelessPlosive, "p", "?", "?"},
          {"p_onset", kPlace, "?", "b", "p"},
          {"t", kVoicelessPlosive, "t", "?", "?"},
          {"t_onset", kPlace, "?", "d", "t"},
          {"k", kVoicelessPlosive, "k", "?", "?"},
          {"k_onset", kPlace, "?", "g", "k"},
          {"b", kOther, "b", "?", "b"},
          {"d", kOther, "d", "?", "d"},
          {"g", kOther, "g", "?", "g"},
          // Fricatives and affricates.
          {"f", kOther, "f", "f", "?"},
          {"v", kOther, "v", "?", "?"},
          {"s", kSibilant, "s", "s", "s"},
          {"z", kSibilant, "z", "?", "z"},
          {"S", kSibilant, "S", "?", "C"},
          {"Z", kSibilant, "Z", "?", "?"},
          {"ts", kSibilant, "?", "z", "X"},
          {"tS", kSibilant, "C", "?", "Y"},
          {"dz", kSibilant, "?", "?", "z"},
          {"dZ", kSibilant, "J", "?", "Z"},
          // Nasals and liquids.
          {"m", kNasal, "m", "m", "m"},
          {"m_coda", kPlace, "m", "?", "?"},
          {"n", kNasal, "n", "n", "n"},
          {"ng", kNasal, "N", "M", "n"},
          {"nf", kOther, "?", "?", "?"},
          {"J", kOther, "?", "?", "?"},
          {"l", kLateral, "l", "l", "?"},
          {"l_coda", kPlace, "?", "?", "?"},
          {"L", kOther, "?", "?", "?"},
          {"r", kRhotic, "?", "?", "r"},
          {"r_coda", kPlace, "?", "?", "?"},
      },
      std::nullopt);
  return inventory;
}

}  // namespace veral3::training
