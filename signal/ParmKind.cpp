#include "signal/ParmKind.h"

#include <algorithm>
#include <array>

#include "signal/HShell.h"

namespace veral3 {
namespace {

constexpr std::array<std::string_view, kAnon + 1> kBaseNames = {
    "WAVEFORM", "LPC",     "LPREFC", "LPCEPSTRA", "LPDELCEP", "IREFC", "MFCC",
    "FBANK",    "MELSPEC", "USER",   "DISCRETE",  "PLP",      "ANON"};

struct Qualifier {
  char letter;
  ParmQualifier bit;
};
constexpr std::array<Qualifier, 9> kQualifiers = {{{'E', kHasEnergy},
                                                   {'N', kHasNoEnergy},
                                                   {'D', kHasDelta},
                                                   {'A', kHasAccs},
                                                   {'C', kHasCompress},
                                                   {'Z', kHasZeroMean},
                                                   {'K', kHasCrc},
                                                   {'0', kHasC0},
                                                   {'V', kHasVq}}};

}  // namespace

ParmKind Str2ParmKind(std::string_view text) {
  const std::string whole(text);
  ParmKind qualifiers = 0;
  while (text.size() > 2 && text[text.size() - 2] == '_') {
    const auto* found =
        std::find_if(kQualifiers.begin(), kQualifiers.end(),
                     [&](const Qualifier& qualifier) { return qualifier.letter == text.back(); });
    if (found == kQualifiers.end()) {
      FatalError(kErrorParmQualifier, "Str2ParmKind: unknown ParmKind qualifier %s", whole.c_str());
    }
    qualifiers = static_cast<ParmKind>(qualifiers | found->bit);
    text.remove_suffix(2);
  }
  const auto* name = std::find(kBaseNames.begin(), kBaseNames.end(), text);
  if (name == kBaseNames.end()) return kAnon;
  if (text == kBaseNames[kLpDelCep])
    return static_cast<ParmKind>(ParmKind{kLpCepstra} | kHasDelta | qualifiers);
  return static_cast<ParmKind>((name - kBaseNames.begin()) | qualifiers);
}

std::string ParmKind2Str(ParmKind kind) {
  std::string text(kBaseNames[std::min<ParmKind>(BaseParmKind(kind), kAnon)]);
  for (const Qualifier& qualifier : kQualifiers) {
    if (kind & qualifier.bit) text += {'_', qualifier.letter};
  }
  return text;
}

}  // namespace veral3
