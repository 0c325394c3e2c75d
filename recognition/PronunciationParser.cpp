#include "recognition/PronunciationParser.h"

#include <cstdint>
#include <string>

#include "common/Unicode.h"
#include "recognition/CPhonemeSet.h"
#include "recognition/LineTokens.h"

namespace veral3 {
namespace {

std::string_view ExpandEnglish(const char& c) {
  switch (c) {
    case 'R':
      return "3";
    case 'W':
      return "AU";
    case 'Y':
      return "AI";
    case 'e':
      return "EI";
    case 'o':
      return "@U";
    case 'y':
      return "OI";
    default:
      return {&c, 1};
  }
}

std::string_view ExpandChinese(const char& c) {
  switch (c) {
    case '#':
      return "";
    case '<':
      return "Uan";
    case '>':
      return "un";
    case 'A':
      return "an";
    case 'B':
      return "in";
    case 'D':
      return "iM";
    case 'F':
      return "UE";
    case 'G':
      return "ia";
    case 'H':
      return "uaM";
    case 'I':
      return "oM";
    case 'J':
      return "un";
    case 'K':
      return "uai";
    case 'L':
      return "ua";
    case 'M':
      return "@M";
    case 'N':
      return "@n";
    case 'O':
      return "ou";
    case 'P':
      return "aM";
    case 'Q':
      return "iE";
    case 'T':
      return "iaM";
    case 'V':
      return "iou";
    case 'W':
      return "au";
    case 'X':
      return "ioM";
    case 'Y':
      return "iai";
    case '[':
      return "uo";
    case ']':
      return "io";
    case 'e':
      return "Ei";
    case 'v':
      return "iEn";
    case 'w':
      return "iau";
    case 'y':
      return "ai";
    case '{':
      return "uan";
    case '}':
      return "u@i";
    default:
      return {&c, 1};
  }
}

std::string_view ExpandJapanese(const char& c) {
  return c == 'M' || c == 'N' ? std::string_view("n") : std::string_view(&c, 1);
}

std::string_view Expand(int phoneme_set, const char& c) {
  switch (phoneme_set) {
    case CPhonemeSet::kEnglish:
      return ExpandEnglish(c);
    case CPhonemeSet::kChinese:
      return ExpandChinese(c);
    case CPhonemeSet::kJapanese:
      return ExpandJapanese(c);
    default:
      return {&c, 1};
  }
}

// Places count characters, phonemes are narrow: what is not ASCII becomes one '?', which is no
// phoneme of any set.
std::string OneByteEach(std::string_view text) {
  if (IsAscii(text)) return std::string(text);
  std::string narrow;
  for (const wchar_t c : WideFromUtf8(text)) {
    narrow.push_back(c < 0x80 ? static_cast<char>(c) : '?');
  }
  return narrow;
}

bool ReadMarks(std::string_view field, std::int32_t count, std::vector<std::int32_t>& marks) {
  if (field.size() < static_cast<std::size_t>(count)) return false;
  const std::wstring characters = WideFromUtf8(field);
  if (characters.size() != static_cast<std::size_t>(count)) return false;
  for (const wchar_t c : characters) marks.push_back(static_cast<std::int32_t>(c) - L'0');
  return true;
}

// Each start at least the one before it (the first at least 0) and none past the end.
bool AscendWithin(const std::vector<std::int32_t>& starts, std::size_t size) {
  std::int32_t least = 0;
  for (const std::int32_t start : starts) {
    if (start < least) return false;
    least = start;
  }
  return static_cast<std::size_t>(least) <= size;
}

PronunciationStatus Parse(int phoneme_set, std::string_view text, OwnedWordEntry::Variant& slot) {
  std::size_t position = 0;
  NextField(text, position);
  const std::int32_t syllables = DecimalValue(NextField(text, position));
  if (syllables >= 1) {
    if (!ReadMarks(NextField(text, position), syllables, slot.syllable_marks)) {
      return PronunciationStatus::kMalformed;
    }
    for (std::int32_t i = 0; i < syllables; ++i) {
      slot.syllable_starts.push_back(DecimalValue(NextField(text, position)));
    }
  } else if (phoneme_set == CPhonemeSet::kJapanese) {
    slot.syllable_marks = {1};
    slot.syllable_starts = {0};
  } else {
    return PronunciationStatus::kMalformed;
  }

  const std::string_view field = NextField(text, position);
  if (field.empty()) return PronunciationStatus::kEmpty;
  const std::string compact = OneByteEach(field);
  if (!AscendWithin(slot.syllable_starts, compact.size())) return PronunciationStatus::kMalformed;

  // Japanese writes no final with one character: its starts hold after expansion. Elsewhere they
  // move, and what stands before the first syllable belongs to none and goes.
  const bool starts_move = phoneme_set != CPhonemeSet::kJapanese;
  std::size_t syllable = 0;
  for (std::size_t i = starts_move ? static_cast<std::size_t>(slot.syllable_starts[0]) : 0;
       i <= compact.size(); ++i) {
    while (starts_move && syllable < slot.syllable_starts.size() &&
           slot.syllable_starts[syllable] == static_cast<std::int32_t>(i)) {
      slot.syllable_starts[syllable++] = static_cast<std::int32_t>(slot.phonemes.size());
    }
    if (i < compact.size()) slot.phonemes += Expand(phoneme_set, compact[i]);
  }
  if (slot.phonemes.starts_with('#')) slot.phonemes.erase(0, 1);

  const bool usable =
      !slot.phonemes.empty() && AscendWithin(slot.syllable_starts, slot.phonemes.size());
  return usable ? PronunciationStatus::kGood : PronunciationStatus::kMalformed;
}

}  // namespace

PronunciationStatus ParsePronunciation(int phoneme_set, std::string_view text,
                                       OwnedWordEntry::Variant& slot) {
  const auto clear = [&slot] {
    slot.phonemes.clear();
    slot.syllable_marks.clear();
    slot.syllable_starts.clear();
  };
  clear();
  const PronunciationStatus status = Parse(phoneme_set, text, slot);
  if (status != PronunciationStatus::kGood) clear();
  return status;
}

}  // namespace veral3
