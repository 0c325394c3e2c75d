#include "tools/RunFiles.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "support/Vectors.h"

namespace veral3::tools {
namespace {

using veral3::test::ScratchFolder;
using veral3::test::WriteFile;

class RunFiles : public testing::Test {
 protected:
  RunFiles() { WriteFile(Path("a.wav"), "sound"); }
  std::string Path(const std::string& name) const { return m_folder.Path() / name; }

  const ScratchFolder m_folder;
};

TEST_F(RunFiles, AnInputIsFoundByEveryNameOfIt) {
  const std::string input = Path("a.wav");
  std::filesystem::create_directory(Path("sub"));
  std::filesystem::create_symlink("a.wav", Path("link"));
  std::filesystem::create_directory_symlink(".", Path("here"));
  std::filesystem::create_hard_link(input, Path("hard"));
  for (const char* name : {"a.wav", "./a.wav", "sub/../a.wav", "link", "here/a.wav", "hard"}) {
    EXPECT_EQ(RunFilesProblem({{"the recording", input}}, {{"the page", Path(name)}}),
              "the page " + Path(name) + " would overwrite the recording " + input)
        << name;
    EXPECT_EQ(RunFilesProblem({{"the list", Path(name)}}, {{"the result", input}}),
              "the result " + input + " would overwrite the list " + Path(name))
        << name;
  }
  WriteFile(Path("b.wav"), "sound");
  EXPECT_EQ(RunFilesProblem({{"the recording", input}},
                            {{"the result", Path("b.wav")}, {"the page", Path("sub/a.wav")}}),
            "");
}

TEST_F(RunFiles, TwoResultsAreNotOneFile) {
  std::filesystem::create_directory_symlink(".", Path("here"));
  for (const char* name : {"new", "./new", "here/new", "none/../new"}) {
    EXPECT_EQ(
        RunFilesProblem({}, {{"the result", Path("new")}, {"the page", Path(name)}}),
        "the result " + Path("new") + " and the page " + Path(name) + " would be the same file");
  }
  EXPECT_EQ(RunFilesProblem({}, {{"the result", Path("none/x")}, {"the page", Path("none/y")}}),
            "");
  EXPECT_EQ(RunFilesProblem({}, {{"the result", Path("a.wav")}, {"the page", Path("./a.wav")}}),
            "the result " + Path("a.wav") + " and the page " + Path("./a.wav") +
                " would be the same file");
}

TEST_F(RunFiles, WhatHoldsNothingIsNotOverwritten) {
  EXPECT_EQ(RunFilesProblem({{"the recording", "/dev/null"}},
                            {{"the result", "/dev/null"}, {"the page", "/dev/null"}}),
            "");
}

TEST_F(RunFiles, StreamsAreReadOnce) {
  ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0600), 0);
  std::filesystem::create_symlink("pipe", Path("link"));
  EXPECT_EQ(RunFilesProblem({{"the tutor", Path("pipe")}, {"the recording", Path("link")}}, {}),
            "the tutor " + Path("pipe") + " and the recording " + Path("link") +
                " are one stream, which can be read only once");
  EXPECT_EQ(RunFilesProblem({{"the tutor", "-"}, {"the recording", "-"}}, {}),
            "the tutor from standard input and the recording from standard input are one stream, "
            "which can be read only once");
  const std::string a = Path("a.wav");
  EXPECT_EQ(RunFilesProblem({{"the tutor", a}, {"the recording", a}, {"the recording", a}}, {}),
            "");
}

}  // namespace
}  // namespace veral3::tools
