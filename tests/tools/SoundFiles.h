#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace veral3::tools::test {

// Writes interleaved values in -1 to 1 with libsndfile; `format` is one of its SF_FORMAT_* sums.
void WriteSoundFile(const std::filesystem::path& path, const std::vector<double>& values, int rate,
                    int channels, int format);

// A sine of `hertz`, `seconds` long, with the same value in every channel.
std::vector<double> Sine(double hertz, double amplitude, double seconds, int rate, int channels);

// "r0.wav", "r1.wav", ...
std::string NumberedWav(int number);

}  // namespace veral3::tools::test
