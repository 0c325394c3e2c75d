#include "tools/AudioFile.h"

#include <soxr.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <type_traits>
#include <utility>

#include "signal/CWaveFrameDef.h"
#include "tools/AudioDecoder.h"
#include "tools/Mp3Decoder.h"
#include "tools/Mp3Frames.h"
#include "tools/Numbers.h"
#include "tools/SoundDecoder.h"

namespace veral3::tools {
namespace {

constexpr int kMinRate = 1000;
constexpr int kMaxRate = 1000000;
constexpr std::size_t kBlockValues = 65536;  // of all channels together

struct DeleteSoxr {
  void operator()(soxr_t soxr) const { soxr_delete(soxr); }
};
using Soxr = std::unique_ptr<std::remove_pointer_t<soxr_t>, DeleteSoxr>;

// Brings mono values in -1 to 1 to 16 bits at the engine's rate, block by block.
class SampleWriter {
 public:
  SampleWriter(int source_rate, Recording& recording) : m_recording(recording) {
    if (source_rate == kSampleRate) return;
    m_ratio = static_cast<double>(kSampleRate) / source_rate;
    const soxr_io_spec_t io = soxr_io_spec(SOXR_FLOAT64_I, SOXR_FLOAT64_I);
    const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_HQ, 0);
    const soxr_runtime_spec_t runtime = soxr_runtime_spec(1);
    soxr_error_t error = nullptr;
    m_soxr.reset(soxr_create(source_rate, kSampleRate, 1, &error, &io, &quality, &runtime));
    if (error != nullptr || !m_soxr) m_error = error != nullptr ? error : "out of memory";
  }

  // The error, empty while all is well.
  const std::string& Error() const { return m_error; }

  void Write(std::span<const double> values) {
    if (!m_soxr) return Store(values);
    m_converted.resize(
        static_cast<std::size_t>(std::ceil(static_cast<double>(values.size()) * m_ratio)) + 1024);
    while (!values.empty() && m_error.empty()) {
      std::size_t used = 0;
      std::size_t made = 0;
      Check(soxr_process(m_soxr.get(), values.data(), values.size(), &used, m_converted.data(),
                         m_converted.size(), &made));
      Store(std::span(m_converted).first(made));
      values = values.subspan(used);
    }
  }

  // Writes what the resampler still holds.
  void Finish() {
    if (!m_soxr) return;
    m_converted.resize(4096);
    std::size_t made = 1;
    while (made > 0 && m_error.empty()) {
      Check(soxr_process(m_soxr.get(), nullptr, 0, nullptr, m_converted.data(), m_converted.size(),
                         &made));
      Store(std::span(m_converted).first(made));
    }
  }

 private:
  void Check(soxr_error_t error) {
    if (error != nullptr) m_error = error;
  }

  void Store(std::span<const double> values) {
    for (const double value : values) {
      const double scaled = std::nearbyint(value * 32768.0);
      const double clamped = std::clamp(scaled, -32768.0, 32767.0);
      // The scale's upper end is one step out of reach; a sine at full scale is no fault.
      if (scaled != clamped && scaled != 32768.0) ++m_recording.clamped;
      m_recording.samples.push_back(static_cast<std::int16_t>(clamped));
    }
  }

