#include "signal/CSignalProcessing.h"

#include <algorithm>
#include <atomic>

#include "common/MessageWriter.h"
#include "signal/HMath.h"
#include "signal/HMem.h"
#include "signal/HSigP.h"

namespace {

using veral3::IOConfigRec;
using veral3::MemHeap;

std::atomic<bool> g_may_start = true;

// What a thread keeps of its utterance.
struct Utterance {
  MemHeap in_buf;
  std::int32_t row_length = 0;
  std::int32_t num_frames = 0;
  std::int32_t frame_shift = 0;
  std::int32_t frame_length = 0;

  Utterance();
  ~Utterance();
};

// The thread's utterance while there is one. It has no destructor, so the front end, which ends
// after its thread's other objects, can still look at it.
constinit thread_local Utterance* t_utterance = nullptr;

Utterance::Utterance() {
  veral3::CreateHeap(in_buf, "InBuf", veral3::HeapKind::kMstak, 1, 0.0F, 100000, 0x7FFFFFFF);
  t_utterance = this;
}
Utterance::~Utterance() { t_utterance = nullptr; }

Utterance& ThisUtterance() {
  thread_local Utterance utterance;
  return utterance;
}

// The values that the feature models were trained with.
void FillConfig(IOConfigRec& config, std::int32_t num_samples, const CWaveFrameDef& frame_def,
                CSignalProcessing::Switches switches) {
  constexpr veral3::HTime kSecond = 1.0e7;
  config = IOConfigRec();
  config.srcPK = veral3::kWaveform;
  config.srcFF = 12;
  config.srcSampRate = kSecond / frame_def.sample_rate;
  config.zMeanSrc = switches.zero_mean_source;
  config.tgtPK = veral3::Str2ParmKind(switches.zero_mean_cepstra ? "MFCC_E_D_A_Z" : "MFCC_E_D_A");
  config.tgtFF = 2;
  config.tgtSampRate = frame_def.frame_shift * kSecond / frame_def.sample_rate;
  config.saveCompressed = 1;
  config.saveWithCRC = 1;
  config.winDur = frame_def.frame_length * kSecond / frame_def.sample_rate;
  config.useHam = 1;
  config.preEmph = 0.95F;
  config.usePower = 1;
  config.numChans = 26;
  config.loFBankFreq = -1.0F;
  config.hiFBankFreq = -1.0F;
  config.warpFreq = 1.0F;
  config.warpLowerCutOff = 0.0F;
  config.warpUpperCutOff = 0.0F;
  config.lpcOrder = 12;
  config.compressFact = 0.33F;
  config.cepLifter = 22;
  config.numCepCoef = 12;
  config.cepScale = 1.0F;
  config.rawEnergy = 1;
  config.eNormalise = switches.energy_normalise;
  config.eScale = 0.1F;
  config.silFloor = 50.0F;
  config.delWin = 2;
  config.accWin = 2;
  config.simpleDiffs = 0;
  config.v1Compat = 0;
  config.addDither = 0.0F;
  config.doubleFFT = 0;
  config.nSamples = num_samples;
  config.frSize = frame_def.frame_length;
  config.frRate = frame_def.frame_shift;
}

}  // namespace

CSignalProcessing::CSignalProcessing() {
  if (!g_may_start) {
    m_bReady = 0;
    veral3::EndProcess(-1);
  }
  veral3::StartMem();
  veral3::StartMath();
  veral3::StartSigP();
  ThisUtterance();
  m_bReady = 1;
  g_may_start = true;
}

CSignalProcessing::~CSignalProcessing() {
  if (t_utterance != nullptr && t_utterance->in_buf.element_size != 0) {
    veral3::DeleteHeap(t_utterance->in_buf);
  }
  veral3::EndSigP();
  veral3::EndMem();
  g_may_start = false;
}

