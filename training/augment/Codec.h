#pragma once

#include <cstddef>
#include <span>
#include <vector>

// What phones and browsers do to speech before it is sent. Everything happens in memory, by
// libsndfile. All throw std::runtime_error where it has no such codec or fails.
namespace veral3::training {

enum class Codec {
  kOpus,  // in Ogg; 6 to 256 kbit/s, of a signal of 24 kHz
  kMp3,   // 8 to 160 kbit/s, at a constant rate
};

// The file that a recording of 22050 Hz becomes. Opus keeps to the rate on average only: pauses
// take less.
std::vector<unsigned char> Encode(std::span<const float> signal, Codec codec, double kbit_per_s);

// The recording that such a file holds: `length` samples, with the codec's delay taken out, so that
// what happened at a sample still does.
std::vector<float> Decode(std::vector<unsigned char> file, Codec codec, std::size_t length);

// Through both. The length stays; an empty signal stays empty.
std::vector<float> ThroughCodec(std::span<const float> signal, Codec codec, double kbit_per_s);

}  // namespace veral3::training
