#include "training/speech/EnglishEvents.h"

namespace veral3::training {
namespace {

// Event names are those of espeak-ng 1.51's English phoneme tables.
std::vector<EventReading> Readings(EnglishAccent accent) {
  std::vector<EventReading> table = {
      {"_", "-"},
      {"_!", "-"},
      {"|", ""},
      {"_|", ""},
      {"_:", "-"},
      {";", ""},
      // Consonants.
      {"p", "p"},
      {"b", "b"},
      {"t", "t"},
      {"t2", "t"},
      {"t#", "t"},
      {"?", "t"},
      {"t.", "t"},
      {"d", "d"},
      {"d#", "d"},
      {"d.", "d"},
      {"k", "k"},
      {"x", "k"},
      {"g", "g"},
      {"m", "m"},
      {"n", "n"},
      {"N", "N"},
      {"l", "l"},
      {"l#", "l"},
      {"f", "f"},
      {"v", "v"},
      {"T", "T"},
      {"D", "D"},
      {"s", "s"},
      {"z", "z"},
      {"S", "S"},
      {"Z", "Z"},
      {"r", "r"},
      {"r-", "r"},
      {"R", "r"},
      {"h", "h"},
      {"C", "h"},
      {"tS", "C"},
      {"dZ", "J"},
      {"j", "j"},
      {"w", "w"},
      // Syllabic consonants.
      {"@L", "@l"},
      {"n-", "@n"},
      {"m-", "@m"},
      // Vowels.
      {"i", "i"},
      {"i:", "i"},
      {"I", "I"},
      {"I2", "I"},
      {"I#", "I"},
      {"E#", "I"},
      {"E", "E"},
      {"E2", "E"},
      {"a", "{"},
      {"A:", "A"},
      {"A#", "A"},
      {"a2", "A"},
      {"O", "O"},
      {"O:", "O"},
      {"O2", "O"},
      {"O#", "O"},
      {"o", "O"},
      {"V", "V"},
      {"V#", "V"},
      {"U", "U"},
      {"U2", "U"},
      {"u", "u"},
      {"u:", "u"},
      {"u2", "u"},
      {"@", "@"},
      {"@2", "@"},
      {"@5", "@"},
      {"@-", "@"},
      {"a#", "@"},
      {"3:", "3"},
      // Diphthongs.
      {"eI", "EI"},
      {"aI", "AI"},
      {"aU", "AU"},
      {"OI", "OI"},
      {"oU", "@U"},
      {"oU#", "@U"},
      {"i@", "I@"},
      {"I@", "I@"},
      {"u@", "U@"},
      {"aI@", "AI@"},
      {"aU@", "AU@"},
  };
  const std::vector<EventReading> american = {
      {"aa", "{"},  {"0", "A"},   {"0#", "A"},   {"3", "3"},   {"A@", "Ac"},   {"O@", "Oc"},
      {"o@", "Oc"}, {"e@", "Ec"}, {"i@3", "Ic"}, {"U@", "Uc"}, {"aI3", "AI3"},
  };
  const std::vector<EventReading> british = {
      {"aa", "A"}, {"0", "O"},   {"0#", "O"},   {"3", "@"},   {"A@", "A"},    {"O@", "O"},
      {"o@", "O"}, {"e@", "E@"}, {"i@3", "I@"}, {"U@", "U@"}, {"aI3", "AI@"},
  };
  const auto& own = accent == EnglishAccent::kAmerican ? american : british;
  table.insert(table.end(), own.begin(), own.end());
  return table;
}

}  // namespace

const EventTable& EnglishEventTable(EnglishAccent accent) {
  static const EventTable american(Readings(EnglishAccent::kAmerican));
  static const EventTable british(Readings(EnglishAccent::kBritish));
  return accent == EnglishAccent::kAmerican ? american : british;
}

}  // namespace veral3::training
