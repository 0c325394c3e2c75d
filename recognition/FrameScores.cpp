#include "recognition/FrameScores.h"

#include <algorithm>
#include <array>
#include <vector>

#include "common/MessageWriter.h"
#include "recognition/Models.h"
#include "signal/Mfcc.h"

namespace veral3 {
namespace {

constexpr std::size_t kChunk = 256;  // frames scored at once
constexpr std::size_t kRow = kMfccSize;
constexpr std::size_t kInput = kFrameInputSize;

}  // namespace

void AssembleFrameInput(std::span<const float> mfcc, int frame,
                        std::span<float, kFrameInputSize> input) {
  const int frames = static_cast<int>(mfcc.size() / kRow);
  const std::array<int, 5> blocks = {
      std::max(frame - 2, 0), std::max(frame - 1, 0), frame,
      // Past the end the centre frame stands in, not the last one: the models are trained so.
      frame + 1 < frames ? frame + 1 : frame, frame + 2 < frames ? frame + 2 : frame};
  auto out = input.begin();
  for (const int block : blocks) {
    out = std::copy_n(mfcc.begin() + std::ptrdiff_t{block} * kMfccSize, kMfccSize, out);
  }
}

int ComputeFrameScores(const CPhonemeSet& set, std::span<const float> mfcc,
                       std::span<double> scores) {
  const ModelsInUse models_in_use;
  const DLFrameClassifier* const classifier = FrameClassifierOf(set.GetIdentifier());
  if (!classifier) {
    Message(MessageStream::kError) << "Error, unknown phoneme set in ViterbiAligner::PassToken()\n";
    return -1;
  }
  const std::size_t frames = mfcc.size() / kRow;
  const std::size_t states = 3 * static_cast<std::size_t>(set.GetSize());
  if (scores.size() < frames * states) {
    Message(MessageStream::kError)
        << "ERROR in FrameClassifier::ClassifyFrame(), incorrect size of output array.\n";
    return -1;
  }
  if (!classifier->IsLoaded()) {
    Message(MessageStream::kError)
        << "ERROR in FrameClassifier::ClassifyFrame(), no model is loaded.\n";
    return -1;
  }
  std::vector<float> inputs(std::min(frames, kChunk) * kInput);
  for (std::size_t first = 0; first < frames; first += kChunk) {
    const std::size_t count = std::min(frames - first, kChunk);
    for (std::size_t n = 0; n < count; ++n) {
      AssembleFrameInput(mfcc, static_cast<int>(first + n),
                         std::span<float, kInput>(&inputs[n * kInput], kInput));
    }
    classifier->ClassifyFrames(inputs.data(), static_cast<int>(count), kFrameInputSize,
                               scores.data() + first * states, static_cast<int>(states));
  }
  return 0;
}

}  // namespace veral3
