#include "training/speech/RecordedPhones.h"

namespace veral3::training {

const PhoneInventory& RussianPhones() {
  using enum PhoneKind;
  static const PhoneInventory inventory(
      {
          {"pau", kPause, "-", "-", "-"},
          // Stressed vowels, then those of the first and the second degree of reduction (ay after
          // hard consonants, ae after soft ones).
          {"ii", kVowel, "i", "i", "i"},
          {"yy", kVowel, "?", "?", "?"},
          {"uu", kVowel, "?", "u", "?"},
          {"ee", kVowel, "?", "?", "?"},
          {"oo", kVowel, "?", "?", "o"},
          {"aa", kVowel, "?", "?", "?"},
          {"a", kVowel, "?", "?", "?"},
          {"e", kVowel, "?", "?", "?"},
          {"i", kVowel, "?", "i", "i"},
          {"y", kVowel, "?", "?", "?"},
          {"u", kVowel, "?", "u", "?"},
          {"ae", kVowel, "?", "?", "?"},
          {"ay", kVowel, "@", "?", "?"},
          {"ur", kVowel, "?", "?", "?"},
          // Hard consonants; voiceless plosives have no aspiration, l is dark.
          {"p", kVoicelessPlosive, "p", "?", "?"},
          {"p_onset", kPlace, "?", "b", "p"},
          {"b", kOther, "b", "?", "b"},
          {"t", kVoicelessPlosive, "t", "?", "?"},
          {"t_onset", kPlace, "?", "d", "t"},
          {"d", kOther, "d", "?", "d"},
          {"k", kVoicelessPlosive, "k", "?", "?"},
          {"k_onset", kPlace, "?", "g", "k"},
          {"g", kOther, "g", "?", "g"},
          {"c", kSibilant, "?", "z", "X"},
          {"f", kOther, "f", "f", "?"},
          {"v", kOther, "v", "?", "?"},
          {"s", kSibilant, "s", "s", "s"},
          {"z", kSibilant, "z", "?", "z"},
          {"sh", kSibilant, "?", "S", "?"},  // retroflex
          {"zh", kSibilant, "?", "?", "?"},
          {"h", kOther, "?", "h", "?"},  // velar
          {"m", kNasal, "m", "m", "m"},
          {"m_coda", kPlace, "m", "?", "?"},
          {"n", kNasal, "n", "n", "n"},
          {"l", kLateral, "?", "?", "?"},
          {"r", kRhotic, "?", "?", "?"},  // a trill
          {"r_flap", kPlace, "?", "?", "r"},
          // Soft consonants.
          {"ch", kSibilant, "?", "j", "Y"},  // alveolo-palatal
          {"sch", kSibilant, "?", "x", "C"},
          {"j", kGlide, "j", "i", "j"},
          {"j_coda", kPlace, "?", "?", "?"},
          {"pp", kOther, "?", "?", "?"},
          {"bb", kOther, "?", "?", "?"},
          {"tt", kOther, "?", "?", "?"},
          {"dd", kOther, "?", "?", "?"},
          {"kk", kOther, "?", "?", "?"},
          {"gg", kOther, "?", "?", "?"},
          {"ff", kOther, "?", "?", "?"},
          {"vv", kOther, "?", "?", "?"},
          {"ss", kOther, "?", "?", "?"},
          {"zz", kOther, "?", "?", "?"},
          {"hh", kOther, "?", "?", "c"},
          {"mm", kOther, "?", "?", "?"},
          {"nn", kOther, "?", "?", "?"},
          {"ll", kOther, "?", "?", "?"},
          {"rr", kOther, "?", "?", "?"},
      },
      std::nullopt);
  return inventory;
}

const PhoneInventory& TeluguPhones() {
  using enum PhoneKind;
  static const PhoneInventory inventory(
      {
          {"pau", kPause, "-", "-", "-"},
          // Vowels: the short a lies between English V and @.
          {"a", kVowel, "?", "?", "?"},
          {"aa", kVowel, "A", "a", "a"},
          {"ih", kVowel, "?", "i", "i"},
          {"iy", kVowel, "i", "i", "i"},
          {"uh", kVowel, "?", "u", "?"},
          {"uw", kVowel, "?", "u", "?"},
          {"eh", kVowel, "?", "?", "e"},
          {"ee", kVowel, "?", "?", "?"},
          {"oh", kVowel, "?", "?", "?"},
          {"oo", kVowel, "?", "?", "?"},
          {"ay", kVowel, "?", "?", "?"},
          {"aw", kVowel, "?", "?", "?"},
          // Plosives: voiced, or voiceless without aspiration; th and dh are dental, T and D
          // retroflex.
          {"p", kVoicelessPlosive, "p", "?", "?"},
          {"p_onset", kPlace, "?", "b", "p"},
          {"b", kOther, "b", "?", "b"},
          {"th", kVoicelessPlosive, "?", "?", "?"},
          {"th_onset", kPlace, "?", "d", "t"},
          {"dh", kOther, "?", "?", "d"},
          {"T", kOther, "?", "?", "?"},
          {"D", kOther, "?", "?", "?"},
          {"k", kVoicelessPlosive, "k", "?", "?"},
          {"k_onset", kPlace, "?", "g", "k"},
          {"g", kOther, "g", "?", "g"},
          {"ch", kSibilant, "?", "?", "?"},
          {"j", kSibilant, "?", "?", "?"},
          // Fricatives; v is an approximant.
          {"f", kOther, "f", "f", "?"},
          {"s", kSibilant, "s", "s", "s"},
          {"sh", kSibilant, "?", "?", "?"},
          {"h", kOther, "?", "?", "?"},
          {"v", kOther, "?", "?", "?"},
          // Nasals, liquids and y.
          {"m", kNasal, "m", "m", "m"},
          {"m_coda", kPlace, "m", "?", "?"},
          {"n", kNasal, "n", "n", "n"},
          {"N", kOther, "?", "?", "?"},
          {"l", kLateral, "l", "l", "?"},
          {"l_coda", kPlace, "?", "?", "?"},
          {"L", kOther, "?", "?", "?"},
          {"r", kRhotic, "?", "?", "r"},
          {"r_coda", kPlace, "?", "?", "?"},
          {"R", kOther, "?", "?", "?"},
          {"y", kGlide, "j", "i", "j"},
          {"y_coda", kPlace, "?", "?", "?"},
          // Those that the voice has but its own words do not.
          {"w", kOther, "?", "?", "?"},
          {"kh", kOther, "?", "?", "?"},
          {"gh", kOther, "?", "?", "?"},
          {"td", kOther, "?", "?", "?"},
          {"tth", kOther, "?", "?", "?"},
          {"ddh", kOther, "?", "?", "?"},
          {"bh", kOther, "?", "?", "?"},
          {"zh", kOther, "?", "?", "?"},
          {"ksh", kOther, "?", "?", "?"},
          {"sri", kOther, "?", "?", "?"},
          {"x", kOther, "?", "?", "?"},
          {"@", kOther, "?", "?", "?"},
      },
      std::nullopt);
  return inventory;
}

}  // namespace veral3::training
