#include "training/speech/ArpabetEvents.h"

#include <string_view>

namespace veral3::training {

const EventTable& ArpabetEventTable() {
  static const EventTable table({
      {"pau", "-"},
      {"h#", "-"},
      {"brth", "-"},
      // Consonants.
      {"p", "p"},
      {"b", "b"},
      {"t", "t"},
      {"d", "d"},
      {"k", "k"},
      {"g", "g"},
      {"dx", "t"},
      {"m", "m"},
      {"n", "n"},
      {"nx", "n"},
      {"ng", "N"},
      {"l", "l"},
      {"f", "f"},
      {"v", "v"},
      {"th", "T"},
      {"dh", "D"},
      {"s", "s"},
      {"z", "z"},
      {"sh", "S"},
      {"zh", "Z"},
      {"ch", "C"},
      {"jh", "J"},
      {"hh", "h"},
      {"hv", "h"},
      {"y", "j"},
      {"w", "w"},
      {"r", "r"},
      {"r_coda", "c"},
      // Syllabic consonants.
      {"el", "@l"},
      {"en", "@n"},
      {"em", "@m"},
      // Vowels.
      {"iy", "i"},
      {"ih", "I"},
      {"eh", "E"},
      {"ae", "{"},
      {"aa", "A"},
      {"ao", "O"},
      {"uw", "u"},
      {"uh", "U"},
      {"ah", "V"},
      {"ax", "@"},
      {"er", "3"},
      {"axr", "3"},
      {"ey", "EI"},
      {"ay", "AI"},
      {"aw", "AU"},
      {"oy", "OI"},
      {"ow", "@U"},
  });
  return table;
}

bool IsArpabetVowel(std::string_view name) {
  constexpr std::string_view kInitials = "aeiou";
  return !name.empty() && kInitials.find(name[0]) != std::string_view::npos && name != "el" &&
         name != "en" && name != "em";
}

}  // namespace veral3::training