bool CSignalProcessing::SetUpUtterance(IOConfigRec& config, std::int32_t num_samples,
                                       const CWaveFrameDef& frame_def, Switches switches) {
  if (!m_bReady) return false;
  Utterance& utterance = ThisUtterance();
  veral3::ResetHeap(utterance.in_buf);
  FillConfig(config, num_samples, frame_def, switches);
  veral3::SetUpForCoding(utterance.in_buf, config, config.frSize);
  utterance.row_length = config.nCols;
  utterance.frame_shift = frame_def.frame_shift;
  utterance.frame_length = frame_def.frame_length;
  const std::int64_t beyond_first = std::int64_t{num_samples} - config.frSize;
  utterance.num_frames = static_cast<std::int32_t>(beyond_first / config.frRate + 1);
  return true;
}

bool CSignalProcessing::ConvertFrameSamples(IOConfigRec& config, const std::int16_t* samples,
                                            float* row) {
  std::copy_n(samples, config.s.Size(), config.s.Elements().begin());
  config.curPK = veral3::BaseParmKind(config.tgtPK);
  config.nUsed = config.nCvrt;
  const int count = veral3::ConvertFrame(config, row);
  if (count != config.nCvrt) return false;
  config.nUsed = count;
  config.unqPK = config.curPK;
  return true;
}

void CSignalProcessing::NormaliseUtteranceEnergy(const IOConfigRec& config, float* rows,
                                                 std::int32_t num_frames) {
  if (config.nUsed < 1) return;
  veral3::NormaliseUtteranceEnergy(rows + config.nUsed - 1, num_frames, config.nCols,
                                   config.silFloor, config.eScale);
}

void CSignalProcessing::AddDerivatives(IOConfigRec& config, float* rows) {
  const std::int32_t num_frames = ThisUtterance().num_frames;
  const std::int32_t num_static = config.nCvrt;
  const veral3::ParmKind target = config.tgtPK;
  config.nUsed = num_static;
  config.curPK = veral3::BaseParmKind(target);
  if (config.curPK == target || num_frames < 1) return;

  const auto reached = [&config](int bits) {
    config.curPK = static_cast<veral3::ParmKind>(config.curPK | bits);
  };
  reached(target & (veral3::kHasEnergy | veral3::kHasC0));  // the static columns hold them
  const auto derive = [&](std::int32_t window, veral3::ParmQualifier bit) {
    veral3::AddRegressionColumns(rows, num_frames, config.nCols, config.nUsed - num_static,
                                 config.nUsed, num_static,
                                 {.half_window = window,
                                  .simple_diffs = config.simpleDiffs != 0,
                                  .v1_compat = config.v1Compat != 0});
    config.nUsed += num_static;
    reached(bit);
  };
  if (target & veral3::kHasDelta) derive(config.delWin, veral3::kHasDelta);
  if (target & veral3::kHasAccs) derive(config.accWin, veral3::kHasAccs);
  if (target & veral3::kHasZeroMean) {
    const bool with_c0 = (target & veral3::kHasC0) && !(target & veral3::kHasNoEnergy);
    const std::int32_t num_means = config.numCepCoef + (with_c0 ? 1 : 0);
    if (config.mean) {
      veral3::SubtractColumns(rows, num_frames, config.nCols, config.mean);
    } else {
      veral3::SubtractColumnMeans(rows, num_frames, config.nCols, num_means);
    }
    reached(veral3::kHasZeroMean);
  }
}

void CSignalProcessing::ReleaseUtterance() { veral3::ResetHeap(ThisUtterance().in_buf); }

std::int32_t CSignalProcessing::RowLength() const { return ThisUtterance().row_length; }
std::int32_t CSignalProcessing::NumFrames() const { return ThisUtterance().num_frames; }
std::int32_t CSignalProcessing::FrameShift() const { return ThisUtterance().frame_shift; }
std::int32_t CSignalProcessing::FrameLength() const { return ThisUtterance().frame_length; }

CSignalProcessing& FrontEnd() {
  static CSignalProcessing front_end;
  return front_end;
}

namespace {
[[maybe_unused]] const CSignalProcessing& g_built_at_load = FrontEnd();
}
