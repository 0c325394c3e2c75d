#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <span>
#include <vector>

#include "training/features/FrameLabels.h"

// The features of a corpus on disk, in a folder of two files: frames.f32, the MFCC rows of all
// utterances one after the other, and utterances.bin, where each begins and its segments.
namespace veral3::training {

struct FeatureUtterance {
  std::size_t first_frame;  // of all frames
  int num_frames;
  std::vector<FrameSegment> segments;
};

// Writes to a temporary folder name and renames it by Close. Throws std::runtime_error where the
// disk refuses.
class FeatureWriter {
 public:
  explicit FeatureWriter(std::filesystem::path folder);
  void Write(std::span<const float> mfcc, std::span<const FrameSegment> segments);
  void Close();
  std::size_t NumFrames() const { return m_frames_written; }

 private:
  std::filesystem::path m_folder;
  std::filesystem::path m_unfinished;
  std::ofstream m_frames;
  std::ofstream m_utterances;
  std::size_t m_frames_written = 0;
};

// The frames are mapped, not read: several trainers share the memory. Throws std::runtime_error for
// a folder that holds no whole feature files.
class FeatureFile {
 public:
  explicit FeatureFile(const std::filesystem::path& folder);
  ~FeatureFile();
  FeatureFile(FeatureFile&& other) noexcept;
  FeatureFile(const FeatureFile&) = delete;
  FeatureFile& operator=(const FeatureFile&) = delete;

  std::span<const float> Frames() const { return m_frames; }  // rows of 39
  std::span<const FeatureUtterance> Utterances() const { return m_utterances; }
  std::span<const float> FramesOf(const FeatureUtterance& utterance) const;

 private:
  std::span<const float> m_frames;
  std::vector<FeatureUtterance> m_utterances;
};

}  // namespace veral3::training
