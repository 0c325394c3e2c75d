#pragma once

#include <cstdint>
#include <string>

#include "signal/Filterbank.h"
#include "signal/HMath.h"
#include "signal/HMem.h"
#include "signal/ParmKind.h"

// The front end's toolkit, module HParm: the configuration record, and a frame of samples to its
// static parameters.
//
//   SetUpForCoding(heap, config, config.frSize);
//   config.s = one frame of samples
//   float row[13];
//   if (ConvertFrame(config, row) != config.nCvrt) ...
namespace veral3 {

using HTime = double;  // in units of 100 ns
using FileFormat = std::int32_t;
using Boolean = std::uint8_t;

enum CodeStyle : std::int32_t { kFftStyle = 0, kLpcStyle = 1, kVqStyle = 2 };

// How an utterance is coded. The fields down to doubleFFT say what is wanted; the front end sets
// them for every utterance. The rest SetUpForCoding derives; its vectors are the heap's.
struct IOConfigRec {
  ParmKind srcPK = kWaveform;
  FileFormat srcFF = 0;    // no file is read
  HTime srcSampRate = 0;   // sample period
  Boolean zMeanSrc = 0;    // remove each frame's mean first
  ParmKind tgtPK = kAnon;  // kind wanted
  FileFormat tgtFF = 0;    // no file is written
  HTime tgtSampRate = 0;   // frame period
  Boolean saveCompressed = 0;
  Boolean saveWithCRC = 0;
  HTime winDur = 0;  // window duration
  Boolean useHam = 0;
  float preEmph = 0;
  Boolean usePower = 0;  // the filterbank sums power, not magnitude
  std::int32_t numChans = 0;
  float loFBankFreq = -1.0F;  // Hz; negative: no cut-off
  float hiFBankFreq = -1.0F;
  float warpFreq = 1.0F;  // 1: no frequency warping, and nothing else is supported
  float warpLowerCutOff = 0;
  float warpUpperCutOff = 0;
  std::int32_t lpcOrder = 0;
  float compressFact = 0;
  std::int32_t cepLifter = 0;
  std::int32_t numCepCoef = 0;
  float cepScale = 0;
  Boolean rawEnergy = 0;   // energy before pre-emphasis and window
  Boolean eNormalise = 0;  // normalise log energy over the utterance
  float eScale = 0;
  float silFloor = 0;  // dB below the utterance's maximum
  std::int32_t delWin = 0;
  std::int32_t accWin = 0;
  Boolean simpleDiffs = 0;
  Boolean v1Compat = 0;
  float addDither = 0;
  Boolean doubleFFT = 0;

  ParmKind curPK = 0;         // kind reached so far
  ParmKind unqPK = 0;         // kind of the static part
  std::int32_t nUsed = 0;     // columns filled so far
  std::int32_t nCols = 0;     // columns of an output row
  std::int32_t nCvrt = 0;     // columns that one frame conversion gives
  std::int32_t nSamples = 0;  // of the utterance
  std::int32_t srcUsed = 0, tgtUsed = 0;
  CodeStyle style = kFftStyle;
  std::int32_t frSize = 0;  // samples a frame
  std::int32_t frRate = 0;  // samples a hop
  Vector s;                 // the frame
  ShortVec r;
  float curVol = 0;
  Vector a, k;
  Vector fbank;
  Vector c;
  Vector mean;  // subtracted in place of the utterance's mean when set
  FBankInfo fbInfo;

  // Tables that the record's values select, shared by all threads.
  ConstVector window, lifter, cosines;
};

// Derives the coding of `config`, with vectors of `heap`. Fatal errors: a kind that can't be coded.
void SetUpForCoding(MemHeap& heap, IOConfigRec& config, std::int32_t frame_size);

// The frame in config.s to config.nCvrt static values in `row`; config.s is used up. Gives the
// number of values.
int ConvertFrame(IOConfigRec& config, float* row);

// Whether coding can turn one kind into the other.
bool CanConvert(ParmKind from, ParmKind to);

// Sets the file that SetUpForCoding appends the record to, before and after its work, when the file
// can be opened. Empty (at first): none.
void SetCodingLogPath(std::string path);

}  // namespace veral3
