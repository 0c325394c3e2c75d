// Files that are not whole, and files whose heads do not say how long they are.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sndfile.h>

#include "SoundFiles.h"
#include "support/SmallEngine.h"
#include "support/Vectors.h"
#include "tools/AudioFile.h"

namespace veral3::tools {
namespace {

using test::WriteSoundFile;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;
using veral3::test::ReadFile;
using veral3::test::WriteFile;

constexpr int kSamples = 3 * 22050;  // three seconds
constexpr int kWav16 = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
constexpr int kFlac16 = SF_FORMAT_FLAC | SF_FORMAT_PCM_16;
constexpr int kVorbis = SF_FORMAT_OGG | SF_FORMAT_VORBIS;
constexpr int kMp3 = SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III;

class DamagedAudio : public testing::Test {
 protected:
  std::filesystem::path Path(const std::string& name) const { return m_folder.Path() / name; }

  // Three seconds of noise in bursts, which no codec makes short.
  std::string Bytes(int format, int rate = 22050) const {
    std::vector<double> values;
    for (const std::int16_t sample : veral3::test::NoiseBursts(3 * rate, 7)) {
      values.push_back(sample / 32768.0);
    }
    WriteSoundFile(Path("whole"), values, rate, 1, format);
    return ReadFile(Path("whole"));
  }

  Result<Recording> Read(const std::string& bytes) const {
    WriteFile(Path("a"), bytes);
    return ReadAudioFile(Path("a"));
  }
  std::string ErrorOf(const std::string& bytes) const {
    const auto recording = Read(bytes);
    return recording ? "read: " + std::to_string(recording->samples.size()) : recording.Error();
  }

