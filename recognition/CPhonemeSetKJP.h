#pragma once

#include "recognition/CPhonemeSet.h"

// Japanese: 5 vowels, 20 consonants. `b` is in the full set but not among the consonants.
class CPhonemeSetKJP final : public CPhonemeSet {
 public:
  CPhonemeSetKJP();
  int GetSize() const override { return 26; }
  bool IsVowel(wchar_t c) const override;
  bool IsConsonant(wchar_t c) const override;
};
