#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string_view>
#include <utility>

#include "recognition/DictionaryFile.h"
#include "recognition/WordEntry.h"

// The pronunciation dictionary of one language: turns a sentence into words with their alternative
// pronunciations.
//
//   const VeralDictionary dictionary("resources/KEN-UTF8Order.txt");
//   veral3::WordSequence words;
//   if (dictionary.LookupSentence(L"I ate 3,500.25 apples", words) < 0) ...
//
// Read-only once made: any number of threads may look up at the same time. Entries are made at look
// up and owned by whoever holds them, so a sequence outlives its dictionary. Nothing throws but
// std::bad_alloc, which is never taken for a word that is not there.
class VeralDictionary {
 public:
  VeralDictionary() = default;  // no words, unknown phoneme set

  // Loads a dictionary file. Trouble is reported on the error stream and leaves what could be read.
  explicit VeralDictionary(const char* path);

  // Of a file that has been read.
  explicit VeralDictionary(veral3::DictionaryFile file) noexcept : m_File(std::move(file)) {}

  int GetWordCount() const { return static_cast<int>(m_File.words.size()); }
  int GetPhonemeSet() const { return m_File.phoneme_set; }  // CPhonemeSet's identifier, or 0

  // The entry at `index`, in file order, usable or not; null outside.
  std::shared_ptr<const veral3::OwnedWordEntry> EntryAt(int index) const;

  // The index of a word in any case, -1 when it is not there; whether its pronunciations can be
  // used is not looked at.
  int FindWord(std::wstring_view word) const;

  // What stands before a word's first pronunciation, a cost in the starter dictionaries: an
  // integer, about 10 times -ln of its probability. Empty outside.
  std::string_view NoteAt(int index) const;

  // The entry of a word in any case. Null, with a message on the wide error stream, when there is
  // none with a usable pronunciation.
  std::shared_ptr<const veral3::OwnedWordEntry> LookupWord(std::wstring_view word) const;

  // Appends the words of `sentence`. 0, or
  //   -1    it begins with "|" and a blank
  //   -100  an inline pronunciation is bad
  //   -200  an inline segment is of an unknown kind
  //   -300  an inline digits segment is bad or has a word that is not there
  //   -400  more than WordSequence::kMaxWords words
  // The words before the failure stay. Missing words of plain text are reported and passed over.
  int LookupSentence(std::wstring_view sentence, veral3::WordSequence& words) const;

  // Parses one pronunciation, from place `start` of `line` (UTF-8) on, in the notation of the
  // dictionary's phoneme set (see recognition/PronunciationParser.h) into the slot of an entry that
  // is being made. 0; or -1 with the slot left empty, which is reported only where nothing stands
  // for the phonemes, and for a slot that the entry lacks.
  int ReadAPronunEntry(std::string_view line, std::size_t start,
                       std::span<veral3::OwnedWordEntry::Variant> entry, int slot) const;

  // The entry that an inline pronunciation spells out, as in "|1 1 ? 1 1 0 hYt|height". Null when
  // it is malformed; one that does not even begin like that is reported on standard output.
  std::shared_ptr<const veral3::OwnedWordEntry> AllocateSpecifiedWord(
      std::wstring_view token) const;

  // Appends the words of an inline digits segment, as in "|3 12 cats |". 0, -400 as above, or -1
  // when it does not begin with "|3 " or a word is missing.
  int LookupDigits(std::wstring_view token, veral3::WordSequence& words) const;

  // Where the next word of `text` starts, at or after `start`; the text's length at its end.
  int GetNextIndexOfVaildChar(std::wstring_view text, int start) const;

 private:
  int AppendWord(std::wstring_view word, veral3::WordSequence& words) const;
  int AppendNumber(std::wstring_view number, veral3::WordSequence& words) const;

  veral3::DictionaryFile m_File;
};
