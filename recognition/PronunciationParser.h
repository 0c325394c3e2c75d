#pragma once

#include <string_view>

#include "recognition/WordEntry.h"

// One pronunciation as the dictionary file and an inline pronunciation write it:
//
//   FIELD SYLLABLES MARKS START... COMPACT        e.g.  ? 2 10 0 2 rYtR
//
// FIELD means nothing to the engine. MARKS has one character a syllable, its value the character
// minus '0'. Each START is the place in COMPACT of a syllable's first character. COMPACT writes
// some phonemes and finals of several phonemes with one character, by the phoneme set. Japanese may
// say 0 syllables and leave out marks and starts: one syllable then, with mark 1.
namespace veral3 {

enum class PronunciationStatus {
  kGood,
  kMalformed,  // no reason is given to anybody
  kEmpty,      // nothing where the compact pronunciation should stand
};

// Parses `text`, well-formed UTF-8, in the notation of a phoneme set (CPhonemeSet's identifier; 0
// has no compact characters). The slot then holds phonemes, at least one, and starts that ascend
// within them; or nothing, when the status is not kGood.
PronunciationStatus ParsePronunciation(int phoneme_set, std::string_view text,
                                       OwnedWordEntry::Variant& slot);

}  // namespace veral3
