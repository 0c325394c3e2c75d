#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "recognition/PronunciationParser.h"
#include "recognition/WordEntry.h"

// A dictionary file as it is kept in memory: its text as it stands and where each word's line
// begins. Entries are parsed when they are asked for, which keeps 124,000 English words in 5 MB and
// loads them in the time that one look at every line takes.
//
//   HEADER VERSION TAG N
//   WORD P PRONUNCIATION        then P-1 lines PRONUNCIATION; N times
//
// Fields are separated by white space; docs/formats/dictionary.md has the whole of it.
namespace veral3 {

struct DictionaryFile {
  struct Place {
    std::uint32_t line;         // byte in `text` at which the word's first line begins
    std::uint16_t word_offset;  // bytes from there to the word
    std::uint16_t word_length;  // bytes
  };

  std::string text;  // well-formed UTF-8
  int phoneme_set = 0;
  std::vector<Place> words;  // in file order

  std::string_view Word(std::size_t index) const {
    const Place& place = words[index];
    return std::string_view(text).substr(place.line + place.word_offset, place.word_length);
  }
};

// Reads the file at `path`; one that cannot be read is reported and reads as an empty one.
DictionaryFile ReadDictionaryFile(const char* path);

// The same for the bytes of a file, named `path` in messages. What is wrong with them goes to the
// error stream, as does a closing line with the number of words that the header announces; whatever
// could be read is kept. Allocates in proportion to the bytes, whatever numbers they hold.
DictionaryFile IndexDictionary(std::string bytes, std::string_view path);

// The pronunciations of the word at `index`, in file order; those that do not parse are empty.
std::vector<OwnedWordEntry::Variant> ParseVariants(const DictionaryFile& file, std::size_t index);

// The field of a word's first pronunciation that the engine passes over: its cost in the starter
// files. Empty where the line ends before it.
std::string_view NoteOf(const DictionaryFile& file, std::size_t index);

// ParsePronunciation with its message. 0, or -1 when the slot stays empty.
int ReadAPronunEntry(int phoneme_set, std::string_view text, OwnedWordEntry::Variant& slot);

}  // namespace veral3