  const veral3::test::ScratchFolder m_folder;
};

std::string Overwritten(std::string bytes, std::size_t place, std::size_t count,
                        char with = '\xA5') {
  return bytes.replace(place, count, std::string(count, with));
}

std::string Number(std::uint32_t value) {
  std::string bytes;
  for (int i = 0; i < 4; ++i) bytes += static_cast<char>(value >> 8 * i & 0xFF);
  return bytes;
}

TEST_F(DamagedAudio, WhatIsWholeIsRead) {
  for (const int format : {kWav16, kFlac16, kVorbis, kMp3, SF_FORMAT_AIFF | SF_FORMAT_PCM_16,
                           SF_FORMAT_AU | SF_FORMAT_PCM_16, SF_FORMAT_CAF | SF_FORMAT_PCM_16,
                           SF_FORMAT_RF64 | SF_FORMAT_PCM_16, SF_FORMAT_W64 | SF_FORMAT_PCM_16,
                           SF_FORMAT_WAV | SF_FORMAT_IMA_ADPCM, SF_FORMAT_WAV | SF_FORMAT_MS_ADPCM,
                           SF_FORMAT_WAVEX | SF_FORMAT_PCM_24}) {
    const auto recording = Read(Bytes(format));
    ASSERT_TRUE(recording) << std::hex << format << ": " << recording.Error();
    EXPECT_NEAR(static_cast<double>(recording->samples.size()), kSamples, 3000) << format;
  }
  const auto opus = Read(Bytes(SF_FORMAT_OGG | SF_FORMAT_OPUS, 24000));
  ASSERT_TRUE(opus) << opus.Error();
  EXPECT_NEAR(static_cast<double>(opus->samples.size()), kSamples, 1.0);
}

TEST_F(DamagedAudio, CutFilesSayWhatIsMissing) {
  // A head of 44 bytes, then 44100 a second.
  const std::string wave = Bytes(kWav16);
  EXPECT_EQ(ErrorOf(wave.substr(0, 44 + 44100)),
            "ends after 1.00 s of 3.00 s: the rest is missing");
  EXPECT_EQ(ErrorOf(wave.substr(0, wave.size() - 44)),
            "ends after 2.99900 s of 3.00000 s: the rest is missing");
  for (const int format : {SF_FORMAT_AIFF | SF_FORMAT_PCM_16, SF_FORMAT_AU | SF_FORMAT_PCM_16,
                           SF_FORMAT_CAF | SF_FORMAT_PCM_16, SF_FORMAT_RF64 | SF_FORMAT_PCM_16,
                           SF_FORMAT_WAVEX | SF_FORMAT_PCM_16}) {
    const std::string bytes = Bytes(format);
    EXPECT_EQ(ErrorOf(bytes.substr(0, bytes.size() - 44100)),
              "ends after 2.00 s of 3.00 s: the rest is missing")
        << std::hex << format;
  }
  const std::string flac = Bytes(kFlac16);
  for (const std::size_t part : {2u, 3u, 10u}) {
    EXPECT_THAT(
        ErrorOf(flac.substr(0, flac.size() / part)),
        MatchesRegex("can be read for [0-2]\\.[0-9]+ s of 3\\.00 s: what follows is damaged "
                     "or missing"));
  }
  EXPECT_THAT(ErrorOf(flac.substr(0, flac.size() - 1)), StartsWith("can be read for 2."));
  for (const auto& [format, rate] :
       {std::pair{kVorbis, 22050}, std::pair{SF_FORMAT_OGG | SF_FORMAT_OPUS, 24000}}) {
    const std::string ogg = Bytes(format, rate);
    EXPECT_THAT(ErrorOf(ogg.substr(0, ogg.size() * 3 / 4)),
                MatchesRegex("ends after [0-2]\\.[0-9]+ s without the mark of its end: the rest is "
                             "missing"));
    EXPECT_THAT(ErrorOf(ogg.substr(0, ogg.size() - 1)), HasSubstr("without the mark of its end"));
  }
  const std::string mp3 = Bytes(kMp3);
  EXPECT_THAT(ErrorOf(mp3.substr(0, mp3.size() / 2)),
              MatchesRegex("ends after 1\\.[0-9]+ s of 3\\.[0-9]+ s: the rest is missing"));
}

TEST_F(DamagedAudio, OverwrittenFilesSayWhere) {
  for (const int format : {kFlac16, kVorbis, kMp3, SF_FORMAT_OGG | SF_FORMAT_OPUS}) {
    const std::string bytes = Bytes(format, 24000);
    for (const char with : {'\xA5', '\0', '\xFF'}) {
      for (const std::size_t count : {std::size_t{1500}, bytes.size() / 5}) {
        EXPECT_THAT(ErrorOf(Overwritten(bytes, bytes.size() / 2, count, with)),
                    format == kFlac16
                        ? MatchesRegex("can be read for 1\\.[0-9]+ s of 3\\.00 s: what follows is "
                                       "damaged or missing")
                        : MatchesRegex("is damaged after [01]\\.[0-9]+ s.*"))
            << std::hex << format << " " << count << " of " << static_cast<int>(with);
      }
    }
    // Taken out of the middle.
    std::string shorter = bytes;
    shorter.erase(bytes.size() / 2, bytes.size() / 5);
    EXPECT_THAT(ErrorOf(shorter),
                MatchesRegex("(is damaged after|ends after|can be read for) [012]\\.[0-9]+ s.*"))
        << std::hex << format;
  }
}

TEST_F(DamagedAudio, OneWrongBitIsEnough) {
  for (const auto& [format, rate] : {std::pair{kFlac16, 22050}, std::pair{kVorbis, 22050},
                                     std::pair{SF_FORMAT_OGG | SF_FORMAT_OPUS, 24000}}) {
    std::string bytes = Bytes(format, rate);
    bytes[bytes.size() / 2] = static_cast<char>(bytes[bytes.size() / 2] ^ 1);
    EXPECT_THAT(ErrorOf(bytes), HasSubstr("damaged")) << std::hex << format;
  }
}

TEST_F(DamagedAudio, SeveralRecordingsInOneFileAreNotReadAsTheFirst) {
  const std::string ogg = Bytes(kVorbis);
  EXPECT_EQ(ErrorOf(ogg + ogg),
            "holds several recordings one after the other, of which only the first could be read");
}

TEST_F(DamagedAudio, WavesOfNoLengthLastToTheEnd) {
  const std::string wave = Bytes(kWav16);
  const auto whole = Read(wave);
  ASSERT_TRUE(whole) << whole.Error();
  for (const std::uint32_t length : {0u, 0x7FFFF000u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
    for (const std::uint32_t riff :
         {0u, 8u, 0x7FFFF024u, 0xFFFFFFFFu, length, static_cast<std::uint32_t>(wave.size() - 8)}) {
      std::string bytes = wave;
      bytes.replace(4, 4, Number(riff));
      bytes.replace(40, 4, Number(length));
      const auto recording = Read(bytes);
      ASSERT_TRUE(recording) << length << " " << riff << ": " << recording.Error();
      EXPECT_EQ(recording->samples, whole->samples) << length << " " << riff;
    }
  }
  // One less is a length like any other.
  std::string bytes = wave;
  bytes.replace(40, 4, Number(0x7FFFEFFF));
  EXPECT_THAT(ErrorOf(bytes), MatchesRegex("ends after 3\\.00 s of 4869[0-9]\\.[0-9]+ s: .*"));
}

TEST_F(DamagedAudio, AWaveThatIsEmptyIsNoOther) {
  const std::string head = Bytes(kWav16).substr(0, 40) + Number(0);
  EXPECT_EQ(ErrorOf(head), "holds no samples");
  EXPECT_EQ(ErrorOf(head + "LIST" + Number(4) + "INFO" + "JUNK" + Number(2) + "ab"),
            "holds no samples");
}

// What follows the sound may be cut: nothing of the recording is missing.
TEST_F(DamagedAudio, WhatStandsBehindTheSoundMayBeDamaged) {
  const std::string wave = Bytes(kWav16);
  EXPECT_EQ(ErrorOf(wave + "LIST" + Number(1000) + "INFO"), "read: 66150");
  EXPECT_EQ(ErrorOf(Bytes(kVorbis) + "what a player adds"), "read: 66150");
  const std::string mp3 = Bytes(kMp3);
  const std::string samples = ErrorOf(mp3);
  EXPECT_THAT(samples, StartsWith("read: "));
  EXPECT_EQ(ErrorOf(mp3 + "TAG" + std::string(125, ' ')), samples);
  EXPECT_EQ(ErrorOf(mp3 + "APETAGEX" + std::string(300, '\x1')), samples);
  // A tag of 300 bytes before it, whose length has seven bits a byte.
  EXPECT_EQ(ErrorOf(std::string("ID3\x03\0\0\0\0\x02\x2C", 10) + std::string(300, '\0') + mp3),
            samples);
}

// Without the frame that says how many there are.
TEST_F(DamagedAudio, Mp3WithoutAHeadOfItsOwn) {
  const std::string mp3 = Bytes(kMp3);
  const std::size_t mark = std::min(mp3.find("Xing"), mp3.find("Info"));
  ASSERT_LT(mark, 64u);
  const std::size_t second = mp3.find(mp3.substr(0, 2), 4);
  ASSERT_NE(second, std::string::npos);
  const std::string frames = mp3.substr(second);
  EXPECT_THAT(ErrorOf(frames), StartsWith("read: "));
  EXPECT_THAT(ErrorOf(frames.substr(0, frames.size() - 10)),
              MatchesRegex("ends in the middle of a frame after [23]\\.[0-9]+ s: the rest is "
                           "missing"));
  EXPECT_THAT(ErrorOf(Overwritten(frames, frames.size() / 2, 2000)),
              MatchesRegex("is damaged after 1\\.[0-9]+ s: .*"));
  EXPECT_THAT(ErrorOf(Overwritten(frames, frames.size() / 2, frames.size() / 2, '\0')),
              MatchesRegex("is damaged after 1\\.[0-9]+ s: .*"));
}

}  // namespace
}  // namespace veral3::tools
