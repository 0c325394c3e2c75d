#include "text/Pinyin.h"

#include <algorithm>
#include <array>
#include <map>
#include <sstream>
#include <vector>

#include "common/Unicode.h"

namespace veral3 {
namespace {

struct Spelling {
  std::string_view letters;
  std::string_view compact;   // as inline pronunciations and the dictionary's lines have it
  std::string_view expanded;  // one symbol a phoneme
};

constexpr auto kInitials = std::to_array<Spelling>({
    {"b", "b", "b"},  {"p", "p", "p"},  {"m", "m", "m"}, {"f", "f", "f"}, {"d", "d", "d"},
    {"t", "t", "t"},  {"n", "n", "n"},  {"l", "l", "l"}, {"g", "g", "g"}, {"k", "k", "k"},
    {"h", "h", "h"},  {"j", "j", "j"},  {"q", "q", "q"}, {"x", "x", "x"}, {"zh", "Z", "Z"},
    {"ch", "C", "C"}, {"sh", "S", "S"}, {"r", "r", "r"}, {"z", "z", "z"}, {"c", "c", "c"},
    {"s", "s", "s"},
});

// Finals as they are spelt behind an initial; "v" is the rounded front vowel.
constexpr auto kFinals = std::to_array<Spelling>({
    {"a", "a", "a"},     {"o", "o", "o"},      {"e", "@", "@"},     {"ai", "y", "ai"},
    {"ei", "e", "Ei"},   {"ao", "W", "au"},    {"ou", "O", "ou"},   {"an", "A", "an"},
    {"en", "N", "@n"},   {"ang", "P", "aM"},   {"eng", "M", "@M"},  {"ong", "I", "oM"},
    {"i", "i", "i"},     {"ia", "G", "ia"},    {"io", "]", "io"},   {"ie", "Q", "iE"},
    {"iai", "Y", "iai"}, {"iao", "w", "iau"},  {"iu", "V", "iou"},  {"ian", "v", "iEn"},
    {"in", "B", "in"},   {"iang", "T", "iaM"}, {"ing", "D", "iM"},  {"iong", "X", "ioM"},
    {"u", "u", "u"},     {"ua", "L", "ua"},    {"uo", "[", "uo"},   {"uai", "K", "uai"},
    {"ui", "}", "u@i"},  {"uan", "{", "uan"},  {"un", "J", "un"},   {"uang", "H", "uaM"},
    {"v", "U", "U"},     {"ve", "F", "UE"},    {"van", "<", "Uan"}, {"vn", "Un", "Un"},
});

// Syllables without an initial, where they are not spelt like the final alone.
constexpr auto kWithoutInitial = std::to_array<Spelling>({
    {"er", "R", "R"},     {"eh", "E", "E"},     {"yi", "i", "i"},      {"ya", "G", "ia"},
    {"yo", "]", "io"},    {"ye", "Q", "iE"},    {"yai", "Y", "iai"},   {"yao", "w", "iau"},
    {"you", "V", "iou"},  {"yan", "v", "iEn"},  {"yin", "B", "in"},    {"yang", "T", "iaM"},
    {"ying", "D", "iM"},  {"yong", "X", "ioM"}, {"yu", "U", "U"},      {"yue", "F", "UE"},
    {"yuan", "<", "Uan"}, {"yun", "Un", "Un"},  {"wu", "u", "u"},      {"wa", "L", "ua"},
    {"wo", "[", "uo"},    {"wai", "K", "uai"},  {"wei", "}", "u@i"},   {"wan", "{", "uan"},
    {"wen", "J", "un"},   {"wang", "H", "uaM"}, {"weng", "uM", "u@M"},
});

bool IsPalatal(std::string_view initial) {
  return initial == "j" || initial == "q" || initial == "x";
}

// "i" behind these is no vowel of its own.
std::string_view ApicalVowel(std::string_view initial) {
  if (initial == "zh" || initial == "ch" || initial == "sh" || initial == "r") return ")";
  if (initial == "z" || initial == "c" || initial == "s") return "(";
  return "";
}

struct Syllable {
  std::string compact;
  std::string expanded;
};

// Every spelling that initials and finals make, Mandarin or not: what is read wrongly by that is
// only what nobody writes.
std::map<std::string, Syllable, std::less<>> MakeSyllables() {
  std::map<std::string, Syllable, std::less<>> syllables;
  for (const Spelling& whole : kWithoutInitial) {
    syllables[std::string(whole.letters)] = {std::string(whole.compact),
                                             std::string(whole.expanded)};
  }
  for (const Spelling& final : kFinals) {
    const bool alone = final.letters.front() != 'i' && final.letters.front() != 'u' &&
                       final.letters.front() != 'v' && final.letters != "ong";
    if (alone) {
      syllables[std::string(final.letters)] = {std::string(final.compact),
                                               std::string(final.expanded)};
    }
    for (const Spelling& initial : kInitials) {
      std::string letters = std::string(initial.letters) + std::string(final.letters);
      std::string_view compact = final.compact;
      std::string_view expanded = final.expanded;
      if (final.letters == "i" && !ApicalVowel(initial.letters).empty()) {
        compact = expanded = ApicalVowel(initial.letters);
      }
      if (IsPalatal(initial.letters)) {
        if (final.letters.front() == 'u') continue;  // written so, said with the front vowel
        if (final.letters.front() == 'v') letters[1] = 'u';
      }
      syllables[letters] = {std::string(initial.compact) + std::string(compact),
                            std::string(initial.expanded) + std::string(expanded)};
    }
  }
  // Behind n and l the front vowel loses its dots before e.
  for (const char* initial : {"n", "l"}) {
    syllables[std::string(initial) + "ue"] = syllables[std::string(initial) + "ve"];
  }
  return syllables;
}

const std::map<std::string, Syllable, std::less<>>& Syllables() {
  static const auto kSyllables = MakeSyllables();
  return kSyllables;
}

// Where the tone is marked: on a or e, on the o of ou, else on the last vowel.
std::size_t MarkedVowel(std::string_view letters) {
  if (const std::size_t open = letters.find_first_of("ae"); open != std::string_view::npos) {
    return open;
  }
  if (const std::size_t ou = letters.find("ou"); ou != std::string_view::npos) return ou;
  return letters.find_last_of("iouv");
}

std::wstring WithTone(std::string_view letters, int tone) {
  constexpr std::wstring_view kMarked[] = {L"āáǎà", L"ēéěè", L"īíǐì", L"ōóǒò", L"ūúǔù", L"ǖǘǚǜ"};
  constexpr std::string_view kVowels = "aeiouv";
  const std::size_t marked = MarkedVowel(letters);
  std::wstring text;
  for (std::size_t i = 0; i < letters.size(); ++i) {
    const std::size_t vowel = kVowels.find(letters[i]);
    if (i == marked && tone >= 1 && tone <= 4) {
      text += kMarked[vowel][static_cast<std::size_t>(tone - 1)];
    } else {
      text += letters[i] == 'v' ? L'ü' : static_cast<wchar_t>(letters[i]);
    }
  }
  return text;
}

// Small letters, "v" for ü in any spelling.
std::string PlainLetters(std::string_view syllable) {
  std::string plain;
  for (const wchar_t c : WideFromUtf8(syllable)) {
    if (c == L'ü' || c == L'Ü') {
      plain += 'v';
    } else if (c == L':' && plain.ends_with('u')) {
      plain.back() = 'v';
    } else {
      plain += c < 0x80 ? static_cast<char>(c >= L'A' && c <= L'Z' ? c - L'A' + L'a' : c) : '?';
    }
  }
  return plain;
}

}  // namespace

std::optional<Reading> ReadPinyin(std::string_view syllables) {
  std::istringstream words{std::string(syllables)};
  Reading reading;
  for (std::string word; words >> word;) {
    std::string letters = PlainLetters(word);
    char tone = '5';
    if (letters.back() >= '0' && letters.back() <= '9') {
      tone = letters.back();
      letters.pop_back();
    }
    const auto syllable = Syllables().find(letters);
    if (tone < '1' || tone > '5' || syllable == Syllables().end()) return std::nullopt;
    reading.starts.push_back(static_cast<int>(reading.phonemes.size()));
    reading.phonemes += syllable->second.compact;
    reading.marks += tone;
  }
  if (reading.starts.empty()) return std::nullopt;
  return reading;
}

std::string PinyinOfPhonemes(std::string_view phonemes, int tone) {
  static const auto kByPhonemes = [] {
    std::map<std::string, std::string, std::less<>> by_phonemes;
    for (const auto& [letters, syllable] : Syllables()) {
      // The spelling with the dots, where there are two.
      if (letters == "nue" || letters == "lue") continue;
      by_phonemes.try_emplace(syllable.expanded, letters);
    }
    return by_phonemes;
  }();
  const auto letters = kByPhonemes.find(phonemes);
  if (letters == kByPhonemes.end()) return "?";
  return Utf8FromWide(WithTone(letters->second, tone));
}

}  // namespace veral3
