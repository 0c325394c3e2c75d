#include "tools/WaveFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/SmallEngine.h"
#include "support/Vectors.h"
#include "tools/AudioFile.h"

namespace veral3::tools {
namespace {

TEST(WaveFile, ReadsBackAsItWas) {
  const veral3::test::ScratchFolder folder;
  const auto path = folder.Path() / "a.wav";
  std::vector<std::int16_t> samples = veral3::test::NoiseBursts(30001, 5);
  samples[0] = 32767;
  samples[1] = -32768;
  ASSERT_EQ(WriteWaveFile(path, samples), "");
  const Result<Recording> recording = ReadAudioFile(path);
  ASSERT_TRUE(recording) << recording.Error();
  EXPECT_EQ(recording->samples, samples);
  EXPECT_EQ(recording->source_rate, 22050);
  EXPECT_EQ(recording->source_channels, 1);
  const std::string bytes = veral3::test::ReadFile(path);
  EXPECT_EQ(bytes.size(), 44 + 2 * samples.size());
  EXPECT_EQ(bytes.substr(0, 4), "RIFF");
}

TEST(WaveFile, APlaceThatCannotBeWrittenIsTold) {
  const veral3::test::ScratchFolder folder;
  EXPECT_THAT(WriteWaveFile(folder.Path() / "none/a.wav", {}),
              testing::StartsWith("cannot be written: "));
  EXPECT_THAT(WriteWaveFile("/dev/full", veral3::test::NoiseBursts(30000, 5)),
              testing::HasSubstr("No space left"));
}

}  // namespace
}  // namespace veral3::tools
