#include "training/measure/LearnerErrors.h"

#include <algorithm>
#include <array>

namespace veral3::training {
namespace {

using Place = LearnerError::Place;

constexpr auto kEnglish = std::to_array<LearnerError>({
    {"th said as s", "T", "s"},
    {"th said as z", "T", "z"},
    {"th said as t", "T", "t"},
    {"th said as d", "T", "d"},
    {"th said as f", "T", "f"},
    {"voiced th said as s", "D", "s"},
    {"voiced th said as z", "D", "z"},
    {"voiced th said as t", "D", "t"},
    {"voiced th said as d", "D", "d"},
    {"voiced th said as f", "D", "f"},
    {"s said as th", "s", "T"},
    {"z said as th", "z", "T"},
    {"t said as th", "t", "T"},
    {"d said as th", "d", "T"},
    {"f said as th", "f", "T"},
    {"r said as l", "r", "l"},
    {"l said as r", "l", "r"},
    {"v said as w", "v", "w"},
    {"w said as v", "w", "v"},
    {"v said as b", "v", "b"},
    {"b said as v", "b", "v"},
    {"ih said as iy", "I", "i"},
    {"iy said as ih", "i", "I"},
    {"ae said as eh", "{", "E"},
    {"eh said as ae", "E", "{"},
    {"n said as ng", "n", "N", Place::kNotBeforeVowel},
    {"ng said as n", "N", "n", Place::kNotBeforeVowel},
    {"n said as m", "n", "m"},
    {"m said as n", "m", "n"},
    {"ng said as m", "N", "m", Place::kNotBeforeVowel},
    {"ch said as sh", "C", "S"},
    {"sh said as ch", "S", "C"},
    {"ch said as jh", "C", "J"},
    {"jh said as ch", "J", "C"},
    {"jh said as zh", "J", "Z"},
    {"zh said as jh", "Z", "J"},
    {"sh said as zh", "S", "Z"},
    {"zh said as sh", "Z", "S"},
    {"final b said as p", "b", "p", Place::kWordEnd},
    {"final d said as t", "d", "t", Place::kWordEnd},
    {"final g said as k", "g", "k", Place::kWordEnd},
    {"final v said as f", "v", "f", Place::kWordEnd},
    {"final z said as s", "z", "s", Place::kWordEnd},
    {"final jh said as ch", "J", "C", Place::kWordEnd},
    {"final consonants voiceless", "bdgvzDZJ", "ptkfsTSC", Place::kWordEnd},
    {"final plosives dropped", "pbtdkg", "", Place::kWordEnd},
    {"final fricatives and affricates dropped", "fvTDszSZCJ", "", Place::kWordEnd},
    {"final nasals dropped", "mnN", "", Place::kWordEnd},
    {"final l dropped", "l", "", Place::kWordEnd},
    {"final consonants dropped", "pbtdkgfvTDszSZCJmnNl", "", Place::kWordEnd},
});

constexpr auto kChinese = std::to_array<LearnerError>({
    {"zh said as z", "Z", "z"},
    {"z said as zh", "z", "Z"},
    {"ch said as c", "C", "c"},
    {"c said as ch", "c", "C"},
    {"sh said as s", "S", "s"},
    {"s said as sh", "s", "S"},
    {"zh said as j", "Z", "j"},
    {"j said as zh", "j", "Z"},
    {"ch said as q", "C", "q"},
    {"q said as ch", "q", "C"},
    {"sh said as x", "S", "x"},
    {"x said as sh", "x", "S"},
    {"x said as s", "x", "s"},
    {"r said as l", "r", "l"},
    {"l said as r", "l", "r"},
    {"n said as l", "n", "l"},
    {"l said as n", "l", "n"},
    {"final n said as ng", "n", "M", Place::kNotBeforeVowel},
    {"final ng said as n", "M", "n", Place::kNotBeforeVowel},
    {"f said as h", "f", "h"},
    {"h said as f", "h", "f"},
    {"b said as p", "b", "p"},
    {"p said as b", "p", "b"},
    {"d said as t", "d", "t"},
    {"t said as d", "t", "d"},
    {"g said as k", "g", "k"},
    {"k said as g", "k", "g"},
    {"j said as q", "j", "q"},
    {"q said as j", "q", "j"},
    {"ü said as u", "U", "u"},
    {"ü said as i", "U", "i"},
    {"e said as o", "@", "o"},
});

constexpr auto kJapanese = std::to_array<LearnerError>({
    {"sh said as s", "C", "s"},       {"s said as sh", "s", "C"},  {"ts said as s", "X", "s"},
    {"ts said as ch", "X", "Y"},      {"ch said as sh", "Y", "C"}, {"ch said as ts", "Y", "X"},
    {"j said as z", "Z", "z"},        {"z said as j", "z", "Z"},   {"z said as s", "z", "s"},
    {"r said as d", "r", "d"},        {"d said as r", "d", "r"},   {"f of fu said as h", "f", "h"},
    {"h of hi said as sh", "c", "C"}, {"h said as f", "h", "f"},   {"b said as p", "b", "p"},
    {"p said as b", "p", "b"},        {"d said as t", "d", "t"},   {"t said as d", "t", "d"},
    {"g said as k", "g", "k"},        {"k said as g", "k", "g"},   {"n said as m", "n", "m"},
    {"m said as n", "m", "n"},        {"u said as o", "u", "o"},   {"o said as u", "o", "u"},
    {"i said as e", "i", "e"},        {"e said as i", "e", "i"},
});

}  // namespace

std::span<const LearnerError> LearnerErrorsOf(LanguageType language) {
  switch (language) {
    case kLanguageEnglish:
      return kEnglish;
    case kLanguageChinese:
      return kChinese;
    case kLanguageJapanese:
      return kJapanese;
  }
  return {};
}

std::string Written(const LearnerError& error) {
  std::string text(error.name);
  if (error.expected.size() == 1 && error.said.size() == 1) {
    text += " (" + std::string(error.expected) + " > " + std::string(error.said) + ")";
  }
  return text;
}

bool CanHappen(const LearnerError& error, const CPhonemeSet& set, std::string_view phonemes,
               std::span<const std::size_t> word_ends, std::size_t place) {
  switch (error.place) {
    case Place::kAnywhere:
      return true;
    case Place::kNotBeforeVowel:
      return place + 1 == phonemes.size() ||
             !set.IsVowel(static_cast<wchar_t>(phonemes[place + 1]));
    case Place::kWordEnd:
      return std::ranges::binary_search(word_ends, place);
  }
  return false;
}

std::vector<Exchange> ErrorsIn(const CPhonemeSet& set, std::span<const std::string> phonemes,
                               std::span<const std::vector<std::size_t>> word_ends,
                               std::span<const LearnerError> errors, std::size_t most,
                               Random& random) {
  std::vector<Exchange> all;
  for (std::size_t number = 0; number < errors.size(); ++number) {
    const LearnerError& error = errors[number];
    const bool dropped = error.said.empty();
    const std::string_view heard = dropped ? error.expected : error.said;
    std::vector<Exchange> own;
    for (std::size_t u = 0; u < phonemes.size(); ++u) {
      for (std::size_t p = 0; p < phonemes[u].size(); ++p) {
        const auto place = heard.find(phonemes[u][p]);
        if (place == std::string_view::npos) continue;
        if (!CanHappen(error, set, phonemes[u], word_ends[u], p)) continue;
        own.push_back({u, p, error.expected[place], dropped, number});
      }
    }
    random.Shuffle(std::span(own));
    if (own.size() > most) own.resize(most);
    std::ranges::copy(own, std::back_inserter(all));
  }
  return all;
}

}  // namespace veral3::training
