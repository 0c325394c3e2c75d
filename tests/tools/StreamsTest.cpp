// The command as a process: what it reads from pipes, what it does when nothing more can be
// written, when a signal ends it, and when a result would take the place of something that is read.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sndfile.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <thread>

#include "SmallResources.h"
#include "SoundFiles.h"
#include "support/SmallEngine.h"
#include "tools/ChildProcess.h"

namespace veral3::tools {
namespace {

using nlohmann::json;
using test::ProcessResult;
using test::RunVeral3;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using veral3::test::ReadFile;
using veral3::test::WriteFile;

class Streams : public test::SmallResources {
 protected:
  std::vector<std::string> Align(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {"align", "--lang", "en", "--resources", Path("res")});
    return arguments;
  }

  std::size_t FilesIn(const std::string& folder) const {
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator(Path(folder)), {}));
  }
};

TEST_F(Streams, StandardInputAndPipesAreRecordings) {
  const ProcessResult file = RunVeral3(Align({"--text", "apple", Path("a.wav")}));
  ASSERT_EQ(file.status, 0) << file.err;
  ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0600), 0);
  std::string expected = file.out;
  expected.replace(expected.find(Path("a.wav")), Path("a.wav").size(), "-");
  {
    const std::jthread feeder([&] { WriteFile(Path("pipe"), ReadFile(Path("a.wav"))); });
    const ProcessResult pipe = RunVeral3(Align({"--text", "apple", "-"}), {Path("pipe")});
    EXPECT_EQ(pipe.status, 0) << pipe.err;
    EXPECT_EQ(pipe.out, expected);
  }
  {
    const std::jthread feeder([&] { WriteFile(Path("pipe"), ReadFile(Path("a.wav"))); });
    const ProcessResult named = RunVeral3(Align({"--text", "apple", Path("pipe")}));
    EXPECT_EQ(named.status, 0) << named.err;
  }
  const ProcessResult redirected = RunVeral3(Align({"--text", "apple", "-"}), {Path("a.wav")});
  EXPECT_EQ(redirected.out, expected);
  // Results beside others have a name of their own.
  const ProcessResult folder = RunVeral3(
      Align({"--text", "apple", "--output", Path("out/"), "-", Path("a.wav")}), {Path("a.wav")});
  EXPECT_EQ(folder.status, 0) << folder.err;
  EXPECT_TRUE(std::filesystem::exists(Path("out/stdin.txt")));
  EXPECT_TRUE(std::filesystem::exists(Path("out/a.txt")));
  WriteFile(Path("list.tsv"), "-\tapple\n");
  EXPECT_EQ(RunVeral3(Align({"--list", Path("list.tsv")}), {Path("a.wav")}).out, expected);

  EXPECT_THAT(RunVeral3(Align({"--text", "apple", "-", "-"})).err,
              HasSubstr("can be read only once"));
  const ProcessResult empty = RunVeral3(Align({"--text", "apple", "-"}));
  EXPECT_EQ(empty.status, 1);
  EXPECT_EQ(empty.err, "veral3: -: is empty (0 bytes)\n");
}

// Tutor and recording are each read once, however often they are looked at.
TEST_F(Streams, TutorsComeThroughPipesToo) {
  WriteWav("tutor.wav", veral3::test::NoiseBursts(3 * 22050, 9));
  const auto tutor = [&](const std::string& file) {
    return std::vector<std::string>{"tutor",      "--lang", "en",    "--resources",
                                    Path("res"),  "--text", "apple", "--date",
                                    "2026-11-21", file,     "-o",    Path("t.wav")};
  };
  const ProcessResult from_file = RunVeral3(tutor(Path("tutor.wav")));
  ASSERT_EQ(from_file.status, 0) << from_file.err;
  const std::string bytes = ReadFile(Path("t.wav"));
  ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0600), 0);
  {
    const std::jthread feeder([&] { WriteFile(Path("pipe"), ReadFile(Path("tutor.wav"))); });
    const ProcessResult result = RunVeral3(tutor("-"), {Path("pipe")});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(ReadFile(Path("t.wav")), bytes);
  }
  for (const std::string& file : {Path("tutor.wav"), Path("t.wav")}) {
    const auto grade = [&](const std::string& name, const std::string& in) {
      return RunVeral3({"grade", "--lang", "en", "--resources", Path("res"), "--text", "apple",
                        "--tutor", name, Path("tutor.wav")},
                       {in});
    };
    const ProcessResult named = grade(file, "/dev/null");
    ASSERT_EQ(named.status, 0) << named.err;
    const std::jthread feeder([&] { WriteFile(Path("pipe"), ReadFile(file)); });
    const ProcessResult piped = grade("-", Path("pipe"));
    EXPECT_EQ(piped.status, 0) << piped.err;
    std::string expected = named.out;
    expected.replace(expected.find("against " + file) + 8, file.size(), "-");
    EXPECT_EQ(piped.out, expected);
  }
}

