#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "Require.h"
#include "common/Messages.h"
#include "common/Unicode.h"
#include "recognition/VeralDictionary.h"

// The input is a sentence, a zero byte, and a dictionary file. Without a zero byte all of it is the
// sentence, looked up in a small English dictionary.
namespace {

constexpr std::string_view kEnglish =
    "DICT 3 EN_KEP5 7\nA 2 ? 1 0 0 @\n? 1 1 0 e\nCAT 1 ? 1 1 0 k{t\nDON'T 1 ? 1 1 0 dont\n"
    "FIVE 1 ? 1 1 0 fYv\nHUNDRED 1 ? 2 10 0 3 hVndr@d\nONE 1 ? 1 1 0 wVn\nTWENTY 1 ? 2 10 0 4 "
    "twEnti\n";

using veral3::fuzz::Require;

void Check(const veral3::WordEntry& entry) {
  for (const veral3::Pronunciation& one : entry.pronunciations) {
    Require(one.syllable_marks.size() == one.syllable_starts.size());
    Require(one.IsUsable() == (one.NumSyllables() > 0));
    std::int32_t least = 0;
    for (const std::int32_t start : one.syllable_starts) {
      Require(start >= least && static_cast<std::size_t>(start) <= one.phonemes.size());
      least = start;
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  veral3::SetMessageHandler([](veral3::MessageStream, std::string_view) {});
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::size_t zero = input.find('\0');
  const std::string_view file = zero == std::string_view::npos ? kEnglish : input.substr(zero + 1);
  const VeralDictionary dictionary(veral3::IndexDictionary(std::string(file), "fuzz"));
  for (int i = 0; i < dictionary.GetWordCount(); ++i) Check(dictionary.EntryAt(i)->Entry());

  veral3::WordSequence words;
  const std::wstring sentence = veral3::WideFromUtf8(input.substr(0, zero));
  Require(dictionary.LookupSentence(sentence, words) <= 0);
  for (int i = 0; i < words.Count(); ++i) {
    const veral3::WordEntry& entry = words[i];
    Check(entry);
    bool usable = false;
    for (const veral3::Pronunciation& one : entry.pronunciations) usable |= one.IsUsable();
    Require(usable);
  }
  return 0;
}
