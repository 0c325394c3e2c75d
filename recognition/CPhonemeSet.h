#pragma once

#include "common/LanguageType.h"

// The phonemes of one language: one character a phoneme, numbered by their place in the full set
// (vowels, consonants, then '-' for pause and silence). The frame classifiers number their outputs
// by phoneme state: phoneme index x 3 + state.
class CPhonemeSet {
 public:
  virtual ~CPhonemeSet() = default;
  CPhonemeSet(const CPhonemeSet&) = delete;
  CPhonemeSet& operator=(const CPhonemeSet&) = delete;

  virtual int GetSize() const = 0;  // length of the full set, '-' included
  virtual bool IsVowel(wchar_t c) const = 0;
  virtual bool IsConsonant(wchar_t c) const = 0;

  // Place of `c` in the full set, -1 when it is not there.
  int GetPhonemeIndex(char c) const;

  // Index of state `nState` (0, 1, 2) of `c` among all phoneme states, -1 when `c` is not in the
  // set. A state above 3 is reported and read as 3; 3 itself and negative states pass unreported.
  int GetStateIndex(char c, int nState) const;

  const char* GetFullSet() const { return m_strFullSet; }           // zero-terminated
  const char* GetSoundsLikeMap() const { return m_strSoundsLike; }  // same length
  int GetIdentifier() const { return m_nIdentifier; }

  static constexpr int kEnglish = 11;  // identifiers; they select models and notations
  static constexpr int kChinese = 7;
  static constexpr int kJapanese = 10;

 protected:
  CPhonemeSet(const char* full_set, const char* sounds_like, int identifier)
      : m_strFullSet(full_set), m_strSoundsLike(sounds_like), m_nIdentifier(identifier) {}

 private:
  const char* m_strFullSet;
  const char* m_strSoundsLike;
  int m_nIdentifier;
};

namespace veral3 {

// The process-wide set of a language; null for a value that names none.
const CPhonemeSet* PhonemeSetOf(LanguageType language);

}  // namespace veral3
