#pragma once

#include "recognition/CPhonemeSet.h"

// American English: 11 vowels, 25 consonants. Diphthongs are two symbols (AI, AU, EI, OI, @U).
class CPhonemeSetKEP5 final : public CPhonemeSet {
 public:
  CPhonemeSetKEP5();
  int GetSize() const override { return 37; }
  bool IsVowel(wchar_t c) const override;
  bool IsConsonant(wchar_t c) const override;
};
