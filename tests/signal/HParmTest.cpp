#include "signal/HParm.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <set>

#include "signal/CSignalProcessing.h"
#include "signal/FatalErrors.h"
#include "signal/HSigP.h"
#include "signal/Mfcc.h"
#include "support/Vectors.h"

namespace veral3 {
namespace {

class HParm : public testing::Test {
 protected:
  void SetUp() override {
    CreateHeap(m_heap, "test", HeapKind::kMstak, 1, 0.0F, 100000, 1U << 30);
    // The front end's own values, from which each test departs.
    FrontEnd().SetUpUtterance(m_config, 22050, CWaveFrameDef(), {1, 1, 1});
    FrontEnd().ReleaseUtterance();
  }
  void TearDown() override { SetCodingLogPath(""); }
  void Code(const char* kind) {
    m_config.tgtPK = Str2ParmKind(kind);
    SetUpForCoding(m_heap, m_config, 551);
  }
  // The static values of one frame of a fixed sound.
  std::vector<float> Frame() {
    const Vector s = m_config.s;
    for (int i = 1; i <= s.Size(); ++i) {
      s[i] = static_cast<float>(std::lround(3000.0 * std::sin(0.05 * i) + 40.0 * (i % 13)));
    }
    std::vector<float> row(static_cast<std::size_t>(m_config.nCvrt));
    EXPECT_EQ(ConvertFrame(m_config, row.data()), m_config.nCvrt);
    return row;
  }
  MemHeap m_heap;
  IOConfigRec m_config;
};

TEST_F(HParm, DerivedValues) {
  Code("MFCC_E_D_A_Z");
  EXPECT_EQ(m_config.style, kFftStyle);
  EXPECT_EQ(m_config.curPK, 0x46);
  EXPECT_EQ(m_config.unqPK, 0x46);
  EXPECT_EQ(m_config.nUsed, 13);
  EXPECT_EQ(m_config.nCvrt, 13);
  EXPECT_EQ(m_config.nCols, 39);
  EXPECT_EQ(m_config.s.Size(), 551);
  EXPECT_EQ(m_config.r.Size(), 551);
  EXPECT_EQ(m_config.fbank.Size(), 26);
  EXPECT_EQ(m_config.c.Size(), 12);
  EXPECT_EQ(m_config.a.Size(), 0);
  EXPECT_EQ(m_config.mean.Size(), 0);
  EXPECT_EQ(m_config.fbInfo.work.Size(), 1024);
  EXPECT_EQ(m_config.fbInfo.design->options.samp_period, 453);  // cut off from 453.51
}

TEST_F(HParm, RowLengthsOfOtherKinds) {
  const std::pair<const char*, int> kinds[] = {
      {"MFCC", 12}, {"MFCC_E", 13},   {"MFCC_0", 13},     {"MFCC_E_0_D", 28},
      {"PLP", 12},  {"FBANK", 26},    {"MELSPEC_E", 27},  {"MFCC_D_A", 36},
      {"LPC", 12},  {"LPREFC_E", 13}, {"LPCEPSTRA_D", 24}};
  for (const auto& [kind, columns] : kinds) {
    Code(kind);
    EXPECT_EQ(m_config.nCols, columns) << kind;
  }
  m_config.lpcOrder = 9;
  Code("LPC");
  EXPECT_EQ(m_config.nCols, 9);
  EXPECT_EQ(m_config.style, kLpcStyle);
  EXPECT_EQ(m_config.fbank.Size(), 0);
}

TEST_F(HParm, LogsAreTakenExceptForSpectra) {
  for (const auto& [kind, logs] :
       {std::pair{"MFCC", true}, {"FBANK", true}, {"MELSPEC", false}, {"PLP", false}}) {
    Code(kind);
    EXPECT_EQ(m_config.fbInfo.design->options.take_logs, logs) << kind;
  }
}

TEST_F(HParm, KindsThatCannotBeCoded) {
  for (const char* kind : {"WAVEFORM", "IREFC", "USER_E", "ANON"}) {
    std::string text = "SetCodeStyle: Unknown style ";
    text += kind;
    test::ExpectFatal(6321, text, [&] { Code(kind); });
  }
  test::ExpectFatal(6321, "SetUpForCoding: target DISCRETE_E is not a parameterised form",
                    [&] { Code("DISCRETE_E"); });
  EXPECT_EQ(static_cast<int>(m_config.style), 2);
  test::ExpectFatal(6321, "SetUpForCoding: cannot convert to MFCC_E_A", [&] { Code("MFCC_E_A"); });
}

TEST_F(HParm, Conversions) {
  EXPECT_TRUE(CanConvert(kMfcc, Str2ParmKind("MFCC_E_D_A_Z")));
  EXPECT_TRUE(CanConvert(kWaveform, kMfcc));
  EXPECT_TRUE(CanConvert(kFbank, kMfcc));
  EXPECT_TRUE(CanConvert(kMelSpec, kFbank));
  EXPECT_TRUE(CanConvert(kLpc, kLpCepstra));
  EXPECT_FALSE(CanConvert(kMfcc, kFbank));
  EXPECT_FALSE(CanConvert(kMfcc, kLpc));
  EXPECT_FALSE(CanConvert(kWaveform, kDiscrete));
  EXPECT_FALSE(CanConvert(kMfcc, kAnon));
  EXPECT_FALSE(CanConvert(kBaseMask, kMfcc));
  EXPECT_FALSE(CanConvert(kMfcc, kBaseMask));
}

// Every base kind from every other: the samples give all coded kinds, the linear prediction kinds
// one another, the filterbank logarithms and cepstra, and each but what cannot be coded itself.
TEST_F(HParm, ConversionsOfAllBaseKinds) {
  const std::map<ParmKind, std::set<ParmKind>> sources = {
      {kLpc, {kWaveform, kLpc, kLpRefC, kLpCepstra}},
      {kLpRefC, {kWaveform, kLpc, kLpRefC, kLpCepstra}},
      {kLpCepstra, {kWaveform, kLpc, kLpRefC, kLpCepstra}},
      {kMelSpec, {kWaveform, kMelSpec}},
      {kFbank, {kWaveform, kMelSpec, kFbank}},
      {kMfcc, {kWaveform, kMelSpec, kFbank, kMfcc}},
      {kPlp, {kWaveform, kPlp}},
      {kDiscrete, {kDiscrete}},
      {kUser, {kUser}}};
  for (ParmKind to = 0; to <= kBaseMask; ++to) {
    for (ParmKind from = 0; from <= kBaseMask; ++from) {
      const bool possible = sources.contains(to) && sources.at(to).contains(from);
      EXPECT_EQ(CanConvert(from, to), possible) << from << " to " << to;
    }
  }
}

TEST_F(HParm, StylesByNumber) {
  EXPECT_EQ(static_cast<int>(kFftStyle), 0);
  EXPECT_EQ(static_cast<int>(kLpcStyle), 1);
  EXPECT_EQ(static_cast<int>(kVqStyle), 2);
}

// Nothing is asked for and nothing is there.
TEST_F(HParm, ARecordThatNobodyFilled) {
  const IOConfigRec config;
  EXPECT_EQ(config.srcPK, kWaveform);
  EXPECT_EQ(config.tgtPK, kAnon);
  for (const int number :
       {config.srcFF, config.tgtFF, config.numChans, config.lpcOrder, config.cepLifter,
        config.numCepCoef, config.delWin, config.accWin, config.nUsed, config.nCols, config.nCvrt,
        config.nSamples, config.srcUsed, config.tgtUsed, config.frSize, config.frRate,
        static_cast<int>(config.style), int{config.curPK}, int{config.unqPK}}) {
    EXPECT_EQ(number, 0);
  }
  for (const Boolean flag : {config.zMeanSrc, config.saveCompressed, config.saveWithCRC,
                             config.useHam, config.usePower, config.rawEnergy, config.eNormalise,
                             config.simpleDiffs, config.v1Compat, config.doubleFFT}) {
    EXPECT_EQ(flag, 0);
  }
  for (const double value :
       {config.srcSampRate, config.tgtSampRate, config.winDur, static_cast<double>(config.preEmph),
        static_cast<double>(config.warpLowerCutOff), static_cast<double>(config.warpUpperCutOff),
        static_cast<double>(config.compressFact), static_cast<double>(config.cepScale),
        static_cast<double>(config.eScale), static_cast<double>(config.silFloor),
        static_cast<double>(config.addDither), static_cast<double>(config.curVol)}) {
    EXPECT_EQ(value, 0.0);
  }
  EXPECT_EQ(config.loFBankFreq, -1.0F);
  EXPECT_EQ(config.hiFBankFreq, -1.0F);
  EXPECT_EQ(config.warpFreq, 1.0F);
  EXPECT_EQ(config.s.Size() + config.a.Size() + config.k.Size() + config.fbank.Size() +
                config.c.Size() + config.mean.Size() + config.r.Size(),
            0);
}

TEST_F(HParm, OnlyCepstraAreConverted) {
  for (const char* kind : {"FBANK_E", "PLP", "LPC"}) {
    Code(kind);
    float row[64];
    std::string text = "ConvertFrame: target ";
    text += kind;
    text += " is not a parameterised form";
    test::ExpectFatal(6321, text, [&] { ConvertFrame(m_config, row); });
  }
}

TEST_F(HParm, EnergyBeforeOrAfterTheWindow) {
  Code("MFCC_E");
  const float raw = Frame()[12];
  double sum = 0.0, mean = 0.0;
  std::vector<double> s(551);
  for (int i = 1; i <= 551; ++i) {
    s[static_cast<std::size_t>(i - 1)] =
        static_cast<double>(std::lround(3000.0 * std::sin(0.05 * i) + 40.0 * (i % 13)));
  }
  for (const double x : s) mean += x / 551;
  for (const double x : s) sum += (x - mean) * (x - mean);
  EXPECT_NEAR(static_cast<double>(raw), std::log(sum), 1e-5);

  m_config.rawEnergy = 0;
  Code("MFCC_E");
  const float windowed = Frame()[12];
  EXPECT_NEAR(static_cast<double>(windowed), std::log(SumOfSquares(m_config.s.Elements())), 1e-6);
  EXPECT_LT(windowed, raw);
}

TEST_F(HParm, SilentFrame) {
  Code("MFCC_E");
  float row[13];
  ASSERT_EQ(ConvertFrame(m_config, row), 13);
  for (int j = 0; j < 12; ++j) EXPECT_EQ(row[j], 0.0F);
  EXPECT_EQ(row[12], -1.0e10F);
  for (const float channel : m_config.fbank.Elements()) EXPECT_EQ(channel, 0.0F);
}

TEST_F(HParm, ZerothCoefficientComesBeforeTheEnergy) {
  Code("MFCC_0_E");
  const auto row = Frame();
  ASSERT_EQ(row.size(), 14u);
  EXPECT_EQ(row[12], FilterbankToC0(m_config.fbank));
  EXPECT_EQ(m_config.curPK, Str2ParmKind("MFCC_0_E"));
  Code("MFCC_E");
  EXPECT_EQ(Frame()[12], row[13]);
}

TEST_F(HParm, SwitchesOfTheSteps) {
  Code("MFCC_E");
  const auto plain = Frame();
  const auto with = [&](auto change) {
    const IOConfigRec before = m_config;
    change(m_config);
    Code("MFCC_E");
    const auto row = Frame();
    m_config = before;
    return row;
  };
  EXPECT_EQ(with([](IOConfigRec&) {}), plain);
  EXPECT_NE(with([](IOConfigRec& c) { c.zMeanSrc = 0; }), plain);
  EXPECT_NE(with([](IOConfigRec& c) { c.useHam = 0; }), plain);
  EXPECT_NE(with([](IOConfigRec& c) { c.preEmph = 0.0F; }), plain);
  EXPECT_NE(with([](IOConfigRec& c) { c.usePower = 0; }), plain);
  EXPECT_NE(with([](IOConfigRec& c) { c.doubleFFT = 1; }), plain);
  EXPECT_EQ(with([](IOConfigRec& c) { c.cepScale = 2.0F; })[3], 2.0F * plain[3]);
  EXPECT_EQ(with([](IOConfigRec& c) { c.cepScale = 2.0F; })[12], plain[12]);
  const auto unliftered = with([](IOConfigRec& c) { c.cepLifter = 0; });
  EXPECT_EQ(unliftered[3] * LifterWeights(22, 12)[4], plain[3]);
  // Compatibility mode keeps the frame's mean and the scale 1.
  EXPECT_EQ(with([](IOConfigRec& c) { c.v1Compat = 1, c.cepScale = 2.0F; }),
            with([](IOConfigRec& c) { c.zMeanSrc = 0; }));
}

TEST_F(HParm, DitherMovesSamplesByItsAmountAtMost) {
  m_config.zMeanSrc = 0;
  m_config.preEmph = 0.0F;
  m_config.useHam = 0;
  for (const float amount : {0.5F, 1.0F}) {
    m_config.addDither = amount;
    Code("MFCC_E");
    Frame();
    float farthest = 0.0F;
    for (int i = 1; i <= 551; ++i) {
      const auto x = static_cast<float>(std::lround(3000.0 * std::sin(0.05 * i) + 40.0 * (i % 13)));
      farthest = std::max(farthest, std::abs(m_config.s[i] - x));
    }
    EXPECT_LE(farthest, amount + 0.001F);
    EXPECT_GT(farthest, 0.9F * amount);
  }
}

TEST_F(HParm, LogOfTheRecord) {
  const test::ScratchFolder folder;
  const auto path = folder.Path() / "coding.log";
  SetCodingLogPath(path.string());
  Code("MFCC_E_D_A_Z");
  const std::string log = test::ReadFile(path);
  EXPECT_EQ(log.find("At the beginning of SetUpForCoding\nPrint IOConfigRec:\nsrcPK = 0\n"), 0u);
  const auto end = log.find("At the end of SetUpForCoding\nPrint IOConfigRec:\n");
  ASSERT_NE(end, std::string::npos);
  // Every field, in the order of the record.
  std::size_t at = end;
  for (const char* name : {"srcPK = 0",
                           "srcFF = 12",
                           "srcSampRate = 453.515",
                           "zMeanSrc = TRUE",
                           "tgtPK = 2886",
                           "tgtFF = 2",
                           "tgtSampRate = 99773.2",
                           "saveCompressed = TRUE",
                           "saveWithCRC = TRUE",
                           "winDur = 249887",
                           "useHam = TRUE",
                           "preEmph = 0.95",
                           "usePower = TRUE",
                           "numChans = 26",
                           "loFBankFreq = -1",
                           "hiFBankFreq = -1",
                           "warpFreq = 1",
                           "warpLowerCutOff = 0",
                           "warpUpperCutOff = 0",
                           "lpcOrder = 12",
                           "compressFact = 0.33",
                           "cepLifter = 22",
                           "numCepCoef = 12",
                           "cepScale = 1",
                           "rawEnergy = TRUE",
                           "eNormalise = TRUE",
                           "eScale = 0.1",
                           "silFloor = 50",
                           "delWin = 2",
                           "accWin = 2",
                           "simpleDiffs = FALSE",
                           "v1Compat = FALSE",
                           "addDither = 0",
                           "doubleFFT = FALSE",
                           "curPK = 70",
                           "unqPK = 70",
                           "nUsed = 13",
                           "nCols = 39",
                           "nCvrt = 13",
                           "nSamples = 22050",
                           "srcUsed = 1",
                           "tgtUsed = 39",
                           "style = 0",
                           "frSize = 551",
                           "frRate = 220",
                           "s = 551",
                           "r = 551",
                           "curVol = 0",
                           "a = 0",
                           "k = 0",
                           "fbank = 26",
                           "c = 12",
                           "mean = 0",
                           "fbInfo = 1024"}) {
    const auto next = log.find(std::string("\n").append(name).append("\n"), at);
    EXPECT_NE(next, std::string::npos) << name;
    if (next != std::string::npos) at = next;
  }
}

// As the front end sets it for the features of a recording: at first nothing is derived.
TEST_F(HParm, LogOfAnUtterance) {
  const test::ScratchFolder folder;
  const auto path = folder.Path() / "coding.log";
  SetCodingLogPath(path.string());
  const std::vector<std::int16_t> samples(551, 100);
  EXPECT_EQ(ComputeMfcc(samples.data(), 551).size(), 39u);
  const std::string wanted =
      "srcPK = 0\nsrcFF = 12\nsrcSampRate = 453.515\nzMeanSrc = TRUE\n"
      "tgtPK = 2886\ntgtFF = 2\ntgtSampRate = 99773.2\n"
      "saveCompressed = TRUE\nsaveWithCRC = TRUE\nwinDur = 249887\nuseHam = TRUE\n"
      "preEmph = 0.95\nusePower = TRUE\nnumChans = 26\nloFBankFreq = -1\nhiFBankFreq = -1\n"
      "warpFreq = 1\nwarpLowerCutOff = 0\nwarpUpperCutOff = 0\nlpcOrder = 12\n"
      "compressFact = 0.33\ncepLifter = 22\nnumCepCoef = 12\ncepScale = 1\n"
      "rawEnergy = TRUE\neNormalise = TRUE\neScale = 0.1\nsilFloor = 50\n"
      "delWin = 2\naccWin = 2\nsimpleDiffs = FALSE\nv1Compat = FALSE\n"
      "addDither = 0\ndoubleFFT = FALSE\n";
  EXPECT_EQ(test::ReadFile(path),
            "At the beginning of SetUpForCoding\nPrint IOConfigRec:\n" + wanted +
                "curPK = 0\nunqPK = 0\nnUsed = 0\nnCols = 0\nnCvrt = 0\nnSamples = 551\n"
                "srcUsed = 0\ntgtUsed = 0\nstyle = 0\nfrSize = 551\nfrRate = 220\n"
                "s = 0\nr = 0\ncurVol = 0\na = 0\nk = 0\nfbank = 0\nc = 0\nmean = 0\n"
                "fbInfo = 0\n"
                "At the end of SetUpForCoding\nPrint IOConfigRec:\n" +
                wanted +
                "curPK = 70\nunqPK = 70\nnUsed = 13\nnCols = 39\nnCvrt = 13\nnSamples = 551\n"
                "srcUsed = 1\ntgtUsed = 39\nstyle = 0\nfrSize = 551\nfrRate = 220\n"
                "s = 551\nr = 551\ncurVol = 0\na = 0\nk = 0\nfbank = 26\nc = 12\nmean = 0\n"
                "fbInfo = 1024\n");
}

TEST_F(HParm, LogThatCannotBeOpenedChangesNothing) {
  SetCodingLogPath("/no/such/folder/coding.log");
  Code("MFCC_E_D_A_Z");
  EXPECT_EQ(m_config.nCols, 39);
}

}  // namespace
}  // namespace veral3
