#include "recognition/Languages.h"

#include <algorithm>

#include "recognition/CPhonemeSetKCP.h"
#include "recognition/CPhonemeSetKEP5.h"
#include "recognition/CPhonemeSetKJP.h"

namespace veral3 {
namespace {

char Small(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool SameInAnyCase(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, {}, Small, Small);
}

template <typename Predicate>
const LanguageRow* Find(Predicate predicate) {
  const auto& rows = Languages();
  const auto found = std::ranges::find_if(rows, predicate);
  return found == rows.end() ? nullptr : &*found;
}

bool Marks(LanguageType language, SyllableMark mark) {
  const LanguageRow* const row = FindLanguage(language);
  return row != nullptr && row->mark == mark;
}

}  // namespace

const std::array<LanguageRow, kNumLanguages>& Languages() {
  static const CPhonemeSetKEP5 english;
  static const CPhonemeSetKCP chinese;
  static const CPhonemeSetKJP japanese;
  static const std::array<LanguageRow, kNumLanguages> rows = std::to_array<LanguageRow>({
      {.language = kLanguageEnglish,
       .code = "en",
       .name = "English",
       .record_code = "EN",
       .phonemes = &english,
       .phoneme_tag = "EN_KEP5",
       .dictionary = "KEN-UTF8Order.txt",
       .frame_model = {"EnglishFrame.model", kFrameModelEnglish},
       .phoneme_model = {"EnglishPhon.model", kPhonemeModelEnglish},
       .tone_model = std::nullopt,
       .variety = 1,
       .variety_name = "American English",
       .blanks_between_words = true,
       .mark = SyllableMark::kStress,
       .reading = ReadingScript::kSounds,
       .mark_text = "a stress digit 0, 1 or 2",
       .inline_example = "|1 1 ? 2 01 0 2 h@lo|hello",
       .reading_example = ""},
      {.language = kLanguageChinese,
       .code = "zh",
       .name = "Chinese",
       .record_code = "ZH",
       .phonemes = &chinese,
       .phoneme_tag = "TW_KCP",
       .dictionary = "KCN-UTF8Order.txt",
       .frame_model = {"ChineseFrame.model", kFrameModelChinese},
       .phoneme_model = {"ChinesePhon.model", kPhonemeModelChinese},
       .tone_model = LanguageModel{"ChineseTone.model", kToneModelChinese},
       .variety = 2,
       .variety_name = "Mandarin as spoken in Taiwan",
       .blanks_between_words = false,
       .mark = SyllableMark::kTone,
       .reading = ReadingScript::kPinyin,
       .mark_text = "a tone digit 1 to 5",
       .inline_example = "|1 1 ? 2 33 0 2 nihW|\u4F60\u597D",
       .reading_example = "ni3 hao3"},
      {.language = kLanguageJapanese,
       .code = "ja",
       .name = "Japanese",
       .record_code = "JP",
       .phonemes = &japanese,
       .phoneme_tag = "JP_KJP",
       .dictionary = "KJP-UTF8Order.txt",
       .frame_model = {"JapaneseFrame.model", kFrameModelJapanese},
       .phoneme_model = {"JapanesePhon.model", kPhonemeModelJapanese},
       .tone_model = std::nullopt,
       .variety = 3,
       .variety_name = "Tokyo Japanese",
       .blanks_between_words = false,
       .mark = SyllableMark::kNone,
       .reading = ReadingScript::kKana,
       .mark_text = "a digit 1",
       .inline_example = "|1 1 ? 3 111 0 2 4 sakura|\u3055\u304F\u3089",
       .reading_example = "\u3055\u304F\u3089"},
  });
  return rows;
}

const LanguageRow* FindLanguage(LanguageType language) {
  return Find([&](const LanguageRow& row) { return row.language == language; });
}

const LanguageRow* FindLanguage(std::string_view code_or_name) {
  return Find([&](const LanguageRow& row) {
    return SameInAnyCase(row.code, code_or_name) || SameInAnyCase(row.name, code_or_name);
  });
}

const LanguageRow* FindLanguageOfPhonemeSet(int identifier) {
  return Find([&](const LanguageRow& row) { return row.phonemes->GetIdentifier() == identifier; });
}

const LanguageRow* FindLanguageOfTag(std::string_view phoneme_tag) {
  return Find([&](const LanguageRow& row) { return row.phoneme_tag == phoneme_tag; });
}

std::size_t PlaceOf(const LanguageRow& row) {
  return static_cast<std::size_t>(&row - Languages().data());
}

std::string_view LanguageCode(LanguageType language) {
  const LanguageRow* const row = FindLanguage(language);
  return row == nullptr ? "" : row->code;
}

std::string_view LanguageName(LanguageType language) {
  const LanguageRow* const row = FindLanguage(language);
  return row == nullptr ? "" : row->name;
}

bool HasTones(LanguageType language) { return Marks(language, SyllableMark::kTone); }

bool HasStress(LanguageType language) { return Marks(language, SyllableMark::kStress); }

bool LacksBlanks(LanguageType language) {
  const LanguageRow* const row = FindLanguage(language);
  return row != nullptr && !row->blanks_between_words;
}

const char* ReadingName(ReadingScript script) {
  switch (script) {
    case ReadingScript::kPinyin:
      return "pinyin";
    case ReadingScript::kKana:
      return "kana";
    case ReadingScript::kSounds:
      break;
  }
  return "sounds";
}

std::string LanguageCodes(std::string_view separator) {
  std::string codes;
  for (const LanguageRow& row : Languages()) {
    if (!codes.empty()) codes += separator;
    codes += row.code;
  }
  return codes;
}

}  // namespace veral3
