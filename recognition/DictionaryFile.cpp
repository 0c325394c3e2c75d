#include "recognition/DictionaryFile.h"

#include <filesystem>
#include <fstream>
#include <limits>
#include <optional>
#include <utility>

#include "common/MessageWriter.h"
#include "common/Unicode.h"
#include "recognition/CPhonemeSet.h"
#include "recognition/Languages.h"
#include "recognition/LineTokens.h"

namespace veral3 {
namespace {

// Places are 32 bits wide, and a bad byte grows to the three of U+FFFD.
constexpr std::uintmax_t kMaxFileSize = std::numeric_limits<std::uint32_t>::max() / 3;

// Only a regular file has an end that can be relied on.
std::optional<std::string> ReadWholeFile(const char* path) {
  if (path == nullptr) return std::nullopt;
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) return std::nullopt;
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  if (error || size > kMaxFileSize) return std::nullopt;
  std::ifstream stream(path, std::ios::binary);
  if (!stream) return std::nullopt;
  std::string bytes(static_cast<std::size_t>(size), '\0');
  stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  bytes.resize(static_cast<std::size_t>(stream.gcount()));
  return bytes;
}

// Drops a byte-order mark; bad bytes become U+FFFD.
void MakeWellFormed(std::string& bytes) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (std::string_view(bytes).starts_with(kByteOrderMark)) bytes.erase(0, kByteOrderMark.size());
  if (!IsAscii(bytes)) bytes = Utf8FromWide(WideFromUtf8(bytes));
}

int PhonemeSetOfTag(std::string_view tag) {
  const LanguageRow* const row = FindLanguageOfTag(tag);
  return row == nullptr ? 0 : row->phonemes->GetIdentifier();
}

}  // namespace

DictionaryFile ReadDictionaryFile(const char* path) {
  const std::string_view shown_path = path == nullptr ? "" : path;
  auto bytes = ReadWholeFile(path);
  if (!bytes) {
    Message(MessageStream::kError)
        << "Error: Fail to open Veral Dictionary <" << shown_path << ">\n";
  }
  return IndexDictionary(std::move(bytes).value_or(""), shown_path);
}

DictionaryFile IndexDictionary(std::string bytes, std::string_view path) {
  DictionaryFile file;
  MakeWellFormed(bytes);
  file.text = std::move(bytes);
  const std::string_view text = file.text;
  std::size_t next = 0;

  const std::string_view header = NextLine(text, next);
  std::size_t position = 0;
  NextField(header, position);
  const std::string_view version = NextField(header, position);
  if (version.empty() || version[0] < '1' || version[0] > '5') {
    Message(MessageStream::kError) << "Error: Wrong Veral Dictionary version\n";
  }
  file.phoneme_set = PhonemeSetOfTag(NextField(header, position));
  if (file.phoneme_set == 0) {
    Message(MessageStream::kError) << "Error: Unknown Veral Dictionary phoneme set in "
                                      "VeralDictionary::VeralDictionary()\n";
    return file;
  }
  const std::int32_t announced = DecimalValue(NextField(header, position));

  OwnedWordEntry::Variant scratch;
  for (std::int32_t i = 0; i < announced && next < text.size(); ++i) {
    const std::size_t begin = next;
    const std::string_view line = NextLine(text, next);
    position = 0;
    const std::string_view word = NextField(line, position);
    file.words.push_back({static_cast<std::uint32_t>(begin),
                          static_cast<std::uint16_t>(word.data() - line.data()),
                          static_cast<std::uint16_t>(word.size())});
    const std::int32_t count = DecimalValue(NextField(line, position));
    ReadAPronunEntry(file.phoneme_set, line.substr(position), scratch);
    for (std::int32_t p = 1; p < count && next < text.size(); ++p) {
      ReadAPronunEntry(file.phoneme_set, NextLine(text, next), scratch);
    }
  }
  file.words.shrink_to_fit();
  Message(MessageStream::kError) << "VeralDictionary: " << announced << "\twords loaded from <"
                                 << path << ">\n";
  return file;
}

std::string_view NoteOf(const DictionaryFile& file, std::size_t index) {
  std::size_t next = file.words[index].line;
  const std::string_view line = NextLine(file.text, next);
  std::size_t position = 0;
  NextField(line, position);
  NextField(line, position);
  return NextField(line, position);
}

std::vector<OwnedWordEntry::Variant> ParseVariants(const DictionaryFile& file, std::size_t index) {
  const std::string_view text = file.text;
  std::size_t next = file.words[index].line;
  const std::string_view line = NextLine(text, next);
  std::size_t position = 0;
  NextField(line, position);
  const std::int32_t count = DecimalValue(NextField(line, position));
  std::vector<OwnedWordEntry::Variant> variants;
  if (count < 1) return variants;
  ParsePronunciation(file.phoneme_set, line.substr(position), variants.emplace_back());
  for (std::int32_t p = 1; p < count && next < text.size(); ++p) {
    ParsePronunciation(file.phoneme_set, NextLine(text, next), variants.emplace_back());
  }
  return variants;
}

int ReadAPronunEntry(int phoneme_set, std::string_view text, OwnedWordEntry::Variant& slot) {
  const PronunciationStatus status = ParsePronunciation(phoneme_set, text, slot);
  if (status == PronunciationStatus::kEmpty) {
    Message(MessageStream::kError)
        << "Error, empty pronunciation in VeralDictionary::ReadAPronunEntry()\n";
  }
  return status == PronunciationStatus::kGood ? 0 : -1;
}

}  // namespace veral3
