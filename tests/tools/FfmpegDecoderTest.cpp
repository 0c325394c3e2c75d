// Recordings that ffmpeg decodes, and programs of its name that do not.
#include "tools/FfmpegDecoder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sndfile.h>
#include <sys/stat.h>

#include <cmath>
#include <numbers>

#include "SoundFiles.h"
#include "support/Vectors.h"
#include "tools/AudioFile.h"
#include "tools/ChildProcess.h"

namespace veral3::tools {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;
using veral3::test::ReadFile;
using veral3::test::WriteFile;

class Ffmpeg : public testing::Test {
 protected:
  Ffmpeg() {
    test::WriteSoundFile(Path("sine.wav"), test::Sine(440.0, 0.5, 3.0, 44100, 2), 44100, 2,
                         SF_FORMAT_WAV | SF_FORMAT_PCM_16);
  }

  std::string Path(const std::string& name) const { return m_folder.Path() / name; }

  // Has ffmpeg itself make a recording of three seconds.
  void Encode(const std::string& name, const std::vector<std::string>& options) const {
    std::vector<std::string> words = {"ffmpeg", "-nostdin", "-i", Path("sine.wav")};
    words.insert(words.end(), options.begin(), options.end());
    words.push_back("file:" + Path(name));
    std::string error;
    const auto child = ChildProcess::Start(
        words, -1, std::chrono::steady_clock::now() + std::chrono::minutes(5), error);
    ASSERT_TRUE(child) << "no ffmpeg: scripts/install-packages test";
    ASSERT_EQ(child->Wait(), 0) << child->Messages();
  }

  // A program of the name of ffmpeg.
  FfmpegOptions Fake(const std::string& script,
                     std::chrono::milliseconds limit = std::chrono::minutes(5)) const {
    WriteFile(Path("fake"), "#!/bin/sh\n" + script + "\n");
    EXPECT_EQ(chmod(Path("fake").c_str(), 0700), 0);
    return {Path("fake"), limit};
  }

  std::string ErrorOf(const std::string& name, const FfmpegOptions& options = {}) const {
    const Result<InputFile> file = InputFile::Open(Path(name));
    if (!file) return file.Error();
    const Result<Recording> recording = ReadAudio(*file, options);
    return recording ? "read" : recording.Error();
  }

  // Something that looks like an MPEG-4 file.
  void WriteBoxes(const std::string& name) const {
    WriteFile(Path(name), std::string("\0\0\0\x18"
                                      "ftypM4A \0\0\0\0M4A mp42",
                                      24) +
                              std::string(4096, 'x'));
  }