TEST_F(Streams, AFullDiskIsNoticed) {
  const std::vector<std::vector<std::string>> commands = {
      {"--help"},
      {"--version"},
      {"align", "--help"},
      {"check-text", "--lang", "en", "--resources", Path("res"), "apple"},
      {"check-text", "--lang", "en", "--resources", Path("res"), "--format", "json", "apple"},
      {"check-text", "--lang", "zh", "--reading", "ni3", "\xE4\xBD\xA0"},
      {"tutor", "--lang", "en", "--resources", Path("res"), "--text", "apple", Path("a.wav"), "-o",
       Path("t.wav")},
      {"inspect", Path("res/EnglishFrame.model")},
      Align({"--text", "apple", Path("a.wav")})};
  for (const auto& arguments : commands) {
    const ProcessResult good = RunVeral3(arguments);
    EXPECT_EQ(good.status, 0) << arguments[0] << ": " << good.err;
    EXPECT_THAT(good.out, Not(IsEmpty()));
    const ProcessResult full = RunVeral3(arguments, {"/dev/null", "/dev/full"});
    EXPECT_EQ(full.status, 1) << arguments[0];
    EXPECT_THAT(full.err, HasSubstr("standard output cannot be written")) << arguments[0];
  }
}

// What the caller has closed is not reopened as a result, into which messages would go.
TEST_F(Streams, ClosedStreamsStayClosed) {
  const auto run = [&](const std::string& words) {
    std::string error;
    const auto child =
        ChildProcess::Start({"/bin/sh", "-c", std::string(VERAL3_COMMAND) + " " + words}, -1,
                            std::chrono::steady_clock::now() + std::chrono::minutes(5), error);
    return child ? child->Wait() : -1;
  };
  const std::string align = "align --lang en --resources " + Path("res") + " --text apple ";
  EXPECT_EQ(run(align + Path("none.wav") + " " + Path("a.wav") + " --output " + Path("out.txt") +
                " 0<&- >&- 2>&-"),
            1);
  EXPECT_THAT(ReadFile(Path("out.txt")), testing::StartsWith(Path("a.wav")));
  EXPECT_EQ(run("--version >&-"), 1);
}

// What a signal does to this process, and to what it starts, for as long as the object lives: a
// test may itself be started with signals ignored, as by nohup.
class OnSignal {
 public:
  OnSignal(int signal, void (*handler)(int)) : m_signal(signal) {
    struct sigaction action {};
    action.sa_handler = handler;
    sigaction(signal, &action, &m_old);
  }
  ~OnSignal() { sigaction(m_signal, &m_old, nullptr); }
  OnSignal(const OnSignal&) = delete;
  OnSignal& operator=(const OnSignal&) = delete;

 private:
  int m_signal;
  struct sigaction m_old {};
};

// The command waits for its recording, a pipe that nobody writes to, with its result begun.
TEST_F(Streams, ASignalLeavesNothingHalfWritten) {
  std::filesystem::create_directory(Path("out"));
  WriteFile(Path("out/a.txt"), "old");
  ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0600), 0);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    const OnSignal usual(signal, SIG_DFL);
    const pid_t process = test::StartVeral3(
        Align({"--text", "apple", "--output", Path("out/a.txt"), Path("pipe")}), {});
    while (FilesIn("out") < 2) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    ASSERT_EQ(kill(process, signal), 0);
    const int status = test::WaitFor(process);
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), signal);
    EXPECT_EQ(FilesIn("out"), 1u);
    EXPECT_EQ(ReadFile(Path("out/a.txt")), "old");
  }
}

// PATH for as long as the object lives.
class SearchPath {
 public:
  explicit SearchPath(const std::string& path) : m_old(getenv("PATH")) {
    setenv("PATH", path.c_str(), 1);
  }
  ~SearchPath() { setenv("PATH", m_old.c_str(), 1); }
  SearchPath(const SearchPath&) = delete;
  SearchPath& operator=(const SearchPath&) = delete;

