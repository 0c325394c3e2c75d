#include "text/Kana.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "common/Unicode.h"

namespace veral3 {
namespace {

struct KanaSound {
  std::wstring_view kana;  // hiragana
  std::string_view phonemes;
};

// What is written with several kana stands before what begins alike; of equal sounds the usual
// spelling first.
constexpr auto kSounds = std::to_array<KanaSound>({
    {L"きゃ", "kja"}, {L"きゅ", "kju"}, {L"きょ", "kjo"}, {L"ぎゃ", "gja"}, {L"ぎゅ", "gju"},
    {L"ぎょ", "gjo"}, {L"にゃ", "nja"}, {L"にゅ", "nju"}, {L"にょ", "njo"}, {L"びゃ", "bja"},
    {L"びゅ", "bju"}, {L"びょ", "bjo"}, {L"ぴゃ", "pja"}, {L"ぴゅ", "pju"}, {L"ぴょ", "pjo"},
    {L"みゃ", "mja"}, {L"みゅ", "mju"}, {L"みょ", "mjo"}, {L"りゃ", "rja"}, {L"りゅ", "rju"},
    {L"りょ", "rjo"}, {L"てゅ", "tju"}, {L"でゅ", "dju"}, {L"ふゅ", "fju"}, {L"くぁ", "kwa"},
    {L"ぐぁ", "gwa"}, {L"しゃ", "Ca"},  {L"しゅ", "Cu"},  {L"しぇ", "Ce"},  {L"しょ", "Co"},
    {L"じゃ", "Za"},  {L"じゅ", "Zu"},  {L"じぇ", "Ze"},  {L"じょ", "Zo"},  {L"ちゃ", "Ya"},
    {L"ちゅ", "Yu"},  {L"ちぇ", "Ye"},  {L"ちょ", "Yo"},  {L"ひゃ", "ca"},  {L"ひゅ", "cu"},
    {L"ひょ", "co"},  {L"ふぁ", "fa"},  {L"ふぃ", "fi"},  {L"ふぇ", "fe"},  {L"ふぉ", "fo"},
    {L"つぁ", "Xa"},  {L"つぃ", "Xi"},  {L"つぇ", "Xe"},  {L"つぉ", "Xo"},  {L"うぃ", "wi"},
    {L"うぇ", "we"},  {L"うぉ", "wo"},  {L"てぃ", "ti"},  {L"でぃ", "di"},  {L"とぅ", "tu"},
    {L"どぅ", "du"},  {L"すぃ", "si"},  {L"ずぃ", "zi"},  {L"いぇ", "je"},  {L"ぢゃ", "Za"},
    {L"ぢゅ", "Zu"},  {L"ぢょ", "Zo"},  {L"か", "ka"},    {L"き", "ki"},    {L"く", "ku"},
    {L"け", "ke"},    {L"こ", "ko"},    {L"が", "ga"},    {L"ぎ", "gi"},    {L"ぐ", "gu"},
    {L"げ", "ge"},    {L"ご", "go"},    {L"さ", "sa"},    {L"し", "Ci"},    {L"す", "su"},
    {L"せ", "se"},    {L"そ", "so"},    {L"ざ", "za"},    {L"じ", "Zi"},    {L"ず", "zu"},
    {L"ぜ", "ze"},    {L"ぞ", "zo"},    {L"た", "ta"},    {L"ち", "Yi"},    {L"つ", "Xu"},
    {L"て", "te"},    {L"と", "to"},    {L"だ", "da"},    {L"で", "de"},    {L"ど", "do"},
    {L"な", "na"},    {L"に", "ni"},    {L"ぬ", "nu"},    {L"ね", "ne"},    {L"の", "no"},
    {L"は", "ha"},    {L"ひ", "ci"},    {L"ふ", "fu"},    {L"へ", "he"},    {L"ほ", "ho"},
    {L"ば", "ba"},    {L"び", "bi"},    {L"ぶ", "bu"},    {L"べ", "be"},    {L"ぼ", "bo"},
    {L"ぱ", "pa"},    {L"ぴ", "pi"},    {L"ぷ", "pu"},    {L"ぺ", "pe"},    {L"ぽ", "po"},
    {L"ま", "ma"},    {L"み", "mi"},    {L"む", "mu"},    {L"め", "me"},    {L"も", "mo"},
    {L"や", "ja"},    {L"ゆ", "ju"},    {L"よ", "jo"},    {L"ら", "ra"},    {L"り", "ri"},
    {L"る", "ru"},    {L"れ", "re"},    {L"ろ", "ro"},    {L"わ", "wa"},    {L"あ", "a"},
    {L"い", "i"},     {L"う", "u"},     {L"え", "e"},     {L"お", "o"},     {L"ぢ", "Zi"},
    {L"づ", "zu"},    {L"ゐ", "i"},     {L"ゑ", "e"},     {L"を", "o"},     {L"ぁ", "a"},
    {L"ぃ", "i"},     {L"ぅ", "u"},     {L"ぇ", "e"},     {L"ぉ", "o"},     {L"ゃ", "ja"},
    {L"ゅ", "ju"},    {L"ょ", "jo"},    {L"ゎ", "wa"},    {L"ゔぁ", "ba"},  {L"ゔぃ", "bi"},
    {L"ゔぇ", "be"},  {L"ゔぉ", "bo"},  {L"ゔゅ", "bju"}, {L"ゔ", "bu"},
});

constexpr wchar_t kLengthMark = L'ー';
constexpr wchar_t kSmallTsu = L'っ';
constexpr wchar_t kMoraicN = L'ん';

bool IsVowel(char c) { return std::string_view("aeiou").find(c) != std::string_view::npos; }

wchar_t Hiragana(wchar_t c) {
  return c >= L'ァ' && c <= L'ヴ' ? static_cast<wchar_t>(c - (L'ァ' - L'ぁ')) : c;
}

const KanaSound* SoundAt(std::wstring_view hiragana) {
  const auto found = std::ranges::find_if(
      kSounds, [&](const KanaSound& sound) { return hiragana.starts_with(sound.kana); });
  return found == kSounds.end() ? nullptr : &*found;
}

// What a small tsu sounds like before an onset; 0 where nothing is doubled.
char Closure(std::string_view onset) {
  if (onset.empty() || IsVowel(onset.front())) return 0;
  switch (onset.front()) {
    case 'X':
    case 'Y':
      return 't';
    case 'Z':
    case 'z':
      return 'd';
    default:
      return onset.front();
  }
}

// The mora whose vowel is not heard, in brackets; "?" for a symbol that begins none.
std::wstring Devoiced(char consonant) {
  for (const char vowel : {'u', 'i'}) {
    const std::string phonemes = {consonant, vowel};
    const auto sound = std::ranges::find(kSounds, phonemes, &KanaSound::phonemes);
    if (sound != kSounds.end()) return std::wstring(L"(").append(sound->kana).append(L")");
  }
  return L"?";
}

// Collects phonemes and starts a syllable at every consonant and vowel that lengthens nothing.
class ReadingWriter {
 public:
  void Sound(std::string_view phonemes) {
    const char last = m_reading.phonemes.empty() ? '\0' : m_reading.phonemes.back();
    const bool lengthens =
        phonemes.size() == 1 && (phonemes.front() == last || (phonemes == "u" && last == 'o') ||
                                 (phonemes == "i" && last == 'e'));
    if (lengthens) {
      m_reading.phonemes += last;
    } else {
      Start();
      m_reading.phonemes += phonemes;
    }
  }
  // The vowel before again; false where there is none.
  bool Lengthen() {
    if (m_reading.phonemes.empty() || !IsVowel(m_reading.phonemes.back())) return false;
    m_reading.phonemes += m_reading.phonemes.back();
    return true;
  }
  // Closes the syllable before it.
  void Close(char symbol) {
    if (m_reading.starts.empty()) Start();
    m_reading.phonemes += symbol;
  }
  Reading Take() {
    m_reading.marks.assign(m_reading.starts.size(), '1');
    return std::move(m_reading);
  }

