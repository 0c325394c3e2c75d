#include "training/speech/ArpabetEvents.h"

#include <string_view>

#include "training/speech/RecordedPhones.h"

namespace veral3::training {

const PhoneInventory& ArpabetPhones() {
  using enum PhoneKind;
  static const PhoneInventory inventory(
      {
          {"pau", kPause, "-", "-", "-"},
          {"h#", kPause, "-", "-", "-"},
          {"brth", kPause, "-", "-", "-"},
          // Consonants. Plosives are aspirated where they open into a vowel, not surely between
          // two; a t there may be a tap.
          {"p", kVoicelessPlosive, "p", "?", "?"},
          {"p_onset", kPlace, "p", "p", "p"},
          {"p_medial", kPlace, "p", "?", "p"},
          {"b", kOther, "b", "?", "b"},
          {"t", kVoicelessPlosive, "t", "?", "?"},
          {"t_onset", kPlace, "t", "t", "t"},
          {"t_medial", kPlace, "t", "?", "?"},
          {"d", kOther, "d", "?", "d"},
          {"k", kVoicelessPlosive, "k", "?", "?"},
          {"k_onset", kPlace, "k", "k", "k"},
          {"k_medial", kPlace, "k", "?", "k"},
          {"g", kOther, "g", "?", "g"},
          {"dx", kOther, "t", "?", "r"},
          {"m", kNasal, "m", "m", "m"},
          {"m_coda", kPlace, "m", "?", "?"},
          {"n", kNasal, "n", "n", "n"},
          {"nx", kOther, "n", "?", "?"},
          {"ng", kNasal, "N", "M", "n"},
          {"l", kLateral, "l", "?", "?"},
          {"f", kOther, "f", "f", "?"},
          {"v", kOther, "v", "?", "?"},
          {"th", kOther, "T", "?", "?"},
          {"dh", kOther, "D", "?", "?"},
          {"s", kSibilant, "s", "s", "s"},
          {"z", kSibilant, "z", "?", "z"},
          {"sh", kSibilant, "S", "?", "C"},
          {"zh", kSibilant, "Z", "?", "?"},
          {"ch", kSibilant, "C", "?", "Y"},
          {"jh", kSibilant, "J", "?", "?"},
          {"hh", kOther, "h", "?", "h"},
          {"hv", kOther, "h", "?", "h"},
          {"y", kGlide, "j", "i", "j"},
          {"w", kGlide, "w", "u", "w"},
          {"r", kRhotic, "r", "?", "?"},
          {"r_coda", kPlace, "c", "?", "?"},
          // Syllabic consonants.
          {"el", kOther, "@l", "?", "?"},
          {"en", kOther, "@n", "?", "?"},
          {"em", kOther, "@m", "?", "?"},
          // Vowels.
          {"iy", kVowel, "i", "i", "i"},
          {"ih", kVowel, "I", "?", "?"},
          {"eh", kVowel, "E", "?", "?"},
          {"ae", kVowel, "{", "?", "?"},
          {"aa", kVowel, "A", "?", "?"},
          {"ao", kVowel, "O", "?", "?"},
          {"uw", kVowel, "u", "?", "?"},
          {"uh", kVowel, "U", "?", "?"},
          {"ah", kVowel, "V", "?", "a"},
          {"ax", kVowel, "@", "?", "?"},
          {"er", kVowel, "3", "?", "?"},
          {"axr", kVowel, "3", "?", "?"},
          {"ey", kVowel, "EI", "Ei", "?"},
          {"ay", kVowel, "AI", "ai", "?"},
          {"aw", kVowel, "AU", "au", "?"},
          {"oy", kVowel, "OI", "?", "?"},
          {"ow", kVowel, "@U", "?", "?"},
      },
      kLanguageEnglish);
  return inventory;
}

const EventTable& ArpabetEventTable() { return ArpabetPhones().TableOf(kLanguageEnglish); }

bool IsArpabetVowel(std::string_view name) {
  constexpr std::string_view kInitials = "aeiou";
  return !name.empty() && kInitials.find(name[0]) != std::string_view::npos && name != "el" &&
         name != "en" && name != "em";
}

}  // namespace veral3::training
