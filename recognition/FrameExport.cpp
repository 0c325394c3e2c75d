#include "recognition/FrameExport.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "common/TextLines.h"
#include "recognition/FrameScores.h"
#include "signal/Mfcc.h"

namespace veral3 {
namespace {

constexpr char kPause = '-';
constexpr int kStates = 3;     // of a phoneme
constexpr int kPauseEdge = 3;  // [frames] of a pause's outer states

class FrameWriter {
 public:
  FrameWriter(const CPhonemeSet& set, const AlignmentResult& alignment, std::ostream& features,
              std::ostream& labels)
      : m_states(kStates * set.GetSize()),
        m_mfcc(alignment.mfcc),
        m_num_frames(std::min(alignment.num_frames - 1,
                              static_cast<int>(alignment.mfcc.size() / kMfccSize))),
        m_features(features),
        m_labels(labels) {}

  bool Has(int frame) const { return frame >= 0 && frame < m_num_frames; }

  // `frame` must be one that is there.
  void Write(int frame, int state) {
    std::array<float, kFrameInputSize> input;
    AssembleFrameInput(m_mfcc, frame, input);
    for (std::size_t i = 0; i < input.size(); ++i) m_features << (i > 0 ? "," : "") << input[i];
    m_features.End();
    for (int i = 0; i < m_states; ++i) m_labels << (i > 0 ? "," : "") << (i == state ? '1' : '0');
    m_labels.End();
  }

 private:
  int m_states;
  std::span<const float> m_mfcc;
  int m_num_frames;  // those that may be written
  TextLines m_features;
  TextLines m_labels;
};

template <typename T>
T At(std::span<const T> values, int index) {
  return static_cast<std::size_t>(index) < values.size() ? values[static_cast<std::size_t>(index)]
                                                         : T{};
}

int StateOfPhonemeFrame(int place, int length) {
  const int shorter = length / kStates;
  const int longer_states = length % kStates;  // each has one frame more
  const int longer_frames = longer_states * (shorter + 1);
  if (place < longer_frames) return place / (shorter + 1);
  return longer_states + (place - longer_frames) / shorter;
}

int StateOfPauseFrame(int place, int length) {
  if (place < kPauseEdge) return 0;
  return place >= length - kPauseEdge ? 2 : 1;
}

}  // namespace

void ExportFrames(const CPhonemeSet& set, const AlignmentResult& alignment,
                  const FrameExportChoice& choice, std::ostream& features, std::ostream& labels) {
  FrameWriter writer(set, alignment, features, labels);
  for (std::size_t k = 0; k + 1 < alignment.path.size(); ++k) {
    const PathEntry& entry = alignment.path[k];
    const int state = set.GetStateIndex(entry.phoneme, entry.state);
    if (state < 0) continue;  // the start node, which lasts no frame
    const int end = FrameOfSample(alignment.path[k + 1].time);
    for (int frame = FrameOfSample(entry.time); frame < end && writer.Has(frame); ++frame) {
      const double posterior = At(std::span<const double>(alignment.path_posterior), frame);
      const bool loud = At(choice.intensity, frame) > choice.loud_above;
      if (posterior >= choice.threshold && loud == (entry.phoneme != kPause)) {
        writer.Write(frame, state);
      }
    }
  }
}

void ExportAdjustedFrames(const CPhonemeSet& set, const AlignmentResult& alignment,
                          std::ostream& features, std::ostream& labels) {
  FrameWriter writer(set, alignment, features, labels);
  const auto write = [&](char symbol, int begin, int end) {
    for (int frame = begin; frame < end && writer.Has(frame); ++frame) {
      const int state = symbol == kPause ? StateOfPauseFrame(frame - begin, end - begin)
                                         : StateOfPhonemeFrame(frame - begin, end - begin);
      writer.Write(frame, set.GetStateIndex(symbol, state));
    }
  };
  int written = 0;  // frames before this one
  const int count = std::min(alignment.NumPhonemes(), kMaxPhonemes);
  for (int i = 0; i < count; ++i) {
    const auto at = static_cast<std::size_t>(i);
    const int begin = FrameOfSample(alignment.phoneme_start[at]);
    const int end = FrameOfSample(alignment.phoneme_end[at]);
    write(kPause, written, begin);
    write(alignment.phonemes[at], begin, end);
    written = end;
  }
  write(kPause, written, alignment.num_frames - 1);
}

}  // namespace veral3
