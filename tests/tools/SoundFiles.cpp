#include "SoundFiles.h"

#include <sndfile.h>

#include <cmath>
#include <numbers>
#include <stdexcept>

namespace veral3::tools::test {

void WriteSoundFile(const std::filesystem::path& path, const std::vector<double>& values, int rate,
                    int channels, int format) {
  SF_INFO info{};
  info.samplerate = rate;
  info.channels = channels;
  info.format = format;
  SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
  if (file == nullptr) throw std::runtime_error(sf_strerror(nullptr));
  const auto count = static_cast<sf_count_t>(values.size());
  const sf_count_t written = sf_write_double(file, values.data(), count);
  sf_close(file);
  if (written != count) throw std::runtime_error("cannot write " + path.string());
}

std::vector<double> Sine(double hertz, double amplitude, double seconds, int rate, int channels) {
  std::vector<double> values;
  const int frames = static_cast<int>(std::lround(seconds * rate));
  for (int i = 0; i < frames; ++i) {
    const double value = amplitude * std::sin(2.0 * std::numbers::pi * hertz * i / rate);
    values.insert(values.end(), static_cast<std::size_t>(channels), value);
  }
  return values;
}

std::string NumberedWav(int number) {
  std::string name = "r";
  name += std::to_string(number);
  return name += ".wav";
}

}  // namespace veral3::tools::test