  const veral3::test::ScratchFolder m_folder;
};

TEST_F(Ffmpeg, ReadsWhatTelephonesAndBrowsersMake) {
  using Options = std::vector<std::string>;
  for (const auto& [name, options] :
       {std::pair{"a.m4a", Options{"-c:a", "aac"}}, std::pair{"a.mp4", Options{"-c:a", "aac"}},
        std::pair{"a.webm", Options{"-c:a", "libopus"}},
        std::pair{"a.mka", Options{"-c:a", "libvorbis"}},
        std::pair{"a.wma", Options{"-c:a", "wmav2"}}, std::pair{"a.aac", Options{"-c:a", "aac"}},
        std::pair{"stream.mp4", Options{"-c:a", "aac", "-movflags", "frag_keyframe+empty_moov"}}}) {
    Encode(name, options);
    const auto recording = ReadAudioFile(Path(name));
    ASSERT_TRUE(recording) << name << ": " << recording.Error();
    // Codecs add up to a frame or two at the ends.
    EXPECT_NEAR(static_cast<double>(recording->samples.size()), 3 * 22050, 2500) << name;
    EXPECT_EQ(recording->source_channels, 2) << name;
    double power = 0.0;
    for (std::size_t i = 22050; i < 44100; ++i) {
      power += std::pow(recording->samples[i] / 32768.0, 2.0) / 22050;
    }
    EXPECT_NEAR(power, 0.5 * 0.5 / 2, 0.01) << name;
  }
}

TEST_F(Ffmpeg, NamesDoNothing) {
  Encode("a.m4a", {"-c:a", "aac"});
  for (const char* name : {"-i", "-version", "http:a.m4a", "concat:x|y", "pipe:0", "%03d.m4a",
                           "a b;touch c`$(d)\n.m4a"}) {
    std::filesystem::copy_file(Path("a.m4a"), Path(name));
    EXPECT_EQ(ErrorOf(name), "read") << name;
  }
  std::filesystem::create_directory(Path("http:"));
  std::filesystem::copy_file(Path("a.m4a"), Path("http://x.m4a"));
  EXPECT_EQ(ErrorOf("http://x.m4a"), "read");
}

// A list of other files is none of the containers, whatever its first bytes look like.
TEST_F(Ffmpeg, NoOtherFileIsOpened) {
  Encode("a.m4a", {"-c:a", "aac"});
  WriteFile(Path("list.m4a"), "ffconcat version 1.0\nfile a.m4a\n");
  EXPECT_THAT(ErrorOf("list.m4a"), StartsWith("cannot be read as audio: "));
  WriteFile(Path("list.m3u8"), "#EXTM3U\n#EXT-X-TARGETDURATION:3\n#EXTINF:3,\n" + Path("a.m4a") +
                                   "\n#EXT-X-ENDLIST\n");
  EXPECT_THAT(ErrorOf("list.m3u8"), StartsWith("cannot be read as audio: "));
}

TEST_F(Ffmpeg, CutAndDamagedFilesAreRefused) {
  using Options = std::vector<std::string>;
  for (const auto& [name, options] :
       {std::pair{"a.mp4", Options{"-c:a", "aac", "-movflags", "faststart"}},
        std::pair{"a.webm", Options{"-c:a", "libopus"}},
        std::pair{"a.wma", Options{"-c:a", "wmav2"}}}) {
    Encode(name, options);
    const std::string bytes = ReadFile(Path(name));
    WriteFile(Path("cut"), bytes.substr(0, bytes.size() / 2));
    EXPECT_THAT(ErrorOf("cut"), MatchesRegex("(ends after [012]\\.[0-9]+ s of 3\\.[0-9]+ s: the "
                                             "rest is missing|cannot be read after [012]\\.[0-9]+ "
                                             "s: ffmpeg: .*)"))
        << name;
  }
  WriteBoxes("boxes.m4a");
  EXPECT_THAT(ErrorOf("boxes.m4a"),
              MatchesRegex("looks like MPEG-4 \\(m4a, mp4\\) and cannot be read: ffmpeg: .+"));
}

TEST_F(Ffmpeg, WithoutItTheRemedyIsNamed) {
  WriteBoxes("a.m4a");
  const FfmpegOptions none = {Path("none"), std::chrono::minutes(1)};
  EXPECT_EQ(ErrorOf("a.m4a", none),
            "looks like MPEG-4 (m4a, mp4), which takes the program ffmpeg to read, and there is "
            "none; install it, or convert the recording where there is one: "
            "ffmpeg -i RECORDING recording.wav");
  WriteFile(Path("fake"), "#!/bin/sh\n");
  EXPECT_THAT(ErrorOf("a.m4a", {Path("fake"), std::chrono::minutes(1)}),
              HasSubstr("there is none"));
}

TEST_F(Ffmpeg, OneThatHangsIsStopped) {
  WriteBoxes("a.m4a");
  const std::chrono::milliseconds limit(200);
  // With a program of its own that holds on to its streams.
  const std::string mark = Path("mark");
  EXPECT_THAT(ErrorOf("a.m4a", Fake("sleep 1000 & sleep 1000; touch " + mark, limit)),
              HasSubstr("ffmpeg did not come to an end and was stopped"));
  // In the middle of the sound: the head of an AU file at 22050 Hz, mono, and a frame.
  const std::string sound =
      "printf '.snd\\000\\000\\000\\030\\377\\377\\377\\377\\000\\000\\000\\006\\000\\000\\126\\042"
      "\\000\\000\\000\\001\\000\\000\\000\\000'; ";
  EXPECT_THAT(ErrorOf("a.m4a", Fake(sound + "sleep 1000", limit)),
              HasSubstr("ffmpeg did not come to an end and was stopped"));
  // After the sound.
  EXPECT_THAT(ErrorOf("a.m4a", Fake(sound + "exec >&- 2>&-; sleep 1000", limit)),
              HasSubstr("ffmpeg did not come to an end and was stopped"));
  EXPECT_FALSE(std::filesystem::exists(mark));
}

TEST_F(Ffmpeg, OneThatFailsIsNoRecording) {
  WriteBoxes("a.m4a");
  EXPECT_EQ(ErrorOf("a.m4a", Fake("echo 'first' >&2; printf 'no\\033[2Jpe\\n' >&2; exit 1")),
            "looks like MPEG-4 (m4a, mp4) and cannot be read: ffmpeg: no?[2Jpe");
  EXPECT_EQ(ErrorOf("a.m4a", Fake("kill -9 $$")),
            "looks like MPEG-4 (m4a, mp4) and cannot be read: ffmpeg failed");
  EXPECT_EQ(ErrorOf("a.m4a", Fake("exit 0")),
            "looks like MPEG-4 (m4a, mp4) and cannot be read: ffmpeg gives something else than "
            "sound");
}

TEST_F(Ffmpeg, OneThatPrintsForEverIsStopped) {
  WriteBoxes("a.m4a");
  EXPECT_THAT(ErrorOf("a.m4a", Fake("exec yes")), HasSubstr("gives something else than sound"));
  EXPECT_THAT(ErrorOf("a.m4a", Fake("exec yes >&2")),
              HasSubstr("ffmpeg did not come to an end and was stopped"));
  // Silence at 1000 Hz without end is more than 15 minutes.
  EXPECT_THAT(
      ErrorOf("a.m4a",
              Fake("printf '.snd\\000\\000\\000\\030\\377\\377\\377\\377\\000\\000\\000\\006\\000"
                   "\\000\\003\\350\\000\\000\\000\\001'; exec cat /dev/zero")),
      StartsWith("is longer than 15 minutes"));
}

}  // namespace
}  // namespace veral3::tools
