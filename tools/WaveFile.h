#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>

// Recordings in the engine's own form as files.
namespace veral3::tools {

// Writes 16-bit mono samples at 22050 Hz as a WAV file, whole or not at all. Returns what went
// wrong as the rest of a sentence that begins with the path, "" when nothing did.
std::string WriteWaveFile(const std::filesystem::path& path, std::span<const std::int16_t> samples);

}  // namespace veral3::tools
