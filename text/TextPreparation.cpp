#include "text/TextPreparation.h"

#include <utf8proc.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <new>

#include "common/Unicode.h"
#include "recognition/CPhonemeSet.h"
#include "recognition/EnglishNumbers.h"
#include "recognition/Languages.h"
#include "recognition/SentenceTokens.h"
#include "text/SpokenNumbers.h"

namespace veral3 {
namespace {

// Symbols that stand for words; the engine takes them for punctuation.
constexpr std::wstring_view kSpokenSymbols = L"%&@#$+=\u20AC\u00A3\u00A5\u00B0";

// Signs that stand for words between two numbers ("1/2", "3~5"), and part words elsewhere.
constexpr std::wstring_view kSignsBetweenNumbers =
    L"/*<>^~\u00D7\u00F7\u2044\u2215\u2236\u301C\u2264\u2265";

bool IsWidthVariant(wchar_t c) { return c >= 0xFF00 && c <= 0xFFEF; }

bool IsApostrophe(wchar_t c) {
  return c == L'\'' || c == 0x2018 || c == 0x2019 || c == 0x02BC || c == 0x2032 || c == 0x00B4 ||
         c == 0x0060;
}

// Characters that nobody sees: soft hyphen, joiners, marks of direction, byte-order mark, variation
// selectors.
bool IsInvisible(wchar_t c) {
  return c == 0x00AD || (c >= 0x200C && c <= 0x200F) || (c >= 0x202A && c <= 0x202E) ||
         (c >= 0x2060 && c <= 0x2064) || c == 0xFEFF || (c >= 0xFE00 && c <= 0xFE0F) ||
         (c >= 0xE0100 && c <= 0xE01EF);
}

// Unicode normalisation by utf8proc; the text as it is where that fails.
std::wstring Normalized(std::wstring_view text, int options) {
  const std::string utf8 = Utf8FromWide(text);
  utf8proc_uint8_t* mapped = nullptr;
  const utf8proc_ssize_t length = utf8proc_map(
      reinterpret_cast<const utf8proc_uint8_t*>(utf8.data()),
      static_cast<utf8proc_ssize_t>(utf8.size()), &mapped, static_cast<utf8proc_option_t>(options));
  const std::unique_ptr<utf8proc_uint8_t, decltype(&std::free)> owner(mapped, &std::free);
  if (length < 0) return std::wstring(text);
  return WideFromUtf8(
      std::string_view(reinterpret_cast<const char*>(mapped), static_cast<std::size_t>(length)));
}

// A voicing mark of halfwidth kana and a combining mark belong to the character before them.
bool BeginsPiece(wchar_t c) {
  if (c == 0xFF9E || c == 0xFF9F) return false;
  return utf8proc_get_property(static_cast<utf8proc_int32_t>(c))->combining_class == 0;
}

bool IsAscii(wchar_t c) { return c < 0x80; }

// The normalised text of `length` characters from `begin` on. Each character comes from the piece
// that it was made of: a character with its marks; where more than that melts together, what stands
// between ASCII characters.
void AppendNormalized(const TracedText& text, std::size_t begin, std::size_t length, int options,
                      TracedText& result) {
  const std::wstring_view run = text.Text().substr(begin, length);
  const std::wstring whole = Normalized(run, options);
  for (const auto begins : {BeginsPiece, IsAscii}) {
    TracedText pieces;
    for (std::size_t at = 0; at < run.size();) {
      std::size_t end = at + 1;
      while (end < run.size() && !begins(run[end])) ++end;
      const std::wstring_view piece = run.substr(at, end - at);
      const TextOrigin origin = text.OriginOf(begin + at, end - at);
      if (piece.size() == 1 && IsAscii(piece.front())) {
        pieces.Append(piece, origin);
      } else {
        pieces.Append(Normalized(piece, options), origin);
      }
      at = end;
    }
    if (pieces.Text() == whole) {
      result.Append(pieces);
      return;
    }
  }
  result.Append(whole, text.OriginOf(begin, length));
}

// Fullwidth and halfwidth forms as the usual ones. A run goes through at once: a halfwidth kana and
// its voicing mark make one character. Bars and apostrophes of this kind are punctuation and do not
// become the characters that mean something to the engine.
TracedText WithUsualWidth(const TracedText& text) {
  constexpr int kCompatible = UTF8PROC_STABLE | UTF8PROC_COMPAT | UTF8PROC_COMPOSE;
  TracedText result;
  for (std::size_t i = 0; i < text.Size();) {
    std::size_t end = i;
    while (end < text.Size() && IsWidthVariant(text[end]) && text[end] != 0xFF5C &&
           text[end] != 0xFF07) {
      ++end;
    }
    if (end > i) {
      AppendNormalized(text, i, end - i, kCompatible, result);
      i = end;
    } else {
      const wchar_t c = text[i] == 0xFF5C ? L' ' : text[i] == 0xFF07 ? L'\u2019' : text[i];
      result.Append(c, text.OriginOf(i, 1));
      ++i;
    }
  }
  return result;
}

// One character of the sentence for the engine; 0 takes it out.
wchar_t Prepared(wchar_t c, bool english) {
  if (IsInvisible(c)) return 0;
  if (english && IsApostrophe(c)) return L'\'';
  if (!english && c == 0x2212) return L'-';  // a minus, for numbers
  if (c < 0x20 || c == 0x7F || (c >= 0x80 && c <= 0xA0)) return L' ';
  if (c < 0x80) return c;
  if (c == 0x200B || c == 0x2007 || c == 0x202F || IsWideSpace(c)) return L' ';
  return IsWidePunctuation(c) ? L' ' : c;
}

TracedText WithSingleBlanks(const TracedText& text) {
  std::size_t end = text.Size();
  while (end > 0 && text[end - 1] == L' ') --end;
  TracedText result;
  for (std::size_t i = 0; i < end; ++i) {
    const bool follows_word = result.Size() > 0 && result.Text().back() != L' ';
    if (text[i] != L' ' || follows_word) result.Append(text, i, 1);
  }
  return result;
}

bool IsDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }

// Whether the character at `at` stands between digits, with blanks or without.
bool IsBetweenNumbers(std::wstring_view text, std::size_t at) {
  const std::size_t before = text.substr(0, at).find_last_not_of(L' ');
  const std::size_t after = text.find_first_not_of(L' ', at + 1);
  return before != std::wstring_view::npos && after != std::wstring_view::npos &&
         IsDigit(text[before]) && IsDigit(text[after]);
}

void AddOnce(std::vector<std::string>& list, std::wstring_view text) {
  std::string utf8 = Utf8FromWide(text);
  if (std::ranges::find(list, utf8) == list.end()) list.push_back(std::move(utf8));
}

// In lines of ASCII that end at blanks.
std::string Wrapped(std::string_view text) {
  constexpr std::size_t kWidth = 87;
  std::string lines;
  while (text.size() > kWidth) {
    const std::size_t end = text.rfind(' ', kWidth);
    lines += std::string(text.substr(0, end)) + "\n";
    text.remove_prefix(end + 1);
  }
  return lines + std::string(text) + "\n";
}

}  // namespace