  Recording& m_recording;
  Soxr m_soxr;
  double m_ratio = 1.0;
  std::vector<double> m_converted;
  std::string m_error;
};

// Mixes the frames of one block into `mono`. Gives the number of the first frame that holds a value
// that is no number, if there is one.
std::optional<std::size_t> Mix(std::span<const double> block, int channels,
                               std::vector<double>& mono, std::int64_t& clamped) {
  const auto width = static_cast<std::size_t>(channels);
  const std::size_t frames = block.size() / width;
  mono.resize(frames);
  for (std::size_t frame = 0; frame < frames; ++frame) {
    double sum = 0.0;
    for (const double value : block.subspan(frame * width, width)) {
      if (!std::isfinite(value)) return frame;
      sum += value / channels;
    }
    mono[frame] = std::clamp(sum, -1.0, 1.0);
    if (mono[frame] != sum) ++clamped;
  }
  return std::nullopt;
}

std::string TooLong() {
  return "is longer than " + Fixed(kMaxRecordingSeconds / 60.0, 0) +
         " minutes, the most that is aligned at once (memory grows with the length, and a sentence "
         "has at most 256 words); cut it into sentences";
}

OpenedDecoder OpenDecoder(const InputFile& file, const FfmpegOptions& ffmpeg) {
  if (const std::string kind = FfmpegKind(file); !kind.empty()) {
    return OpenFfmpeg(file, kind, ffmpeg);
  }
  if (BeginsWithMpegFrame(file)) return OpenMp3(file);
  bool unsupported = false;
  OpenedDecoder sound = OpenSound(file, unsupported);
  if (!unsupported) return sound;
  return OpenFfmpeg(file, "a recording of a kind that libsndfile lacks", ffmpeg);
}

}  // namespace

Result<Recording> ReadAudioFile(const std::filesystem::path& path) {
  const Result<InputFile> file = InputFile::Open(path);
  return file ? ReadAudio(*file) : Result<Recording>::Failure(file.Error());
}

Result<Recording> ReadAudio(const InputFile& file, const FfmpegOptions& ffmpeg) {
  using Failure = Result<Recording>;
  const OpenedDecoder opened = OpenDecoder(file, ffmpeg);
  if (!opened.decoder) return Failure::Failure(opened.error);
  AudioDecoder& decoder = *opened.decoder;
  const int rate = decoder.Rate();
  if (rate < kMinRate || rate > kMaxRate) {
    return Failure::Failure("has a sample rate of " + std::to_string(rate) +
                            " Hz; 1000 Hz to 1000 kHz can be read");
  }

  Recording recording;
  recording.source_rate = rate;
  recording.source_channels = decoder.Channels();
  SampleWriter writer(rate, recording);
  if (!writer.Error().empty()) return Failure::Failure("cannot be resampled: " + writer.Error());

  const auto channels = static_cast<std::size_t>(decoder.Channels());
  const std::size_t block_frames = std::max<std::size_t>(1, kBlockValues / channels);
  const double max_frames = kMaxRecordingSeconds * rate;
  std::vector<double> block(block_frames * channels);
  std::vector<double> mono;
  std::int64_t frames = 0;
  for (;;) {
    const std::size_t got = decoder.Read(block);
    if (got == 0) break;
    const auto bad = Mix(std::span(block).first(got), decoder.Channels(), mono, recording.clamped);
    if (bad) {
      return Failure::Failure("holds a sample that is no number (NaN or infinite) at frame " +
                              std::to_string(frames + static_cast<std::int64_t>(*bad)));
    }
    frames += static_cast<std::int64_t>(got / channels);
    if (static_cast<double>(frames) > max_frames) return Failure::Failure(TooLong());
    writer.Write(mono);
    if (!writer.Error().empty()) return Failure::Failure("cannot be resampled: " + writer.Error());
  }
  if (std::string problem = decoder.Problem(); !problem.empty()) {
    return Failure::Failure(std::move(problem));
  }
  writer.Finish();
  if (!writer.Error().empty()) return Failure::Failure("cannot be resampled: " + writer.Error());

  const std::size_t count = recording.samples.size();
  if (count == 0) return Failure::Failure("holds no samples");
  if (count < static_cast<std::size_t>(kFrameLength)) {
    return Failure::Failure("is too short: " + std::to_string(count) +
                            " samples at 22050 Hz, one frame needs " +
                            std::to_string(kFrameLength) + " (25 ms)");
  }
  recording.silent = std::ranges::all_of(recording.samples, [](std::int16_t s) { return s == 0; });
  return recording;
}

}  // namespace veral3::tools
