#include "tools/DenoiseCommand.h"

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <CLI/Validators.hpp>
#include <cstdint>
#include <filesystem>

#include "core/AnalyzedAudio.h"
#include "tools/AlignJobs.h"
#include "tools/AudioFile.h"
#include "tools/Console.h"
#include "tools/EngineMessages.h"
#include "tools/ReadingOptions.h"
#include "tools/RunFiles.h"
#include "tools/WaveFile.h"

namespace veral3::tools {
namespace {

constexpr const char* kExamples = R"(Example:
  veral3 denoise noisy.mp3 -o clean.wav --policy 2

Exit status: 0 written, 1 the recording cannot be read or the result not written, 2 wrong usage.)";

// Why there is no result, with the file that it is about; "" when there is one.
std::string Denoise(const DenoiseOptions& options, Console& console) {
  Result<Recording> recording = ReadAudioFile(options.input);
  if (!recording) return options.input + ": " + recording.Error();
  if (recording->silent) console.Error(options.input + ": is silent: every sample is 0");
  if (recording->clamped > 0) {
    console.Error(options.input + ": is louder than 16 bits hold: " +
                  std::to_string(recording->clamped) + " samples were clamped");
  }
  const EngineMessages engine;
  if (AnalyzedAudio::NoiseReduction(recording->samples.data(),
                                    static_cast<std::uint32_t>(recording->samples.size()),
                                    options.policy) < 0) {
    return options.input + ": the noise cannot be reduced: " + engine.OneLine();
  }
  const std::string error = WriteWaveFile(options.output, recording->samples);
  return error.empty() ? "" : options.output + " " + error;
}

}  // namespace

CLI::App* AddDenoiseCommand(CLI::App& app, DenoiseOptions& options) {
  CLI::App* denoise = app.add_subcommand("denoise", "Takes steady noise out of a recording");
  denoise
      ->add_option("IN", options.input,
                   "Recording: WAV, FLAC, OGG, MP3, AIFF and what else libsndfile or, where it is "
                   "there, ffmpeg reads, up to 15 minutes; - is standard input")
      ->type_name("")
      ->required();
  denoise
      ->add_option("OUT,-o,--output", options.output, "WAV file to write: 22050 Hz, mono, 16 bit")
      ->type_name("")
      ->required();
  denoise
      ->add_option("--policy", options.policy,
                   "How much: 0 mild, 1 medium (default), 2 strong, 3 strongest")
      ->check(CLI::Range(0, 3))
      ->type_name("N");
  denoise->footer(kExamples);
  return denoise;
}

int RunDenoise(const DenoiseOptions& options) {
  Console console;
  const std::string problem =
      RunFilesProblem({{"the recording", options.input}}, {{"the result", options.output}});
  if (!problem.empty()) {
    console.Error(problem);
    return kWrongUsage;
  }
  std::error_code ignored;
  if (std::filesystem::is_directory(options.output, ignored)) {
    console.Error(options.output + " is a folder; name a file");
    return kWrongUsage;
  }
  const std::string error = ErrorOf([&] { return Denoise(options, console); });
  console.Error(error);
  return error.empty() ? kAllDone : kSomeFailed;
}

}  // namespace veral3::tools
