#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// Parameter kinds: what the columns of a feature row are. A base kind in the low six bits, and
// qualifiers:
//
//   Str2ParmKind("MFCC_E_D_A_Z") == (kMfcc | kHasEnergy | kHasDelta | kHasAccs | kHasZeroMean)
namespace veral3 {

using ParmKind = std::uint16_t;

enum BaseKind : ParmKind {
  kWaveform,
  kLpc,
  kLpRefC,
  kLpCepstra,
  kLpDelCep,
  kIRefC,
  kMfcc,
  kFbank,
  kMelSpec,
  kUser,
  kDiscrete,
  kPlp,
  kAnon,
};
inline constexpr ParmKind kBaseMask = 0x3F;

enum ParmQualifier : ParmKind {
  kHasEnergy = 0x40,     // _E: log energy
  kHasNoEnergy = 0x80,   // _N
  kHasDelta = 0x100,     // _D: first derivatives
  kHasAccs = 0x200,      // _A: second derivatives
  kHasCompress = 0x400,  // _C
  kHasZeroMean = 0x800,  // _Z: static cepstra without their mean
  kHasCrc = 0x1000,      // _K
  kHasC0 = 0x2000,       // _0: 0th cepstral coefficient
  kHasVq = 0x4000,       // _V
};

constexpr ParmKind BaseParmKind(ParmKind kind) { return kind & kBaseMask; }

// The kind of a text: a base kind's name and any of _0 _A _C _D _E _K _N _V _Z in any order. An
// unknown name gives kAnon alone; an unknown qualifier is a fatal error of the toolkit.
ParmKind Str2ParmKind(std::string_view text);

// The text of a kind, its qualifiers in order of their bits.
std::string ParmKind2Str(ParmKind kind);

}  // namespace veral3
