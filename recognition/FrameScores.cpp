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

// The loaded classifier of the set's language; null after a message.
const DLFrameClassifier* LoadedClassifier(const CPhonemeSet& set) {
  const DLFrameClassifier* const classifier = FrameClassifierOf(set.GetIdentifier());
  if (!classifier) {
    Message(MessageStream::kError) << "Error, unknown phoneme set in ViterbiAligner::PassToken()\n";
    return nullptr;
  }
  if (!classifier->IsLoaded()) {
    Message(MessageStream::kError)
        << "ERROR in FrameClassifier::ClassifyFrame(), no model is loaded.\n";
    return nullptr;
  }
  return classifier;
}

std::size_t StatesOf(const CPhonemeSet& set) { return 3 * static_cast<std::size_t>(set.GetSize()); }

// Scores all frames, kChunk at a time: `place(first, count)` gives the memory for the rows of a
// block, `taken(first, count)` hears that they are there.
template <typename Place, typename Taken>
void ScoreBlocks(const DLFrameClassifier& classifier, std::size_t states,
                 std::span<const float> mfcc, Place place, Taken taken) {
  const std::size_t frames = mfcc.size() / kRow;
  std::vector<float> inputs(std::min(frames, kChunk) * kInput);
  for (std::size_t first = 0; first < frames; first += kChunk) {
    const std::size_t count = std::min(frames - first, kChunk);
    for (std::size_t n = 0; n < count; ++n) {
      AssembleFrameInput(mfcc, static_cast<int>(first + n),
                         std::span<float, kInput>(&inputs[n * kInput], kInput));
    }
    classifier.ClassifyFrames(inputs.data(), static_cast<int>(count), kFrameInputSize,
                              place(first, count), static_cast<int>(states));
    taken(first, count);
  }
}

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
  const DLFrameClassifier* const classifier = LoadedClassifier(set);
  if (!classifier) return -1;
  const std::size_t states = StatesOf(set);
  if (scores.size() < mfcc.size() / kRow * states) {
    Message(MessageStream::kError)
        << "ERROR in FrameClassifier::ClassifyFrame(), incorrect size of output array.\n";
    return -1;
  }
  ScoreBlocks(
      *classifier, states, mfcc,
      [&](std::size_t first, std::size_t) { return scores.data() + first * states; },
      [](std::size_t, std::size_t) {});
  return 0;
}

int VisitFrameScores(const CPhonemeSet& set, std::span<const float> mfcc,
                     const std::function<void(std::size_t first, std::span<const double>)>& take) {
  const ModelsInUse models_in_use;
  const DLFrameClassifier* const classifier = LoadedClassifier(set);
  if (!classifier) return -1;
  const std::size_t states = StatesOf(set);
  std::vector<double> scores(std::min(mfcc.size() / kRow, kChunk) * states);
  ScoreBlocks(
      *classifier, states, mfcc, [&](std::size_t, std::size_t) { return scores.data(); },
      [&](std::size_t first, std::size_t count) {
        take(first, std::span<const double>(scores).first(count * states));
      });
  return 0;
}

}  // namespace veral3
