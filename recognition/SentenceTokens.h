#pragma once

#include <cstddef>
#include <string_view>

// Cutting a sentence into words, numbers and inline segments, by the rules of a phoneme set's
// language (CPhonemeSet's identifier).
namespace veral3 {

// White space of the language: ASCII's for English, Unicode's (without the no-break spaces)
// elsewhere. Punctuation likewise: ASCII's, or the categories P and S; none for an unknown set.
bool IsSentenceSpace(int phoneme_set, wchar_t c);
bool IsSentencePunctuation(int phoneme_set, wchar_t c);

// Index of the first character at or after `start` that is neither white space nor punctuation;
// the text's length when there is none. An unknown set is reported.
std::size_t GetNextIndexOfVaildChar(int phoneme_set, std::wstring_view text, std::size_t start);

struct SentenceToken {
  std::wstring_view text;  // part of the sentence; empty at its end
  std::size_t next = 0;    // where to look for the token after it
  bool is_number = false;  // digits, commas and full stops, beginning with a digit
};

// The token at or after `position`:
// - behind a bar stands an inline segment: "|", all up to the closing bar, and on to white space;
// - a digit begins a number;
// - else a word, up to white space or punctuation. Apostrophes belong to it, a last one does not.
SentenceToken NextSentenceToken(int phoneme_set, std::wstring_view sentence, std::size_t position);

}  // namespace veral3
