#include "signal/HParm.h"

#include <array>
#include <fstream>
#include <locale>
#include <mutex>
#include <string_view>
#include <utility>

#include "signal/HShell.h"
#include "signal/HSigP.h"

namespace veral3 {
namespace {

constexpr double kSmallestEnergy = 2.45e-308;
constexpr float kNoEnergy = -1.0e10F;  // log energy of silence

struct CodingLog {
  std::mutex mutex;
  std::string path;
};
CodingLog& TheCodingLog() {
  static CodingLog& log = *new CodingLog;
  return log;
}

// One field a line, in the record's order; vectors by their size.
void PrintRecord(std::ostream& out, const IOConfigRec& config) {
  const auto line = [&out](std::string_view name, auto value) {
    out << name << " = " << value << "\n";
  };
  const auto flag = [&line](std::string_view name, Boolean value) {
    line(name, value != 0 ? "TRUE" : "FALSE");
  };
  out << "Print IOConfigRec:\n";
  line("srcPK", config.srcPK);
  line("srcFF", config.srcFF);
  line("srcSampRate", config.srcSampRate);
  flag("zMeanSrc", config.zMeanSrc);
  line("tgtPK", config.tgtPK);
  line("tgtFF", config.tgtFF);
  line("tgtSampRate", config.tgtSampRate);
  flag("saveCompressed", config.saveCompressed);
  flag("saveWithCRC", config.saveWithCRC);
  line("winDur", config.winDur);
  flag("useHam", config.useHam);
  line("preEmph", config.preEmph);
  flag("usePower", config.usePower);
  line("numChans", config.numChans);
  line("loFBankFreq", config.loFBankFreq);
  line("hiFBankFreq", config.hiFBankFreq);
  line("warpFreq", config.warpFreq);
  line("warpLowerCutOff", config.warpLowerCutOff);
  line("warpUpperCutOff", config.warpUpperCutOff);
  line("lpcOrder", config.lpcOrder);
  line("compressFact", config.compressFact);
  line("cepLifter", config.cepLifter);
  line("numCepCoef", config.numCepCoef);
  line("cepScale", config.cepScale);
  flag("rawEnergy", config.rawEnergy);
  flag("eNormalise", config.eNormalise);
  line("eScale", config.eScale);
  line("silFloor", config.silFloor);
  line("delWin", config.delWin);
  line("accWin", config.accWin);
  flag("simpleDiffs", config.simpleDiffs);
  flag("v1Compat", config.v1Compat);
  line("addDither", config.addDither);
  flag("doubleFFT", config.doubleFFT);
  line("curPK", config.curPK);
  line("unqPK", config.unqPK);
  line("nUsed", config.nUsed);
  line("nCols", config.nCols);
  line("nCvrt", config.nCvrt);
  line("nSamples", config.nSamples);
  line("srcUsed", config.srcUsed);
  line("tgtUsed", config.tgtUsed);
  line("style", static_cast<int>(config.style));
  line("frSize", config.frSize);
  line("frRate", config.frRate);
  line("s", config.s.Size());
  line("r", config.r.Size());
  line("curVol", config.curVol);
  line("a", config.a.Size());
  line("k", config.k.Size());
  line("fbank", config.fbank.Size());
  line("c", config.c.Size());
  line("mean", config.mean.Size());
  line("fbInfo", config.fbInfo.work.Size());
}

void LogRecord(std::string_view place, const IOConfigRec& config) {
  CodingLog& log = TheCodingLog();
  const std::lock_guard lock(log.mutex);
  if (log.path.empty()) return;
  std::ofstream out(log.path, std::ios::app);
  if (!out) return;
  out.imbue(std::locale::classic());
  out << place << "\n";
  PrintRecord(out, config);
}

CodeStyle StyleOf(ParmKind kind) {
  switch (BaseParmKind(kind)) {
    case kLpc:
    case kLpRefC:
    case kLpCepstra:
      return kLpcStyle;
    case kMfcc:
    case kFbank:
    case kMelSpec:
    case kPlp:
      return kFftStyle;
    case kDiscrete:
      return kVqStyle;
    default:
      FatalError(kErrorParmKind, "SetCodeStyle: Unknown style %s", ParmKind2Str(kind).c_str());
  }
}

void SetUpFilterbank(MemHeap& heap, IOConfigRec& config, std::int32_t frame_size) {
  const ParmKind base = BaseParmKind(config.tgtPK);
  const bool cepstra = base == kMfcc || base == kPlp;
  config.nUsed = cepstra ? config.numCepCoef : config.numChans;
  config.fbank = CreateVector(heap, config.numChans);
  config.fbInfo = BuildFilterbank(heap, {.frame_size = frame_size,
                                         .samp_period = static_cast<int>(config.srcSampRate),
                                         .num_chans = config.numChans,
                                         .lo_freq = config.loFBankFreq,
                                         .hi_freq = config.hiFBankFreq,
                                         .use_power = config.usePower != 0,
                                         .take_logs = base != kMelSpec && base != kPlp,
                                         .double_fft = config.doubleFFT != 0});
  if (config.useHam) config.window = HammingWindow(frame_size);
  if (base != kMfcc) return;
  config.c = CreateVector(heap, config.numCepCoef);
  config.cosines = CosineTable(config.numChans, config.numCepCoef);
  if (config.cepLifter > 0) config.lifter = LifterWeights(config.cepLifter, config.numCepCoef);
}

void AddDither(Vector s, float amount) {
  RandomSource& random = ThreadRandomSource();
  for (float& sample : s.Elements()) sample += (2.0F * random.Next() - 1.0F) * amount;
}

}  // namespace

void SetCodingLogPath(std::string path) {
  CodingLog& log = TheCodingLog();
  const std::lock_guard lock(log.mutex);
  log.path = std::move(path);
}

bool CanConvert(ParmKind from, ParmKind to) {
  static constexpr auto kSources = [] {
    // For each target base kind the base kinds that it can be made from, a bit each.
    std::array<ParmKind, kAnon + 1> sources{};
    constexpr ParmKind kLpcKinds = (1U << kLpc) | (1U << kLpRefC) | (1U << kLpCepstra);
    constexpr ParmKind kBankKinds = (1U << kMelSpec) | (1U << kFbank);
    for (const BaseKind lpc : {kLpc, kLpRefC, kLpCepstra}) {
      sources[lpc] = kLpcKinds | (1U << kWaveform);
    }
    sources[kMelSpec] = (1U << kWaveform) | (1U << kMelSpec);
    sources[kFbank] = (1U << kWaveform) | kBankKinds;
    sources[kMfcc] = (1U << kWaveform) | kBankKinds | (1U << kMfcc);
    sources[kPlp] = (1U << kWaveform) | (1U << kPlp);
    sources[kDiscrete] = 1U << kDiscrete;
    sources[kUser] = 1U << kUser;
    return sources;
  }();
  const ParmKind from_base = BaseParmKind(from);
  const ParmKind to_base = BaseParmKind(to);
  if (from_base > kAnon || to_base > kAnon) return false;
  if ((to & kHasAccs) && !(to & kHasDelta)) return false;  // made from the first derivatives
  return (static_cast<unsigned>(kSources[to_base]) >> from_base & 1U) != 0;
}

void SetUpForCoding(MemHeap& heap, IOConfigRec& config, std::int32_t frame_size) {
  // Vectors of an earlier set-up may be gone with their heap.
  config.s = config.a = config.k = config.fbank = config.c = Vector();
  config.r = ShortVec();
  config.fbInfo = FBankInfo();
  config.window = config.lifter = config.cosines = ConstVector();
  LogRecord("At the beginning of SetUpForCoding", config);
  config.s = CreateVector(heap, frame_size);
  config.r = CreateShortVec(heap, frame_size);
  config.curPK = BaseParmKind(config.tgtPK);
  config.style = StyleOf(config.tgtPK);
  switch (config.style) {
    case kFftStyle:
      SetUpFilterbank(heap, config, frame_size);
      break;
    case kLpcStyle:
      config.nUsed = config.curPK == kLpCepstra ? config.numCepCoef : config.lpcOrder;
      break;
    default:
      FatalError(kErrorParmKind, "SetUpForCoding: target %s is not a parameterised form",
                 ParmKind2Str(config.tgtPK).c_str());
  }
  for (const ParmQualifier extra : {kHasEnergy, kHasC0}) {
    if (!(config.tgtPK & extra)) continue;
    ++config.nUsed;
    config.curPK = static_cast<ParmKind>(config.curPK | extra);
  }
  config.unqPK = config.curPK;
  config.nCvrt = config.nUsed;
  config.nCols = config.nUsed;
  if (config.curPK != config.tgtPK) {
    if (!CanConvert(config.curPK, config.tgtPK)) {
      FatalError(kErrorParmKind, "SetUpForCoding: cannot convert to %s",
                 ParmKind2Str(config.tgtPK).c_str());
    }
    if (config.tgtPK & kHasDelta) config.nCols += config.nUsed;
    if (config.tgtPK & kHasAccs) config.nCols += config.nUsed;
  }
  config.srcUsed = 1;
  config.tgtUsed = config.nCols;
  LogRecord("At the end of SetUpForCoding", config);
}

int ConvertFrame(IOConfigRec& config, float* row) {
  const Vector s = config.s;
  const bool wants_energy = (config.tgtPK & kHasEnergy) != 0;
  const bool raw_energy = config.rawEnergy != 0;
  double energy = 0.0;
  if (config.addDither != 0.0F) AddDither(s, config.addDither);
  if (config.zMeanSrc && !config.v1Compat) RemoveFrameMean(s);
  if (wants_energy && raw_energy) energy = SumOfSquares(s.Elements());
  if (config.preEmph > 0.0F) PreEmphasiseFrame(s, config.preEmph);
  if (config.useHam) HammingWindowFrame(s, config.window);

  if (BaseParmKind(config.tgtPK) != kMfcc) {
    ReportError(kErrorParmKind, "ConvertFrame: target %s is not a parameterised form",
                ParmKind2Str(config.tgtPK).c_str());
    return -1;
  }
  Wave2FBank(s, config.fbank, config.fbInfo, wants_energy && !raw_energy ? &energy : nullptr);
  FilterbankToCepstra(config.fbank, config.c, config.cosines);
  if (config.cepLifter > 0) LifterCepstra(config.c, config.lifter);

  const float scale = config.v1Compat ? 1.0F : config.cepScale;
  float* out = row;
  for (const float c : config.c.Elements()) *out++ = c * scale;
  if (config.tgtPK & kHasC0) {
    *out++ = FilterbankToC0(config.fbank) * scale;
    config.curPK = static_cast<ParmKind>(config.curPK | kHasC0);
  }
  if (wants_energy) {
    *out++ = energy < kSmallestEnergy ? kNoEnergy : static_cast<float>(LogOfPositive(energy));
    config.curPK = static_cast<ParmKind>(config.curPK | kHasEnergy);
  }
  return static_cast<int>(out - row);
}

}  // namespace veral3
