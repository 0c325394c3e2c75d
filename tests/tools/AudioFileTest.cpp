#include "tools/AudioFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sndfile.h>

#include <atomic>
#include <cmath>
#include <limits>
#include <numbers>
#include <thread>

#include "SoundFiles.h"
#include "support/Vectors.h"

namespace veral3::tools {
namespace {

using test::Sine;
using test::WriteSoundFile;
using testing::AnyOf;
using testing::HasSubstr;
using testing::StartsWith;
using veral3::test::ReadFile;
using veral3::test::ScratchFolder;
using veral3::test::WriteFile;

constexpr int kWav16 = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
constexpr int kWavFloat = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
constexpr int kFlac16 = SF_FORMAT_FLAC | SF_FORMAT_PCM_16;

class AudioFile : public testing::Test {
 protected:
  std::filesystem::path Path(const std::string& name) const { return m_folder.Path() / name; }
  const ScratchFolder m_folder;
};

// Greatest distance of the samples from a sine at 22050 Hz, leaving out `margin` at both ends.
double DistanceFromSine(const std::vector<std::int16_t>& samples, double hertz, double amplitude,
                        std::size_t margin) {
  double distance = 0.0;
  for (std::size_t i = margin; i + margin < samples.size(); ++i) {
    const double wanted =
        32768.0 * amplitude *
        std::sin(2.0 * std::numbers::pi * hertz * static_cast<double>(i) / 22050.0);
    distance = std::max(distance, std::abs(samples[i] - wanted));
  }
  return distance;
}

TEST_F(AudioFile, SixteenBitMonoAtTheEnginesRateComesBackAsItIs) {
  std::vector<double> values;
  std::vector<std::int16_t> wanted;
  for (int i = -32768; i <= 32767; i += 13) {
    wanted.push_back(static_cast<std::int16_t>(i));
    values.push_back(i / 32768.0);
  }
  for (const auto& [name, format] : {std::pair{"a.wav", kWav16}, std::pair{"a.flac", kFlac16},
                                     std::pair{"a.aiff", SF_FORMAT_AIFF | SF_FORMAT_PCM_16}}) {
    // libsndfile scales by 32767 when it writes doubles: rounded, both scales meet.
    SF_INFO info{};
    info.samplerate = 22050;
    info.channels = 1;
    info.format = format;
    SNDFILE* file = sf_open(Path(name).c_str(), SFM_WRITE, &info);
    ASSERT_NE(file, nullptr);
    sf_write_short(file, wanted.data(), static_cast<sf_count_t>(wanted.size()));
    sf_close(file);
    const auto recording = ReadAudioFile(Path(name));
    ASSERT_TRUE(recording) << recording.Error();
    EXPECT_EQ(recording->samples, wanted) << name;
    EXPECT_EQ(recording->source_rate, 22050);
    EXPECT_EQ(recording->source_channels, 1);
    EXPECT_EQ(recording->clamped, 0);
    EXPECT_FALSE(recording->silent);
  }
}

TEST_F(AudioFile, OtherRatesAndChannelsKeepTimeAndLevel) {
  for (const int rate : {8000, 11025, 16000, 44100, 48000, 96000}) {
    for (const int channels : {1, 2, 6}) {
      const auto path = Path("a.wav");
      WriteSoundFile(path, Sine(440.0, 0.5, 1.0, rate, channels), rate, channels, kWavFloat);
      const auto recording = ReadAudioFile(path);
      ASSERT_TRUE(recording) << recording.Error();
      EXPECT_NEAR(static_cast<double>(recording->samples.size()), 22050.0, 1.0) << rate;
      EXPECT_LT(DistanceFromSine(recording->samples, 440.0, 0.5, 500), 2.0)
          << rate << " Hz, " << channels << " channels";
      EXPECT_EQ(recording->source_channels, channels);
    }
  }
}

TEST_F(AudioFile, ReadsManyFormats) {
  for (const auto& [name, format] : {std::pair{"a.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_U8},
                                     std::pair{"b.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_24},
                                     std::pair{"c.wav", SF_FORMAT_WAV | SF_FORMAT_DOUBLE},
                                     std::pair{"d.wav", SF_FORMAT_WAV | SF_FORMAT_ULAW},
                                     std::pair{"e.aiff", SF_FORMAT_AIFF | SF_FORMAT_PCM_24},
                                     std::pair{"f.au", SF_FORMAT_AU | SF_FORMAT_FLOAT},
                                     std::pair{"g.flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_24},
                                     std::pair{"h.ogg", SF_FORMAT_OGG | SF_FORMAT_VORBIS},
                                     std::pair{"i.caf", SF_FORMAT_CAF | SF_FORMAT_PCM_16}}) {
    WriteSoundFile(Path(name), Sine(300.0, 0.4, 0.5, 16000, 1), 16000, 1, format);
    const auto recording = ReadAudioFile(Path(name));
    ASSERT_TRUE(recording) << name << ": " << recording.Error();
    EXPECT_NEAR(static_cast<double>(recording->samples.size()), 11025.0, 2.0) << name;
    EXPECT_LT(DistanceFromSine(recording->samples, 300.0, 0.4, 500), 700.0) << name;
  }
}

TEST_F(AudioFile, ChannelsAreMixedByTheirMean) {
  std::vector<double> values;
  for (int i = 0; i < 1000; ++i) {
    values.push_back(0.5);
    values.push_back(-0.25);
  }
  WriteSoundFile(Path("a.wav"), values, 22050, 2, kWavFloat);
  const auto recording = ReadAudioFile(Path("a.wav"));
  ASSERT_TRUE(recording) << recording.Error();
  EXPECT_EQ(recording->samples, std::vector<std::int16_t>(1000, 4096));
}

TEST_F(AudioFile, RoundsToNearestAndClamps) {
  std::vector<double> values(600, 0.0);
  values[0] = 1.5 / 32768;  // ties to even
  values[1] = 2.5 / 32768;
  values[2] = -0.6 / 32768;
  values[3] = 1.0;  // one step beyond the scale, not counted
  values[4] = 1e300;
  values[5] = -7.0;
  WriteSoundFile(Path("a.wav"), values, 22050, 1, SF_FORMAT_WAV | SF_FORMAT_DOUBLE);
  const auto recording = ReadAudioFile(Path("a.wav"));
  ASSERT_TRUE(recording) << recording.Error();
  EXPECT_THAT(std::vector(recording->samples.begin(), recording->samples.begin() + 6),
              testing::ElementsAre(2, 2, -1, 32767, 32767, -32768));
  EXPECT_EQ(recording->clamped, 2);
}

TEST_F(AudioFile, SilenceIsToldApart) {
  WriteSoundFile(Path("a.wav"), std::vector<double>(5000, 0.0), 8000, 1, kWav16);
  const auto recording = ReadAudioFile(Path("a.wav"));
  ASSERT_TRUE(recording) << recording.Error();
  EXPECT_TRUE(recording->silent);
}

TEST_F(AudioFile, SamplesThatAreNoNumbersAreRefused) {
  for (const double bad :
       {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
        -std::numeric_limits<double>::infinity()}) {
    std::vector<double> values(200000, 0.1);
    values[150001] = bad;
    WriteSoundFile(Path("a.wav"), values, 44100, 2, kWavFloat);
    EXPECT_EQ(ReadAudioFile(Path("a.wav")).Error(),
              "holds a sample that is no number (NaN or infinite) at frame 75000");
  }
}

TEST_F(AudioFile, ShortestIsOneFrame) {
  WriteSoundFile(Path("a.wav"), std::vector<double>(551, 0.1), 22050, 1, kWav16);
  EXPECT_TRUE(ReadAudioFile(Path("a.wav")));
  WriteSoundFile(Path("a.wav"), std::vector<double>(550, 0.1), 22050, 1, kWav16);
  EXPECT_EQ(ReadAudioFile(Path("a.wav")).Error(),
            "is too short: 550 samples at 22050 Hz, one frame needs 551 (25 ms)");
  WriteSoundFile(Path("a.wav"), {}, 22050, 1, kWav16);
  EXPECT_EQ(ReadAudioFile(Path("a.wav")).Error(), "holds no samples");
}

TEST_F(AudioFile, LongestIsFifteenMinutes) {
  std::vector<double> values(900 * 1000, 0.1);
  WriteSoundFile(Path("a.wav"), values, 1000, 1, kWav16);
  const auto recording = ReadAudioFile(Path("a.wav"));
  ASSERT_TRUE(recording) << recording.Error();
  EXPECT_EQ(recording->samples.size(), 900u * 22050u);
  values.push_back(0.1);
  WriteSoundFile(Path("a.wav"), values, 1000, 1, kWav16);
  EXPECT_THAT(ReadAudioFile(Path("a.wav")).Error(),
              StartsWith("is longer than 15 minutes, the most that is aligned at once"));
}

TEST_F(AudioFile, StrangeRatesAreRefused) {
  WriteSoundFile(Path("a.wav"), std::vector<double>(1000, 0.1), 999, 1, kWav16);
  EXPECT_EQ(ReadAudioFile(Path("a.wav")).Error(),
            "has a sample rate of 999 Hz; 1000 Hz to 1000 kHz can be read");
  WriteSoundFile(Path("a.wav"), std::vector<double>(30000, 0.1), 1000000, 1, kWav16);
  EXPECT_TRUE(ReadAudioFile(Path("a.wav")));
  WriteSoundFile(Path("a.wav"), std::vector<double>(30000, 0.1), 1000001, 1, kWav16);
  EXPECT_THAT(ReadAudioFile(Path("a.wav")).Error(), HasSubstr("1000001 Hz"));
}

TEST_F(AudioFile, WhatIsNoAudioSaysWhy) {
  EXPECT_EQ(ReadAudioFile(Path("none.wav")).Error(), "does not exist");
  EXPECT_EQ(ReadAudioFile(m_folder.Path()).Error(), "is a folder");
  WriteFile(Path("a.wav"), "");
  EXPECT_EQ(ReadAudioFile(Path("a.wav")).Error(), "is empty (0 bytes)");
  WriteFile(Path("a.wav"), "this is a text and no recording");
  EXPECT_THAT(ReadAudioFile(Path("a.wav")).Error(), StartsWith("cannot be read as audio: "));
}

// Whatever a damaged file reads as, it is one or the other: a recording within its bounds, or one
// sentence on what is wrong.
void ExpectSane(const Result<Recording>& result, std::size_t source_samples) {
  if (result) {
    EXPECT_GE(result->samples.size(), 551u);
    // A damaged rate stretches the recording at most 22-fold; channels can only shrink it.
    EXPECT_LE(result->samples.size(), 23 * source_samples + 23);
  } else {
    EXPECT_FALSE(result.Error().empty());
    EXPECT_EQ(result.Error().find('\n'), std::string::npos) << result.Error();
  }
}

// Every length of the headers, every 17th of the samples behind them.
TEST_F(AudioFile, TruncationsAreReadOrRefused) {
  for (const auto& [name, format] : {std::pair{"a.wav", kWav16}, std::pair{"a.flac", kFlac16}}) {
    WriteSoundFile(Path(name), Sine(440.0, 0.3, 0.06, 22050, 1), 22050, 1, format);
    const std::string bytes = ReadFile(Path(name));
    for (std::size_t length = 0; length < bytes.size(); length += length < 100 ? 1 : 17) {
      SCOPED_TRACE(std::string(name) + " cut to " + std::to_string(length));
      WriteFile(Path(name), bytes.substr(0, length));
      ExpectSane(ReadAudioFile(Path(name)), 1323);
    }
  }
}

TEST_F(AudioFile, FlippedBitsAreReadOrRefused) {
  for (const auto& [name, format] : {std::pair{"a.wav", kWav16}, std::pair{"a.flac", kFlac16}}) {
    WriteSoundFile(Path(name), Sine(440.0, 0.3, 0.06, 22050, 1), 22050, 1, format);
    const std::string bytes = ReadFile(Path(name));
    // Each bit of the headers, one of each byte behind them.
    for (std::size_t bit = 0; bit < std::min<std::size_t>(bytes.size(), 400) * 8;
         bit += bit < 60 * 8 ? 1 : 9) {
      SCOPED_TRACE(std::string(name) + " bit " + std::to_string(bit));
      std::string damaged = bytes;
      damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << (bit % 8)));
      WriteFile(Path(name), damaged);
      // 16-bit frames may turn into 8-bit ones or less: a sample a nibble at the very least.
      ExpectSane(ReadAudioFile(Path(name)), 8 * 1323);
    }
  }
}

// Also run under ThreadSanitizer: every thread hears why its own file did not open.
TEST(AudioFileThreads, ReasonsAreNotMixedUp) {
  const veral3::test::ScratchFolder folder;
  const std::string text = folder.Path() / "text.wav";
  const std::string wave = folder.Path() / "good.wav";
  veral3::test::WriteFile(text, "no audio");
  test::WriteSoundFile(wave, test::Sine(300, 0.3, 0.1, 22050, 1), 22050, 1,
                       SF_FORMAT_WAV | SF_FORMAT_PCM_16);
  const std::string alone = ReadAudioFile(text).Error();
  EXPECT_NE(alone, "");
  std::atomic<int> wrong = 0;
  {
    std::vector<std::jthread> threads;
    for (int t = 0; t < 4; ++t) {
      threads.emplace_back([&, t] {
        for (int i = 0; i < 200; ++i) {
          if (t % 2 == 0 ? ReadAudioFile(text).Error() != alone : !ReadAudioFile(wave)) ++wrong;
        }
      });
    }
  }
  EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace veral3::tools
