#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "common/LanguageType.h"
#include "recognition/ModelFileType.h"

class CPhonemeSet;

// Everything that a language is known by: one row a language. What asks for a name, a file or a
// property of a language asks here; nobody keeps a list of languages of their own.
//
//   for (const LanguageRow& row : Languages()) offer(row.code, row.name);
//   if (const LanguageRow* row = FindLanguage("ja")) load(row->dictionary, row->frame_model.file);
//
// CONTRIBUTING.md tells what a new language needs besides its row.
namespace veral3 {

inline constexpr std::size_t kNumLanguages = 3;

struct LanguageModel {
  const char* file;  // name in the folder of resources
  ModelFileType type;
};

// What the mark of a syllable says.
enum class SyllableMark { kStress, kTone, kNone };

// How the pronunciation of a word is written for people.
enum class ReadingScript { kSounds, kPinyin, kKana };

struct LanguageRow {
  LanguageType language;
  const char* code;         // ISO 639-1, small letters: "en"
  const char* name;         // in English: "English"
  const char* record_code;  // as the text form of a stored recording has it: "EN"

  const CPhonemeSet* phonemes;
  const char* phoneme_tag;  // of that set, in the head of a dictionary: "EN_KEP5"
  const char* dictionary;   // file name
  LanguageModel frame_model;
  LanguageModel phoneme_model;
  std::optional<LanguageModel> tone_model;  // where syllables have tones; the process keeps one

  std::int32_t variety;  // that the resources speak, HLYFile::SubL2Type's number
  const char* variety_name;

  bool blanks_between_words;  // in text as people write it
  SyllableMark mark;
  ReadingScript reading;
  const char* mark_text;        // the marks of an inline pronunciation in words, for each syllable
  const char* inline_example;   // a whole inline pronunciation, UTF-8
  const char* reading_example;  // what ReadingScript writes for it; "" for kSounds
};

// All rows, in the order of their LanguageType.
const std::array<LanguageRow, kNumLanguages>& Languages();

// The row of a language, of a code or a name in any case ("en", "English"), of a phoneme set by its
// identifier, of a dictionary's tag. Null for what names no language.
const LanguageRow* FindLanguage(LanguageType language);
const LanguageRow* FindLanguage(std::string_view code_or_name);
const LanguageRow* FindLanguageOfPhonemeSet(int identifier);
const LanguageRow* FindLanguageOfTag(std::string_view phoneme_tag);

// The place of a row in Languages().
std::size_t PlaceOf(const LanguageRow& row);

// "" for a value that names no language.
std::string_view LanguageCode(LanguageType language);
std::string_view LanguageName(LanguageType language);

// False for a value that names no language.
bool HasTones(LanguageType language);
bool HasStress(LanguageType language);
bool LacksBlanks(LanguageType language);  // between words, as people write

// "sounds", "pinyin", "kana".
const char* ReadingName(ReadingScript script);

// All codes: "en, zh, ja" with ", ".
std::string LanguageCodes(std::string_view separator);

}  // namespace veral3
