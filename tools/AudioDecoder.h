#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "tools/Numbers.h"

namespace veral3::tools {

// The sound of a file, from its beginning to its end.
class AudioDecoder {
 public:
  AudioDecoder(int rate, int channels) : m_rate(rate), m_channels(channels) {}
  virtual ~AudioDecoder() = default;
  AudioDecoder(const AudioDecoder&) = delete;
  AudioDecoder& operator=(const AudioDecoder&) = delete;

  int Rate() const { return m_rate; }  // [Hz]
  int Channels() const { return m_channels; }

  // Puts whole frames, a value in -1 to 1 a channel, into `values`, which has room for one at
  // least. Gives how many values these are; 0 at the end, and when nothing more can be read.
  virtual std::size_t Read(std::span<double> values) = 0;

  // Once Read has given 0: why what it gave is not the whole recording, as the rest of a sentence
  // that begins with the file's name; "" when it is.
  virtual std::string Problem() = 0;

 private:
  int m_rate;
  int m_channels;
};

// A decoder or, where it is null, the reason as the rest of a sentence.
struct OpenedDecoder {
  std::unique_ptr<AudioDecoder> decoder;
  std::string error;
};

// "ends after 1.20 s of 3.40 s: the rest is missing".
inline std::string EndsAfter(double seconds, double announced) {
  const int digits = Fixed(seconds, 2) == Fixed(announced, 2) ? 5 : 2;
  return "ends after " + Fixed(seconds, digits) + " s of " + Fixed(announced, digits) +
         " s: the rest is missing";
}

}  // namespace veral3::tools
