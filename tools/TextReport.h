#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "common/LanguageType.h"
#include "text/Lexicon.h"

// What the engine will make of a text: its words and how each may be pronounced.
namespace veral3::tools {

struct SyllableReport {
  std::string phonemes;  // symbols of the language's set
  int mark = 0;          // tone (Chinese), stress (English), 1 (Japanese)
};

struct PronunciationReport {
  std::vector<SyllableReport> syllables;
  std::string reading;  // UTF-8: pinyin, kana; in English the phonemes with their stress
};

struct WordReport {
  std::string text;  // UTF-8
  bool known = true;
  std::vector<PronunciationReport> pronunciations;  // the canonical one first
};

struct TextReport {
  std::string text;      // as given
  std::string prepared;  // as the engine takes it
  std::vector<WordReport> words;
  std::vector<std::string> missing;         // words and numbers that the engine would pass over
  std::vector<std::string> unread_symbols;  // signs that are spoken, and passed over
};

TextReport ReportText(std::string_view text, LanguageType language, const Lexicon& lexicon);

// For reading: a line a pronunciation. Its layout may change.
std::string TextTable(const TextReport& report, LanguageType language);

// docs/formats/check-text.schema.json.
std::string TextJson(const std::vector<TextReport>& reports, LanguageType language);

}  // namespace veral3::tools
