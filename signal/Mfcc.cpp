#include "signal/Mfcc.h"

#include "common/MessageWriter.h"
#include "signal/CSignalProcessing.h"
#include "signal/CWaveFrameDef.h"

namespace veral3 {
namespace {

constexpr std::uint32_t kMaxSamples = 0x7FFFFFFF;  // the toolkit counts them in 32 bits, signed

// Gives the utterance's memory back, also where there was not enough of it.
struct ReleaseAtEnd {
  CSignalProcessing& front_end;
  ~ReleaseAtEnd() { front_end.ReleaseUtterance(); }
};

}  // namespace

bool IsMfccRowLength(int num_values) {
  if (num_values == kMfccSize) return true;
  Message(MessageStream::kError) << "Fatal Error: incorrect number of MFCC features=" << num_values
                                 << "\n";
  return false;
}

std::vector<float> ComputeMfcc(const std::int16_t* samples, std::uint32_t num_samples) {
  const int num_frames = NumFrames(num_samples);
  if (samples == nullptr || num_frames == 0) return {};
  if (num_samples > kMaxSamples) {
    Message(MessageStream::kError) << "ERROR in ComputeMfcc(), num_samples=" << num_samples << "\n";
    return {};
  }
  CSignalProcessing& front_end = FrontEnd();
  const ReleaseAtEnd release{front_end};
  const CWaveFrameDef frame_def;
  IOConfigRec config;
  if (!front_end.SetUpUtterance(config, static_cast<std::int32_t>(num_samples), frame_def,
                                {1, 1, 1})) {
    return {};
  }
  if (!IsMfccRowLength(front_end.RowLength())) return {};
  std::vector<float> rows(static_cast<std::size_t>(num_frames) * kMfccSize);
  float* row = rows.data();
  for (int i = 0; i < num_frames; ++i, samples += config.frRate, row += config.nCols) {
    if (!front_end.ConvertFrameSamples(config, samples, row)) return {};
  }
  if (config.eNormalise) front_end.NormaliseUtteranceEnergy(config, rows.data(), num_frames);
  front_end.AddDerivatives(config, rows.data());
  return rows;
}

}  // namespace veral3
