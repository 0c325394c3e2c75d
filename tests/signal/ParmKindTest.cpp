#include "signal/ParmKind.h"

#include <gtest/gtest.h>

#include "signal/FatalErrors.h"
#include "support/Vectors.h"

namespace veral3 {
namespace {

TEST(ParmKind, AgreesWithTheReferenceVectors) {
  const auto vectors = test::LoadVectorJson("mfcc.json");
  ASSERT_EQ(vectors["str2parmkind"].size(), 11u);
  for (const auto& [text, kind] : vectors["str2parmkind"].items()) {
    EXPECT_EQ(Str2ParmKind(text), kind.get<int>()) << text;
  }
  const auto& bad = vectors["unknown_qualifier"];
  const std::string text = bad["text"];
  test::ExpectFatal(bad["error_code"], "Str2ParmKind: unknown ParmKind qualifier " + text,
                    [&] { Str2ParmKind(text); });
}

TEST(ParmKind, BaseKindsInOrder) {
  const char* names[] = {"WAVEFORM", "LPC",     "LPREFC", "LPCEPSTRA", "LPDELCEP", "IREFC", "MFCC",
                         "FBANK",    "MELSPEC", "USER",   "DISCRETE",  "PLP",      "ANON"};
  for (int i = 0; i < 13; ++i) {
    if (i == kLpDelCep) continue;
    EXPECT_EQ(Str2ParmKind(names[i]), i);
    EXPECT_EQ(ParmKind2Str(static_cast<ParmKind>(i)), names[i]);
  }
  EXPECT_EQ(Str2ParmKind("LPDELCEP_E"), kLpCepstra | int{kHasDelta} | kHasEnergy);
}

TEST(ParmKind, Qualifiers) {
  EXPECT_EQ(Str2ParmKind("MFCC_E_D_A_Z"), 0xB46);
  EXPECT_EQ(Str2ParmKind("MFCC_E_D_A"), 0x346);
  EXPECT_EQ(Str2ParmKind("MFCC_N_C_K_V_0"), 6 | 0x80 | 0x400 | 0x1000 | 0x4000 | 0x2000);
  EXPECT_EQ(Str2ParmKind("MFCC_E_E"), 0x46);
  for (int bits = 0; bits < 512; ++bits) {
    const auto kind = static_cast<ParmKind>(kMfcc | bits << 6);
    EXPECT_EQ(Str2ParmKind(ParmKind2Str(kind)), kind);
  }
}

TEST(ParmKind, OddTexts) {
  EXPECT_EQ(Str2ParmKind(""), kAnon);
  EXPECT_EQ(Str2ParmKind("_E"), kAnon);    // too short to be stripped
  EXPECT_EQ(Str2ParmKind("_E_D"), kAnon);  // what is left is no base kind
  EXPECT_EQ(Str2ParmKind("mfcc"), kAnon);
  EXPECT_EQ(Str2ParmKind("MFCC_"), kAnon);
  EXPECT_EQ(Str2ParmKind("FOO_Z"), kAnon);
  EXPECT_EQ(ParmKind2Str(63), "ANON");
  test::ExpectFatal(6370, "Str2ParmKind: unknown ParmKind qualifier FOO_E_x",
                    [] { Str2ParmKind("FOO_E_x"); });
}

}  // namespace
}  // namespace veral3
