#pragma once

#include "recognition/CPhonemeSet.h"

// Mandarin as spoken in Taiwan: 11 vowels (M and the two apical ones among them), 21 consonants.
class CPhonemeSetKCP final : public CPhonemeSet {
 public:
  CPhonemeSetKCP();
  int GetSize() const override { return 33; }
  bool IsVowel(wchar_t c) const override;
  bool IsConsonant(wchar_t c) const override;
};