 private:
  std::string m_old;
};

// The head of an MPEG-4 file.
const std::string kBoxes = std::string(
    "\0\0\0\x18"
    "ftypM4A \0\0\0\0M4A mp42",
    24);

TEST_F(Streams, WithoutFfmpegTheRemedyIsNamed) {
  WriteFile(Path("a.m4a"), kBoxes);
  const SearchPath none(Path("none"));
  const ProcessResult result = RunVeral3(Align({"--text", "apple", Path("a.m4a")}));
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr("ffmpeg -i RECORDING recording.wav"));
}

TEST_F(Streams, ASignalEndsFfmpegToo) {
  WriteFile(Path("a.m4a"), kBoxes);
  std::filesystem::create_directory(Path("bin"));
  WriteFile(Path("bin/ffmpeg"), "#!/bin/sh\nexec 3>" + Path("pipe") + "\nsleep 1000\nsleep 1000\n");
  ASSERT_EQ(chmod(Path("bin/ffmpeg").c_str(), 0700), 0);
  ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0600), 0);
  const SearchPath fake(Path("bin") + ":" + getenv("PATH"));
  const OnSignal usual(SIGTERM, SIG_DFL);
  const pid_t process = test::StartVeral3(Align({"--text", "apple", Path("a.m4a")}), {});
  // Opens when the program runs, ends when nobody is left of it.
  const int pipe = open(Path("pipe").c_str(), O_RDONLY);
  ASSERT_GE(pipe, 0);
  ASSERT_EQ(kill(process, SIGTERM), 0);
  EXPECT_TRUE(WIFSIGNALED(test::WaitFor(process)));
  pollfd file = {pipe, POLLIN, 0};
  EXPECT_EQ(poll(&file, 1, 60000), 1);
  close(pipe);
}

TEST_F(Streams, SignalsThatTheCallerIgnoresStayIgnored) {
  std::filesystem::create_directory(Path("out"));
  ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0600), 0);
  const OnSignal ignored(SIGHUP, SIG_IGN);
  const pid_t process = test::StartVeral3(
      Align({"--text", "apple", "--output", Path("out/a.txt"), Path("pipe")}), {});
  while (FilesIn("out") < 1) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  ASSERT_EQ(kill(process, SIGHUP), 0);
  WriteFile(Path("pipe"), ReadFile(Path("a.wav")));
  const int status = test::WaitFor(process);
  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
  EXPECT_EQ(FilesIn("out"), 1u);
}

TEST_F(Streams, NamesMayBeAsLongAsNamesCanBe) {
  const std::string name(251, 'n');
  for (const std::string& path : {name + ".txt", std::string(255, 'x')}) {
    const ProcessResult result =
        RunVeral3(Align({"--text", "apple", "--output", Path(path), Path("a.wav")}));
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(ReadFile(Path(path)), HasSubstr("APPLE"));
  }
  WriteWav(name + ".wav", veral3::test::NoiseBursts(22050, 7));
  const ProcessResult folder =
      RunVeral3(Align({"--text", "apple", "--output", Path("out/"), Path(name + ".wav")}));
  EXPECT_EQ(folder.status, 0) << folder.err;
  EXPECT_TRUE(std::filesystem::exists(Path("out/" + name + ".txt")));
}

