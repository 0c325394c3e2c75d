#include <algorithm>
#include <array>
#include <vector>

#include "text/Kana.h"
#include "text/SpokenNumbers.h"

namespace veral3 {
namespace {

constexpr std::size_t kMaxDigits = 16;

struct SpokenWord {
  std::wstring kana;
  std::wstring label;  // in characters
};

constexpr std::array<std::wstring_view, 10> kUnits = {
    L"ゼロ", L"いち", L"に", L"さん", L"よん", L"ご", L"ろく", L"なな", L"はち", L"きゅう"};
constexpr std::array<std::wstring_view, 10> kHundreds = {
    L"",         L"ひゃく",     L"にひゃく",   L"さんびゃく", L"よんひゃく",
    L"ごひゃく", L"ろっぴゃく", L"ななひゃく", L"はっぴゃく", L"きゅうひゃく"};
constexpr std::array<std::wstring_view, 10> kThousands = {
    L"",       L"せん",     L"にせん",   L"さんぜん", L"よんせん",
    L"ごせん", L"ろくせん", L"ななせん", L"はっせん", L"きゅうせん"};
constexpr std::wstring_view kDigitSigns = L"〇一二三四五六七八九";

// How the sound before and of a counter changes.
enum class Change {
  kNone,
  kHard,     // k: icchi-ka becomes ikka behind 1, 6, 8, 10, 100
  kSharp,    // s, t, ch: behind 1, 8, 10
  kBreathy,  // h: as k, and turns into p, behind 3 (and thousand) into b
  kFun,      // the minute: as h, with p behind 3 and 4 too
};

struct Counter {
  std::wstring_view sign;
  std::wstring_view kana;
  Change change = Change::kNone;
  std::wstring_view four = L"よん";
  std::wstring_view seven = L"なな";
  std::wstring_view nine = L"きゅう";
};

// Longer signs first.
constexpr auto kCounters = std::to_array<Counter>({
    {L"時間", L"じかん", Change::kNone, L"よ", L"なな", L"く"},
    {L"年間", L"ねんかん", Change::kNone, L"よ"},
    {L"日間", L"にちかん"},
    {L"週間", L"しゅうかん", Change::kSharp},
    {L"か月", L"かげつ", Change::kHard},
    {L"ヶ月", L"かげつ", Change::kHard},
    {L"カ月", L"かげつ", Change::kHard},
    {L"月", L"がつ", Change::kNone, L"し", L"しち", L"く"},
    {L"時", L"じ", Change::kNone, L"よ", L"しち", L"く"},
    {L"年", L"ねん", Change::kNone, L"よ"},
    {L"円", L"えん", Change::kNone, L"よ"},
    {L"人", L"にん", Change::kNone, L"よ"},
    {L"日", L"にち", Change::kNone, L"よん", L"しち", L"く"},
    {L"分", L"ふん", Change::kFun},
    {L"本", L"ほん", Change::kBreathy},
    {L"杯", L"はい", Change::kBreathy},
    {L"匹", L"ひき", Change::kBreathy},
    {L"回", L"かい", Change::kHard},
    {L"個", L"こ", Change::kHard},
    {L"階", L"かい", Change::kHard},
    {L"課", L"か", Change::kHard},
    {L"冊", L"さつ", Change::kSharp},
    {L"歳", L"さい", Change::kSharp},
    {L"才", L"さい", Change::kSharp},
    {L"着", L"ちゃく", Change::kSharp},
    {L"頭", L"とう", Change::kSharp},
    {L"点", L"てん", Change::kSharp},
    {L"足", L"そく", Change::kSharp},
    {L"枚", L"まい"},
    {L"台", L"だい"},
    {L"度", L"ど"},
    {L"番", L"ばん"},
    {L"号", L"ごう"},
    {L"秒", L"びょう"},
    {L"名", L"めい"},
});

// Readings of their own.
struct Whole {
  std::wstring_view digits;
  std::wstring_view counter;
  std::wstring_view kana;
};
constexpr auto kWholes = std::to_array<Whole>({
    {L"1", L"日", L"ついたち"},        {L"2", L"日", L"ふつか"},        {L"3", L"日", L"みっか"},
    {L"4", L"日", L"よっか"},          {L"5", L"日", L"いつか"},        {L"6", L"日", L"むいか"},
    {L"7", L"日", L"なのか"},          {L"8", L"日", L"ようか"},        {L"9", L"日", L"ここのか"},
    {L"10", L"日", L"とおか"},         {L"14", L"日", L"じゅうよっか"}, {L"20", L"日", L"はつか"},
    {L"24", L"日", L"にじゅうよっか"}, {L"1", L"人", L"ひとり"},        {L"2", L"人", L"ふたり"},
    {L"20", L"歳", L"はたち"},         {L"20", L"才", L"はたち"},       {L"1", L"つ", L"ひとつ"},
    {L"2", L"つ", L"ふたつ"},          {L"3", L"つ", L"みっつ"},        {L"4", L"つ", L"よっつ"},
    {L"5", L"つ", L"いつつ"},          {L"6", L"つ", L"むっつ"},        {L"7", L"つ", L"ななつ"},
    {L"8", L"つ", L"やっつ"},          {L"9", L"つ", L"ここのつ"},      {L"3", L"階", L"さんがい"},
});

std::wstring SignsOf(std::wstring_view digits) {
  std::wstring signs;
  for (const wchar_t digit : digits) signs += kDigitSigns[static_cast<std::size_t>(digit - L'0')];
  return signs;
}

// One to four digits as words of a place each.
void AddGroup(std::wstring_view digits, std::vector<SpokenWord>& words) {
  constexpr wchar_t kPlaceSigns[] = {0, L'十', L'百', L'千'};
  for (std::size_t i = 0; i < digits.size(); ++i) {
    const auto digit = static_cast<std::size_t>(digits[i] - L'0');
    const std::size_t place = digits.size() - 1 - i;
    if (digit == 0) continue;
    std::wstring label;
    if (place == 0 || digit > 1) label += kDigitSigns[digit];
    if (place > 0) label += kPlaceSigns[place];
    std::wstring kana;
    switch (place) {
      case 3:
        kana = kThousands[digit];
        break;
      case 2:
        kana = kHundreds[digit];
        break;
      case 1:
        kana = digit > 1 ? std::wstring(kUnits[digit]) + L"じゅう" : L"じゅう";
        break;
      default:
        kana = kUnits[digit];
    }
    words.push_back({std::move(kana), std::move(label)});
  }
}

std::wstring Replaced(std::wstring_view kana, std::wstring_view ending, std::wstring_view by) {
  return std::wstring(kana.substr(0, kana.size() - ending.size())) + std::wstring(by);
}

// What stands at the end of a number, with its last sound doubled into what follows.
std::wstring Doubled(const std::wstring& kana, bool six_and_hundred) {
  for (const auto& [ending, doubled] : {std::pair{L"いち", L"いっ"}, std::pair{L"はち", L"はっ"},
                                        std::pair{L"じゅう", L"じゅっ"}}) {
    if (kana.ends_with(ending)) return Replaced(kana, ending, doubled);
  }
  if (six_and_hundred) {
    for (const auto& [ending, doubled] :
         {std::pair{L"ろく", L"ろっ"}, std::pair{L"ひゃく", L"ひゃっ"},
          std::pair{L"びゃく", L"びゃっ"}, std::pair{L"ぴゃく", L"ぴゃっ"}}) {
      if (kana.ends_with(ending)) return Replaced(kana, ending, doubled);
    }
  }
  return kana;
}

std::wstring Voiced(std::wstring kana, bool half) {
  constexpr std::wstring_view kPlain = L"はひふほ";
  const std::size_t at = kPlain.find(kana.front());
  if (at != std::wstring_view::npos) kana.front() = (half ? L"ぱぴぷぽ" : L"ばびぶぼ")[at];
  return kana;
}

// The last word of a number joined with the counter behind it.
void Join(SpokenWord& last, const Counter& counter) {
  std::wstring number = last.kana;
  if (number.ends_with(L"よん")) number = Replaced(number, L"よん", counter.four);
  if (number.ends_with(L"なな")) number = Replaced(number, L"なな", counter.seven);
  if (number.ends_with(L"きゅう")) number = Replaced(number, L"きゅう", counter.nine);
  std::wstring kana(counter.kana);
  const bool three = number.ends_with(L"さん") || number.ends_with(L"せん") ||
                     number.ends_with(L"ぜん") || number.ends_with(L"まん");
  switch (counter.change) {
    case Change::kNone:
      break;
    case Change::kHard:
      number = Doubled(number, true);
      break;
    case Change::kSharp:
      number = Doubled(number, false);
      break;
    case Change::kBreathy:
    case Change::kFun: {
      const bool fun = counter.change == Change::kFun;
      number = Doubled(number, true);
      if (number.ends_with(L"っ") || (fun && (three || number.ends_with(L"よん")))) {
        kana = Voiced(std::move(kana), true);
      } else if (three) {
        kana = Voiced(std::move(kana), false);
      }
      break;
    }
  }
  last.kana = number + kana;
  last.label += counter.sign;
}

// The place of a group of four digits: 10^4, 10^8, 10^12.
void JoinGroup(std::vector<SpokenWord>& words, std::size_t group) {
  constexpr std::array<std::wstring_view, 4> kKana = {L"", L"まん", L"おく", L"ちょう"};
  constexpr wchar_t kSigns[] = {0, L'万', L'億', L'兆'};
  if (group == 0) return;
  SpokenWord& last = words.back();
  if (group == 3) last.kana = Doubled(last.kana, false);
  if (last.kana == L"せん") last.kana = L"いっせん";  // ten million
  last.kana += kKana[group];
  last.label += kSigns[group];
}

std::vector<SpokenWord> WordsOf(std::wstring_view digits) {
  std::vector<SpokenWord> words;
  for (std::size_t at = 0; at < digits.size();) {
    const std::size_t left = digits.size() - at;
    const std::size_t size = (left - 1) % 4 + 1;
    const std::size_t before = words.size();
    AddGroup(digits.substr(at, size), words);
    if (words.size() > before) JoinGroup(words, (left - 1) / 4);
    at += size;
  }
  if (words.empty()) words.push_back({L"ゼロ", L"〇"});
  return words;
}

void AddDigits(std::wstring_view digits, std::vector<SpokenWord>& words) {
  for (const wchar_t digit : digits) {
    words.push_back({std::wstring(kUnits[static_cast<std::size_t>(digit - L'0')]),
                     std::wstring(1, kDigitSigns[static_cast<std::size_t>(digit - L'0')])});
  }
}

}  // namespace

SpelledNumber SpellJapaneseNumber(const WrittenNumber& number, std::wstring_view following) {
  SpelledNumber spelled;
  std::vector<SpokenWord> words;
  if (number.negative) words.push_back({L"まいなす", L"マイナス"});
  const bool plain = number.fraction.empty() && !number.percent;
  const auto whole = std::ranges::find_if(kWholes, [&](const Whole& known) {
    return plain && known.digits == number.whole && following.starts_with(known.counter) &&
           // "1 day" is not "the 1st" where the days are counted.
           !(known.counter == L"日" && following.starts_with(L"日間") && known.digits == L"1");
  });
  if (whole != kWholes.end()) {
    words.push_back(
        {std::wstring(whole->kana), SignsOf(number.whole) + std::wstring(whole->counter)});
    if (number.whole.size() > 1) words.back().label = number.whole + std::wstring(whole->counter);
    spelled.consumed = whole->counter.size();
  } else {
    const bool code = number.whole.size() > 1 && number.whole.front() == L'0';
    if (code || number.whole.size() > kMaxDigits) {
      AddDigits(number.whole, words);
    } else {
      const std::vector<SpokenWord> said = WordsOf(number.whole);
      words.insert(words.end(), said.begin(), said.end());
    }
    if (!number.fraction.empty()) {
      words.push_back({L"てん", L"点"});
      AddDigits(number.fraction, words);
    }
    if (number.percent) words.push_back({L"ぱあせんと", L"パーセント"});
    const auto counter = std::ranges::find_if(kCounters, [&](const Counter& known) {
      return plain && !code && following.starts_with(known.sign);
    });
    if (counter != kCounters.end()) {
      Join(words.back(), *counter);
      spelled.consumed = counter->sign.size();
    }
  }
  for (const SpokenWord& word : words) {
    const auto reading = ReadKana(word.kana);
    if (!reading) continue;  // all of them can be read
    if (!spelled.text.empty()) spelled.text += L' ';
    spelled.text += InlinePronunciation(*reading, word.label);
  }
  return spelled;
}

}  // namespace veral3
