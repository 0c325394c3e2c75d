#include "training/speech/ChineseSyllables.h"

#include <algorithm>
#include <array>

namespace veral3::training {
namespace {

struct Initial {
  char symbol;
  std::string_view pinyin;
};

constexpr auto kInitials = std::to_array<Initial>({
    {'b', "b"},  {'p', "p"},  {'m', "m"},  {'f', "f"}, {'d', "d"}, {'t', "t"}, {'n', "n"},
    {'l', "l"},  {'g', "g"},  {'k', "k"},  {'h', "h"}, {'j', "j"}, {'q', "q"}, {'x', "x"},
    {'Z', "zh"}, {'C', "ch"}, {'S', "sh"}, {'r', "r"}, {'z', "z"}, {'c', "c"}, {'s', "s"},
});

// How a final is written after an initial, and where there is none. Empty where it is not.
struct Final {
  std::string_view phonemes;
  std::string_view after_initial;
  std::string_view alone;
};

constexpr auto kFinals = std::to_array<Final>({
    {"a", "a", "a"},       {"o", "o", "o"},         {"@", "e", "e"},       {"E", "", "ê"},
    {"R", "", "er"},       {"ai", "ai", "ai"},      {"Ei", "ei", "ei"},    {"au", "ao", "ao"},
    {"ou", "ou", "ou"},    {"an", "an", "an"},      {"@n", "en", "en"},    {"aM", "ang", "ang"},
    {"@M", "eng", "eng"},  {"oM", "ong", ""},       {"i", "i", "yi"},      {"ia", "ia", "ya"},
    {"io", "", "yo"},      {"iE", "ie", "ye"},      {"iai", "iai", "yai"}, {"iau", "iao", "yao"},
    {"iou", "iu", "you"},  {"iEn", "ian", "yan"},   {"in", "in", "yin"},   {"iaM", "iang", "yang"},
    {"iM", "ing", "ying"}, {"ioM", "iong", "yong"}, {"u", "u", "wu"},      {"ua", "ua", "wa"},
    {"uo", "uo", "wo"},    {"uai", "uai", "wai"},   {"u@i", "ui", "wei"},  {"uan", "uan", "wan"},
    {"un", "un", "wen"},   {"uaM", "uang", "wang"}, {"u@M", "", "weng"},   {"U", "v", "yu"},
    {"UE", "ve", "yue"},   {"Uan", "van", "yuan"},  {"Un", "vn", "yun"},   {")", "i", ""},
    {"(", "i", ""},
});

constexpr std::string_view kBeforeRetroflex = "ZCSr";  // initials whose i is ')'
constexpr std::string_view kBeforeDental = "zcs";      // ... '('
constexpr std::string_view kPalatal = "jqx";           // ... and which write u for v

bool Has(std::string_view set, char c) { return set.find(c) != std::string_view::npos; }

}  // namespace

std::optional<std::string> PinyinOf(std::string_view syllable) {
  if (syllable.empty()) return std::nullopt;
  const auto initial = std::ranges::find(kInitials, syllable[0], &Initial::symbol);
  const bool has_initial = initial != kInitials.end();
  const std::string_view phonemes = has_initial ? syllable.substr(1) : syllable;
  const auto final = std::ranges::find(kFinals, phonemes, &Final::phonemes);
  if (final == kFinals.end()) return std::nullopt;
  if (!has_initial) {
    return final->alone.empty() ? std::nullopt : std::optional<std::string>(final->alone);
  }
  if (final->after_initial.empty()) return std::nullopt;
  const char symbol = initial->symbol;
  const bool dental = Has(kBeforeDental, symbol);
  const bool retroflex = Has(kBeforeRetroflex, symbol);
  // One letter i is three vowels, by what stands before it.
  if (phonemes[0] == ')' && !retroflex) return std::nullopt;
  if (phonemes[0] == '(' && !dental) return std::nullopt;
  if (phonemes == "i" && (retroflex || dental)) return std::nullopt;
  std::string pinyin(initial->pinyin);
  pinyin += final->after_initial;
  if (Has(kPalatal, symbol)) {
    if (phonemes[0] == 'u') return std::nullopt;
    std::ranges::replace(pinyin, 'v', 'u');
  }
  return pinyin;
}

}  // namespace veral3::training
