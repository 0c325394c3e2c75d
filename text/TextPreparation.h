#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "common/LanguageType.h"
#include "text/Segmentation.h"
#include "text/TracedText.h"

// What stands between text as people write it and the sentence that the engine takes: words that
// its dictionary has, parted by blanks.
//
//   TracedText words = PrepareWords("Don\u2019t wait", kLanguageEnglish, cost);
//   std::string sentence = Utf8FromWide(words.Text());
//   SentenceCheck check = CheckSentence(sentence, kLanguageEnglish, has_word);
//   for (const std::string& word : check.missing_words) complain(word);
//
// Inline segments ("|1 1 ? 1 1 0 hYt|height") pass through as they are.
namespace veral3 {

// The sentence with
// - fullwidth letters and digits as ASCII, halfwidth kana as kana;
// - blanks for no-break and other blanks, line breaks, dashes, quotation marks and all other
// punctuation and symbols beyond ASCII, and nothing for invisible characters;
// - composed characters (NFC);
// - in English, typographic apostrophes straight and accents off (the dictionary has none).
// Runs of blanks become one; none is left at the ends. UTF-8 in and out.
TracedText PrepareText(const TracedText& text, LanguageType language);
std::string PrepareText(std::string_view text, LanguageType language);

// The whole preparation: PrepareText, and in Chinese and Japanese numbers in words and blanks
// between the words of the dictionary (text/SpokenNumbers.h, text/Segmentation.h).
TracedText PrepareWords(std::string_view text, LanguageType language, const WordCost& cost);

// Whether the dictionary has a word, in any case.
using HasWord = std::function<bool(std::wstring_view word)>;

// What the engine will do with the words of a sentence. Everything as written, each thing once.
struct SentenceCheck {
  int num_words = 0;                        // that will be aligned; a number counts as one
  std::vector<std::string> missing_words;   // not in the dictionary: passed over
  std::vector<std::string> unread_numbers;  // say nothing: passed over
};

// Of a prepared sentence.
SentenceCheck CheckSentence(std::string_view sentence, LanguageType language,
                            const HasWord& has_word);

// The symbols of an unprepared text that a reader says and the engine passes over, such as % and &,
// and / or ~ between two numbers. In Chinese and Japanese the % of a number is read with it.
std::vector<std::string> UnreadSymbols(std::string_view text, LanguageType language);

// How to write a word that the dictionary lacks: the inline pronunciation to fill in for `word`,
// and one of the language that is complete. Several lines with line ends.
std::string InlinePronunciationHelp(std::string_view word, LanguageType language);

}  // namespace veral3