TEST_F(Streams, NoResultTakesThePlaceOfAnInput) {
  WriteWav("b.wav", veral3::test::NoiseBursts(22050, 8));
  WriteFile(Path("text.txt"), "apple\n");
  WriteFile(Path("list.tsv"), "a.wav\tapple\n");
  WriteWav("tutor.txt", veral3::test::NoiseBursts(22050, 9));
  std::filesystem::create_symlink("a.wav", Path("link.wav"));
  std::filesystem::create_directory(Path("out"));
  std::filesystem::create_hard_link(Path("a.wav"), Path("out/b.txt"));
  const auto files = [&] {
    std::string all;
    for (const char* name : {"a.wav", "b.wav", "text.txt", "list.tsv", "tutor.txt", "out/b.txt"}) {
      all += ReadFile(Path(name));
    }
    return all;
  };
  const std::string before = files();
  const std::string a = Path("a.wav");
  const std::string b = Path("b.wav");
  const std::vector<std::vector<std::string>> refused = {
      {"align", "--text", "apple", "--output", Path("link.wav"), b, a},
      {"align", "--text", "apple", "--output", Path("out"), b, a},
      {"align", "--text-file", Path("text.txt"), "--output", Path("text.txt"), a},
      {"align", "--list", Path("list.tsv"), "--output", Path("list.tsv")},
      {"align", "--list", Path("list.tsv"), "--output", a},
      {"analyze", "--text-file", Path("text.txt"), "--output", Path("text.txt"), a},
      {"annotate", "--output", Path("link.wav"), b, a},
      {"grade", "--text", "apple", "--tutor", Path("tutor.txt"), "--output", Path("link.wav"), b,
       a},
      {"grade", "--text-file", Path("text.txt"), "--tutor", b, "--report", Path("text.txt"), a},
      {"grade", "--list", Path("list.tsv"), "--tutor", b, "--report", Path("list.tsv")},
      {"grade", "--text", "apple", "--tutor", b, "--report", Path("out/b.txt"), a},
      {"grade", "--text", "apple", "--tutor", b, "--report", Path("new/a.txt"), "--output",
       Path("new/"), a},
      {"tutor", "--text", "apple", a, "-o", Path("link.wav")},
  };
  for (std::vector<std::string> arguments : refused) {
    arguments.insert(arguments.begin() + 1, {"--lang", "en", "--resources", Path("res")});
    const ProcessResult result = RunVeral3(arguments);
    EXPECT_EQ(result.status, 2) << testing::PrintToString(arguments);
    EXPECT_THAT(result.err, testing::ContainsRegex("would (overwrite|be the same file)"))
        << testing::PrintToString(arguments);
    EXPECT_TRUE(files() == before) << testing::PrintToString(arguments);
  }
  const ProcessResult denoise = RunVeral3({"denoise", a, Path("link.wav")});
  EXPECT_EQ(denoise.status, 2);
  EXPECT_EQ(denoise.err, "veral3: the result " + Path("link.wav") +
                             " would overwrite the recording " + a + "\n");
  EXPECT_FALSE(std::filesystem::exists(Path("new")));
}

TEST_F(Streams, TextFilesHaveALimit) {
  for (const char* option : {"--text-file", "--list"}) {
    std::vector<std::string> arguments = Align({option, "/dev/zero"});
    if (option == std::string("--text-file")) arguments.push_back(Path("a.wav"));
    const ProcessResult result = RunVeral3(arguments);
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, HasSubstr("/dev/zero is larger than 16 MiB"));
  }
  const ProcessResult check = RunVeral3(
      {"check-text", "--lang", "en", "--resources", Path("res"), "--text-file", "/dev/zero"});
  EXPECT_EQ(check.status, 2);
  EXPECT_THAT(check.err, HasSubstr("/dev/zero: is larger than 16 MiB"));
}

// The decoder of MP3 files has a mouth of its own.
TEST_F(Streams, Mp3FilesAreReadWithoutALine) {
  std::vector<double> values = test::Sine(440.0, 0.5, 2.0, 22050, 1);
  test::WriteSoundFile(Path("a.mp3"), values, 22050, 1, SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III);
  const std::string mp3 = ReadFile(Path("a.mp3"));
  // A tag that is cut off, and one with a frame that makes no sense.
  std::string damaged = mp3;
  damaged.replace(damaged.size() / 2, 300, std::string(300, '\x11'));
  WriteFile(Path("damaged.mp3"), damaged);
  WriteFile(Path("tag.mp3"), std::string("ID3\x03\0\0\0\0\0\x14", 10) +
                                 std::string("TIT2\x7F\x7F\x7F\x7F\xFF\xFF", 10) +
                                 std::string(10, '\xFF') + mp3);
  for (const char* command : {"annotate", "analyze"}) {
    std::vector<std::string> arguments = {command, "--lang", "en", "--resources", Path("res")};
    if (command == std::string("analyze")) arguments.insert(arguments.end(), {"--text", "apple"});
    for (const char* name : {"a.mp3", "damaged.mp3", "tag.mp3"}) {
      arguments.push_back(Path(name));
      const ProcessResult result = RunVeral3(arguments);
      std::istringstream lines(result.err);
      for (std::string line; std::getline(lines, line);) {
        EXPECT_TRUE(line.starts_with("veral3: ")) << line;
      }
      EXPECT_EQ(result.status, name == std::string("damaged.mp3") ? 1 : 0) << name << result.err;
      arguments.pop_back();
    }
  }
}

}  // namespace
}  // namespace veral3::tools
