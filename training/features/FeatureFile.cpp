#include "training/features/FeatureFile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <stdexcept>
#include <utility>

#include "signal/Mfcc.h"

namespace veral3::training {

FeatureWriter::FeatureWriter(std::filesystem::path folder)
    : m_folder(std::move(folder)), m_unfinished(m_folder.string() + ".part") {
  std::filesystem::remove_all(m_unfinished);
  std::filesystem::create_directories(m_unfinished);
  m_frames.open(m_unfinished / "frames.f32", std::ios::binary);
  m_utterances.open(m_unfinished / "utterances.bin", std::ios::binary);
  if (!m_frames || !m_utterances) {
    throw std::runtime_error("cannot write into " + m_unfinished.string());
  }
}

void FeatureWriter::Write(std::span<const float> mfcc, std::span<const FrameSegment> segments) {
  const std::size_t rows = mfcc.size() / kMfccSize;
  const std::int32_t counts[2] = {static_cast<std::int32_t>(rows),
                                  static_cast<std::int32_t>(segments.size())};
  m_utterances.write(reinterpret_cast<const char*>(counts), sizeof counts);
  m_utterances.write(reinterpret_cast<const char*>(segments.data()),
                     static_cast<std::streamsize>(segments.size_bytes()));
  m_frames.write(reinterpret_cast<const char*>(mfcc.data()),
                 static_cast<std::streamsize>(mfcc.size_bytes()));
  m_frames_written += rows;
  if (!m_frames || !m_utterances) {
    throw std::runtime_error("cannot write into " + m_unfinished.string());
  }
}

void FeatureWriter::Close() {
  m_frames.close();
  m_utterances.close();
  if (!m_frames || !m_utterances) {
    throw std::runtime_error("cannot write into " + m_unfinished.string());
  }
  std::filesystem::remove_all(m_folder);
  std::filesystem::rename(m_unfinished, m_folder);
}

FeatureFile::FeatureFile(const std::filesystem::path& folder) {
  std::ifstream file(folder / "utterances.bin", std::ios::binary);
  std::size_t frames = 0;
  for (std::int32_t counts[2]; file.read(reinterpret_cast<char*>(counts), sizeof counts);) {
    FeatureUtterance utterance{frames, counts[0], {}};
    utterance.segments.resize(static_cast<std::size_t>(counts[1]));
    file.read(reinterpret_cast<char*>(utterance.segments.data()),
              static_cast<std::streamsize>(counts[1] * std::int32_t{sizeof(FrameSegment)}));
    frames += static_cast<std::size_t>(counts[0]);
    m_utterances.push_back(std::move(utterance));
  }
  const std::size_t bytes = frames * kMfccSize * sizeof(float);
  const auto path = folder / "frames.f32";
  if (bytes == 0 || !std::filesystem::exists(path) || std::filesystem::file_size(path) != bytes) {
    throw std::runtime_error(folder.string() + " holds no features");
  }
  const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  void* mapped =
      descriptor < 0 ? MAP_FAILED : mmap(nullptr, bytes, PROT_READ, MAP_PRIVATE, descriptor, 0);
  if (descriptor >= 0) close(descriptor);
  if (mapped == MAP_FAILED) throw std::runtime_error("cannot map " + path.string());
  m_frames = {static_cast<const float*>(mapped), frames * kMfccSize};
}

FeatureFile::~FeatureFile() {
  if (!m_frames.empty()) munmap(const_cast<float*>(m_frames.data()), m_frames.size_bytes());
}

FeatureFile::FeatureFile(FeatureFile&& other) noexcept
    : m_frames(std::exchange(other.m_frames, {})), m_utterances(std::move(other.m_utterances)) {}

std::span<const float> FeatureFile::FramesOf(const FeatureUtterance& utterance) const {
  return m_frames.subspan(utterance.first_frame * kMfccSize,
                          static_cast<std::size_t>(utterance.num_frames) * kMfccSize);
}

}  // namespace veral3::training
