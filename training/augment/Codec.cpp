#include "training/augment/Codec.h"

#include <sndfile.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <utility>

#include "signal/CWaveFrameDef.h"
#include "training/augment/Augment.h"

namespace veral3::training {
namespace {

constexpr int kOpusRate = 24000;  // Hz: the nearest above ours of those that Opus has
constexpr float kFullScale = 32768.0F;

// LAME's 576 samples and the 529 of the synthesis of an MP3, where the file does not tell them.
constexpr std::size_t kMp3Delay = 1105;

struct Memory {
  std::vector<unsigned char> bytes;
  std::size_t place = 0;
};

sf_count_t Length(void* user) {
  return static_cast<sf_count_t>(static_cast<Memory*>(user)->bytes.size());
}

sf_count_t Seek(sf_count_t offset, int whence, void* user) {
  auto& memory = *static_cast<Memory*>(user);
  sf_count_t from = 0;
  if (whence == SEEK_CUR) from = static_cast<sf_count_t>(memory.place);
  if (whence == SEEK_END) from = Length(user);
  memory.place = static_cast<std::size_t>(std::max<sf_count_t>(from + offset, 0));
  return static_cast<sf_count_t>(memory.place);
}

sf_count_t Read(void* to, sf_count_t count, void* user) {
  auto& memory = *static_cast<Memory*>(user);
  if (memory.place >= memory.bytes.size()) return 0;
  const std::size_t size =
      std::min(static_cast<std::size_t>(count), memory.bytes.size() - memory.place);
  std::memcpy(to, memory.bytes.data() + memory.place, size);
  memory.place += size;
  return static_cast<sf_count_t>(size);
}

sf_count_t Write(const void* from, sf_count_t count, void* user) {
  auto& memory = *static_cast<Memory*>(user);
  const std::size_t end = memory.place + static_cast<std::size_t>(count);
  if (memory.bytes.size() < end) memory.bytes.resize(end);
  std::memcpy(memory.bytes.data() + memory.place, from, static_cast<std::size_t>(count));
  memory.place = end;
  return count;
}

sf_count_t Tell(void* user) { return static_cast<sf_count_t>(static_cast<Memory*>(user)->place); }

using File = std::unique_ptr<SNDFILE, int (*)(SNDFILE*)>;

// One at a time: the codecs below libsndfile fill tables when they are first used.
File Open(Memory& memory, int mode, SF_INFO& info) {
  static std::mutex lock;
  const std::lock_guard guard(lock);
  SF_VIRTUAL_IO io{Length, Seek, Read, Write, Tell};
  File file(sf_open_virtual(&io, mode, &info, &memory), sf_close);
  if (!file) throw std::runtime_error("codec: " + std::string(sf_strerror(nullptr)));
  return file;
}

// libsndfile has no bit rates, only how much to compress, from 0 to 1. For Opus that is spread over
// 256 to 6 kbit/s, for MP3 of our sampling rate over 160 to 8.
double CompressionOf(Codec codec, double kbit_per_s) {
  const double most = codec == Codec::kOpus ? 256.0 : 160.0;
  const double least = codec == Codec::kOpus ? 6.0 : 8.0;
  return std::clamp((most - kbit_per_s) / (most - least), 0.0, 1.0);
}

}  // namespace

std::vector<unsigned char> Encode(std::span<const float> signal, Codec codec, double kbit_per_s) {
  const bool opus = codec == Codec::kOpus;
  std::vector<float> scaled = opus ? Resample(signal, static_cast<double>(kOpusRate) / kSampleRate)
                                   : std::vector<float>(signal.begin(), signal.end());
  for (float& x : scaled) x = std::clamp(x / kFullScale, -1.0F, 1.0F);
  SF_INFO info{};
  info.samplerate = opus ? kOpusRate : kSampleRate;
  info.channels = 1;
  info.format = opus ? SF_FORMAT_OGG | SF_FORMAT_OPUS : SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III;
  Memory memory;
  File file = Open(memory, SFM_WRITE, info);
  if (!opus) {
    int mode = SF_BITRATE_MODE_CONSTANT;
    sf_command(file.get(), SFC_SET_BITRATE_MODE, &mode, sizeof mode);
  }
  double compression = CompressionOf(codec, kbit_per_s);
  if (sf_command(file.get(), SFC_SET_COMPRESSION_LEVEL, &compression, sizeof compression) == 0) {
    throw std::runtime_error("codec: cannot set the bit rate");
  }
  const auto count = static_cast<sf_count_t>(scaled.size());
  if (sf_writef_float(file.get(), scaled.data(), count) != count) {
    throw std::runtime_error("codec: " + std::string(sf_strerror(file.get())));
  }
  file.reset();  // the last block is written now, and with it what the delay is
  return std::move(memory.bytes);
}

std::vector<float> Decode(std::vector<unsigned char> bytes, Codec codec, std::size_t length) {
  Memory memory{std::move(bytes), 0};
  SF_INFO info{};
  const File file = Open(memory, SFM_READ, info);
  constexpr std::size_t kBlock = 4096;
  std::vector<float> signal;
  for (sf_count_t got = kBlock; got == kBlock;) {
    signal.resize(signal.size() + kBlock);
    got = sf_readf_float(file.get(), signal.data() + signal.size() - kBlock, kBlock);
    signal.resize(signal.size() - kBlock + static_cast<std::size_t>(std::max<sf_count_t>(got, 0)));
  }
  for (float& x : signal) x *= kFullScale;
  if (codec == Codec::kOpus) {
    signal = Resample(signal, static_cast<double>(kSampleRate) / info.samplerate);
  } else if (signal.size() >= length + kMp3Delay) {
    // Below 64 kbit/s its first frame has no room to say what the delay is.
    signal.erase(signal.begin(), signal.begin() + kMp3Delay);
  }
  signal.resize(length, 0.0F);
  return signal;
}

std::vector<float> ThroughCodec(std::span<const float> signal, Codec codec, double kbit_per_s) {
  if (signal.empty()) return {};
  return Decode(Encode(signal, codec, kbit_per_s), codec, signal.size());
}

}  // namespace veral3::training