TracedText PrepareText(const TracedText& text, LanguageType language) {
  const bool english = language == kLanguageEnglish;
  const TracedText usual = WithUsualWidth(text);
  TracedText prepared;
  for (std::size_t i = 0; i < usual.Size(); ++i) {
    if (const wchar_t kept = Prepared(usual[i], english); kept != 0) {
      prepared.Append(kept, usual.OriginOf(i, 1));
    }
  }
  int options = UTF8PROC_STABLE | UTF8PROC_COMPOSE;
  if (english) options |= UTF8PROC_STRIPMARK;
  TracedText normalized;
  AppendNormalized(prepared, 0, prepared.Size(), options, normalized);
  // The blanks last: a mark that is taken off may have stood between two, or behind the last.
  return WithSingleBlanks(normalized);
}

std::string PrepareText(std::string_view text, LanguageType language) {
  return Utf8FromWide(PrepareText(TracedText(WideFromUtf8(text)), language).Text());
}

TracedText PrepareWords(std::string_view text, LanguageType language, const WordCost& cost) {
  TracedText prepared = PrepareText(TracedText(WideFromUtf8(text)), language);
  if (language == kLanguageEnglish) return prepared;
  return WithSingleBlanks(SegmentText(SpellNumbers(prepared, language), language, cost));
}

SentenceCheck CheckSentence(std::string_view sentence, LanguageType language,
                            const HasWord& has_word) {
  SentenceCheck check;
  const CPhonemeSet* set = PhonemeSetOf(language);
  if (set == nullptr) return check;
  const std::wstring text = WideFromUtf8(sentence);
  for (std::size_t position = 0;;) {
    const SentenceToken token = NextSentenceToken(set->GetIdentifier(), text, position);
    if (token.text.empty()) break;
    position = token.next;
    if (token.text.starts_with(L'|')) {
      ++check.num_words;
    } else if (token.is_number) {
      if (language == kLanguageEnglish && !EnglishNumberWords(token.text).empty()) {
        ++check.num_words;
      } else {
        AddOnce(check.unread_numbers, token.text);
      }
    } else if (has_word(token.text)) {
      ++check.num_words;
    } else {
      AddOnce(check.missing_words, token.text);
    }
  }
  return check;
}

std::vector<std::string> UnreadSymbols(std::string_view text, LanguageType language) {
  std::vector<std::string> symbols;
  const TracedText width = WithUsualWidth(TracedText(WideFromUtf8(text)));
  const std::wstring_view usual = width.Text();
  // Nothing in an inline segment is read from a text, nor is the word behind a pronunciation.
  bool inline_segment = false;
  bool inline_word = false;
  for (std::size_t i = 0; i < usual.size(); ++i) {
    const wchar_t c = usual[i];
    if (c == L'|') {
      inline_word = inline_segment ? inline_word : usual.substr(i + 1, 1) == L"1";
      inline_segment = !inline_segment;
    } else if (c == L' ' && !inline_segment) {
      inline_word = false;
    }
    const bool read = language != kLanguageEnglish && c == L'%' && i > 0 && IsDigit(usual[i - 1]);
    const bool is_spoken =
        kSpokenSymbols.find(c) != std::wstring_view::npos ||
        (kSignsBetweenNumbers.find(c) != std::wstring_view::npos && IsBetweenNumbers(usual, i));
    if (!inline_segment && !inline_word && !read && is_spoken)
      AddOnce(symbols, std::wstring_view(&c, 1));
  }
  return symbols;
}

std::string InlinePronunciationHelp(std::string_view word, LanguageType language) {
  std::string help = "write it with its pronunciation in its place, as\n    |1 1 ? ";
  help += "SYLLABLES MARKS STARTS PHONEMES|" + std::string(word) + "\n";
  const LanguageRow* const row = FindLanguage(language);
  if (row == nullptr) return help;
  help += Wrapped("(number of syllables; " + std::string(row->mark_text) +
                  " for each; where each begins in the phonemes, counted from 0; the phonemes), "
                  "for example");
  help += "    " + std::string(row->inline_example) + "\n";
  if (row->reading != ReadingScript::kSounds) {
    help += std::string("which is what veral3 check-text --lang ") + row->code + " --reading \"" +
            row->reading_example + "\" WORD prints\n";
  }
  return help;
}

}  // namespace veral3
