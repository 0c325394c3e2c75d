#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "common/LanguageType.h"
#include "text/TracedText.h"

// Cutting Chinese and Japanese text, which is written without blanks, into words of the dictionary.
namespace veral3 {

// How unlikely a word is, about 10 times -ln of its probability; nothing where the dictionary lacks
// it.
using WordCost = std::function<std::optional<int>(std::wstring_view word)>;

// The text with a blank between its words: the cut whose costs, with 30 for each word more and 400
// for a character that is in no word, are least; of equal ones that with the longer words first.
// What stands between blanks or punctuation and is a word as a whole is left whole. Characters that
// are in no word stay together; in Japanese, where they are kana, as an inline pronunciation, since
// kana say how they sound. Inline segments stay as they are. Text of other languages comes back
// unchanged.
TracedText SegmentText(const TracedText& text, LanguageType language, const WordCost& cost);
std::wstring SegmentText(std::wstring_view text, LanguageType language, const WordCost& cost);

}  // namespace veral3
