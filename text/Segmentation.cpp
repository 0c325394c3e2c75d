#include "text/Segmentation.h"

#include <algorithm>
#include <limits>
#include <vector>

#include "recognition/CPhonemeSet.h"
#include "recognition/Languages.h"
#include "recognition/SentenceTokens.h"
#include "text/Kana.h"

namespace veral3 {
namespace {

constexpr std::size_t kMaxWordLength = 16;  // characters; the starter dictionaries end at 14
constexpr int kWordCost = 30;
constexpr int kUnknownCost = 400;

bool IsLatin(wchar_t c) { return (c >= L'A' && c <= L'Z') || (c >= L'a' && c <= L'z'); }

struct Piece {
  std::wstring_view text;
  bool known = false;
};

// Kana that say how the one before them sounds, or close its syllable.
bool GoesOn(wchar_t c) {
  constexpr std::wstring_view kKana = L"ーっぁぃぅぇぉゃゅょゎッァィゥェォャュョヮ";
  return kKana.find(c) != std::wstring_view::npos;
}

// Whether it ends with a small tsu, which doubles what follows.
bool DoublesNext(std::wstring_view text) { return text.ends_with(L'っ') || text.ends_with(L'ッ'); }

// Characters that belong together where the dictionary does not know them: a run of Latin letters,
// else one character with the length marks and small kana behind it.
std::size_t UnknownLength(std::wstring_view text) {
  const auto belongs = IsLatin(text.front()) ? IsLatin : GoesOn;
  std::size_t length = 1;
  while (length < text.size() && belongs(text[length])) ++length;
  return length;
}

// The best cut of a run without blanks.
std::vector<Piece> Cut(std::wstring_view run, const WordCost& cost) {
  constexpr int kNoCut = std::numeric_limits<int>::max();
  struct Best {
    int cost = kNoCut;
    std::size_t length = 0;  // of the piece that begins here
    bool known = false;
  };
  std::vector<Best> best(run.size() + 1);
  best.back().cost = 0;
  for (std::size_t at = run.size(); at-- > 0;) {
    const auto offer = [&](std::size_t length, int piece_cost, bool known) {
      if (best[at + length].cost == kNoCut) return;
      const int total = best[at + length].cost + piece_cost;
      if (total < best[at].cost) best[at] = {total, length, known};
    };
    for (std::size_t length = std::min(kMaxWordLength, run.size() - at); length > 0; --length) {
      if (const auto word = cost(run.substr(at, length))) offer(length, *word + kWordCost, true);
    }
    // Behind a letter there is no kana that it could go on from.
    const bool goes_on = at > 0 && GoesOn(run[at]) && !IsLatin(run[at - 1]);
    if (!goes_on) offer(UnknownLength(run.substr(at)), kUnknownCost, false);
  }
  std::vector<Piece> pieces;
  for (std::size_t at = 0; at < run.size(); at += best[at].length) {
    const Piece piece = {run.substr(at, best[at].length), best[at].known};
    const bool joins = !pieces.empty() && !pieces.back().known &&
                       (!piece.known || (DoublesNext(pieces.back().text) && IsKana(piece.text)));
    if (joins) {
      pieces.back().text = std::wstring_view(pieces.back().text.data(),
                                             pieces.back().text.size() + piece.text.size());
    } else {
      pieces.push_back(piece);
    }
  }
  return pieces;
}

void AppendRun(const TracedText& text, std::size_t begin, std::size_t length, LanguageType language,
               const WordCost& cost, TracedText& result) {
  const std::wstring_view run = text.Text().substr(begin, length);
  if (cost(run)) {
    result.Append(text, begin, length);
    return;
  }
  std::size_t at = begin;
  for (const Piece& piece : Cut(run, cost)) {
    if (at > begin) result.Append(L' ', text.OriginOf(at, 0));
    const bool spelled = language == kLanguageJapanese && !piece.known && IsKana(piece.text);
    const auto reading = spelled ? ReadKana(piece.text) : std::nullopt;
    if (reading) {
      TextOrigin origin = text.OriginOf(at, piece.text.size());
      origin.source = TextSource::kGuessed;
      result.Append(InlinePronunciation(*reading, piece.text), origin);
    } else {
      result.Append(text, at, piece.text.size());
    }
    at += piece.text.size();
  }
}

}  // namespace

TracedText SegmentText(const TracedText& traced, LanguageType language, const WordCost& cost) {
  if (!LacksBlanks(language)) return traced;
  const std::wstring_view text = traced.Text();
  const int set = PhonemeSetOf(language)->GetIdentifier();
  const auto parts = [&](wchar_t c) {
    return IsSentenceSpace(set, c) || IsSentencePunctuation(set, c);
  };
  TracedText result;
  for (std::size_t i = 0; i < text.size();) {
    if (text[i] == L'|') {
      // An inline segment with its word, up to the next blank.
      std::size_t end = text.find(L'|', i + 1);
      end = end == std::wstring_view::npos ? text.size() : text.find(L' ', end);
      end = std::min(end, text.size());
      result.Append(traced, i, end - i);
      i = end;
    } else if (parts(text[i])) {
      result.Append(traced, i++, 1);
    } else {
      std::size_t end = i;
      while (end < text.size() && !parts(text[end])) ++end;
      AppendRun(traced, i, end - i, language, cost, result);
      i = end;
    }
  }
  return result;
}

std::wstring SegmentText(std::wstring_view text, LanguageType language, const WordCost& cost) {
  return std::wstring(SegmentText(TracedText(std::wstring(text)), language, cost).Text());
}

}  // namespace veral3
