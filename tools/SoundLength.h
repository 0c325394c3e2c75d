#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/InputFile.h"

// How much sound the head of a file announces, so that a file that was cut is told from a whole
// one: decoders make do with what is there.
namespace veral3::tools {

// Bytes to be read in place of those of the file.
struct BytePatch {
  std::uint64_t place = 0;
  std::string bytes;
};

struct SoundLength {
  std::int64_t frames = 0;      // announced by a FLAC file; 0: not
  std::uint64_t announced = 0;  // bytes of sound by the head of a WAV, AIFF, AU or CAF file; 0: not
  std::uint64_t present = 0;    // those that are there

  // What the head of a WAV file should say that says 0 or 0x7FFFF000 and more, as programs write
  // that cannot go back to it: the sound lasts to the end of the file. And that of a CAF file that
  // is cut, so that it opens at all.
  std::vector<BytePatch> patches;
};

// Reads the head of a file. Of what it does not know, or cannot make sense of, it says nothing.
SoundLength LengthOf(const InputFile& file);

// Where the sound begins behind an ID3v2 tag; 0 without one.
std::uint64_t EndOfId3(const InputFile& file);

}  // namespace veral3::tools
