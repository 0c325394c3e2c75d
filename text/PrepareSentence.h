#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "common/Export.h"
#include "common/LanguageType.h"

// What stands between text as people write it and the sentence that the engine takes. Chinese and
// Japanese are written without blanks; AddPossibleSentence wants one between any two words of the
// dictionary, numbers of these languages in words, and what the dictionary lacks with its
// pronunciation. Quotation marks, dashes, accents, fullwidth letters and invisible characters are
// in the way in every language.
//
//   veral3::PreparedSentence prepared =
//       veral3::PrepareSentence(kLanguageChinese, "\u4ECA\u5929\u7684\u8336\u592A\u71B1\u3002");
//   for (const veral3::PreparedWord& word : prepared.words) {
//     if (word.origin == veral3::WordOrigin::kUnknown) complain(word.text, word.begin, word.end);
//   }
//   audio.AddPossibleSentence(CString(prepared.sentence));
namespace veral3 {

enum class WordOrigin {
  kDictionary,  // written, and in the dictionary
  kNumber,      // from digits
  kInline,      // written as an inline segment ("|1 1 ? 2 01 0 2 h@lo|hello")
  kGuessed,     // not in the dictionary; its kana say how it sounds
  kUnknown,     // the engine would pass it over: not in the dictionary, or digits that say nothing
};

// One way to say a word.
struct WordPronunciation {
  std::string phonemes;              // symbols of the language's set
  std::vector<int> syllable_starts;  // index in `phonemes` of each syllable's first
  std::vector<int> syllable_marks;   // tone (Chinese), stress (English), 1 (Japanese)
};

struct PreparedWord {
  std::string text;       // UTF-8; as the engine names the word, an unknown one as it is written
  std::size_t begin = 0;  // in the original text [code points], first
  std::size_t end = 0;    // and behind the last; words of one number share a place
  WordOrigin origin = WordOrigin::kUnknown;
  std::vector<WordPronunciation> pronunciations;  // the canonical one first; none if unknown
};

struct PreparedSentence {
  std::string sentence;             // UTF-8, for AddPossibleSentence
  std::vector<PreparedWord> words;  // without the unknown ones: those of the aligned sentence
};

// Prepares `text` (UTF-8; a bad byte counts as one code point) with the dictionary of the language
// that is loaded at the time; where none is, all words are unknown. Of an unknown language, and
// when memory runs out, there is a message and nothing comes back. Whether AddPossibleSentence
// takes the result (it takes 256 words, and inline segments that parse) is for it to say. Writes no
// other message, never throws; any thread may call it at any time.
VERAL3_API PreparedSentence PrepareSentence(LanguageType language, std::string_view text) noexcept;

}  // namespace veral3