 private:
  void Start() { m_reading.starts.push_back(static_cast<int>(m_reading.phonemes.size())); }
  Reading m_reading;
};

}  // namespace

bool IsKana(std::wstring_view text) {
  return !text.empty() && std::ranges::all_of(text, [](wchar_t c) {
    const wchar_t hiragana = Hiragana(c);
    return (hiragana >= L'ぁ' && hiragana <= L'ゔ') || c == kLengthMark;
  });
}

std::optional<Reading> ReadKana(std::wstring_view kana) {
  std::wstring hiragana(kana);
  std::ranges::transform(hiragana, hiragana.begin(), Hiragana);
  ReadingWriter writer;
  bool has_sound = false;
  for (std::size_t i = 0; i < hiragana.size();) {
    const std::wstring_view rest = std::wstring_view(hiragana).substr(i);
    if (rest.front() == kLengthMark) {
      if (!writer.Lengthen()) return std::nullopt;
      ++i;
    } else if (rest.front() == kMoraicN) {
      const KanaSound* next = SoundAt(rest.substr(1));
      const bool labial = next != nullptr && std::string_view("bpm").find(next->phonemes.front()) !=
                                                 std::string_view::npos;
      writer.Close(labial ? 'M' : 'N');
      has_sound = true;
      ++i;
    } else if (rest.front() == kSmallTsu) {
      const KanaSound* next = SoundAt(rest.substr(1));
      const char closure = next == nullptr || !has_sound ? '\0' : Closure(next->phonemes);
      if (closure != 0) writer.Close(closure);
      ++i;
    } else if (const KanaSound* sound = SoundAt(rest)) {
      writer.Sound(sound->phonemes);
      has_sound = true;
      i += sound->kana.size();
    } else {
      return std::nullopt;
    }
  }
  if (!has_sound) return std::nullopt;
  return writer.Take();
}

std::string KanaOfPhonemes(std::string_view phonemes, const std::vector<int>& starts) {
  const auto starts_syllable = [&](std::size_t at) {
    return std::ranges::find(starts, static_cast<int>(at)) != starts.end();
  };
  std::wstring kana;
  for (std::size_t i = 0; i < phonemes.size();) {
    const std::string_view rest = phonemes.substr(i);
    const char next = rest.size() > 1 ? rest[1] : '\0';
    const bool begins_sound = IsVowel(next) || next == 'j' || next == 'w';
    if (i > 0 && IsVowel(rest.front()) && rest.front() == phonemes[i - 1] && !starts_syllable(i)) {
      kana += kLengthMark;
      ++i;
    } else if (rest.front() == 'n' && (!begins_sound || (i > 0 && !starts_syllable(i)))) {
      kana += kMoraicN;
      ++i;
    } else if (!IsVowel(rest.front()) && next != '\0' && Closure(rest.substr(1)) == rest.front()) {
      kana += kSmallTsu;
      ++i;
    } else {
      const auto sound = std::ranges::find_if(
          kSounds, [&](const KanaSound& known) { return rest.starts_with(known.phonemes); });
      if (sound == kSounds.end()) {
        kana += Devoiced(rest.front());
        ++i;
      } else {
        kana += sound->kana;
        i += sound->phonemes.size();
      }
    }
  }
  return Utf8FromWide(kana);
}

std::wstring InlinePronunciation(const Reading& reading, std::wstring_view word) {
  std::string text = "|1 1 ? ";
  text.append(std::to_string(reading.starts.size())).append(" ").append(reading.marks);
  for (const int start : reading.starts) text.append(" ").append(std::to_string(start));
  text.append(" ").append(reading.phonemes).append("|");
  return WideFromUtf8(text) + std::wstring(word);
}

}  // namespace veral3
