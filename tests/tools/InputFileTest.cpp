#include "tools/InputFile.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <thread>
#include <utility>

#include "support/Vectors.h"

namespace veral3::tools {
namespace {

using testing::HasSubstr;
using veral3::test::ScratchFolder;
using veral3::test::WriteFile;

// Gives `bytes` to a pipe from a thread of its own.
class Feeder {
 public:
  Feeder(std::string path, std::string bytes)
      : m_thread([path = std::move(path), bytes = std::move(bytes)] { WriteFile(path, bytes); }) {}

 private:
  std::jthread m_thread;
};

TEST(InputFile, ARegularFileIsReadAnywhere) {
  const ScratchFolder folder;
  WriteFile(folder.Path() / "a", "0123456789");
  Result<InputFile> file = InputFile::Open(folder.Path() / "a");
  ASSERT_TRUE(file) << file.Error();
  EXPECT_EQ(file->Size(), 10u);
  EXPECT_EQ(file->Bytes(7, 100), "789");
  EXPECT_EQ(file->Bytes(2, 3), "234");
  EXPECT_EQ(file->Bytes(10, 3), "");
  EXPECT_EQ(file->Path(), (folder.Path() / "a").string());
  const InputFile moved = std::move(*file);
  EXPECT_EQ(moved.Bytes(0, 2), "01");
}

TEST(InputFile, APipeIsReadToItsEndAndThenAnywhere) {
  const ScratchFolder folder;
  const std::string path = folder.Path() / "pipe";
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  std::string bytes;
  for (int i = 0; i < 100000; ++i) bytes += std::to_string(i) + "\n";
  const Feeder feeder(path, bytes);
  const Result<InputFile> file = InputFile::Open(path);
  ASSERT_TRUE(file) << file.Error();
  EXPECT_EQ(file->Size(), bytes.size());
  EXPECT_EQ(file->Bytes(0, bytes.size() + 1), bytes);
  EXPECT_EQ(file->Bytes(bytes.size() - 6, 6), "99999\n");
  EXPECT_EQ(file->Path(), "");
}

TEST(InputFile, WhatCannotBeReadSaysWhy) {
  const ScratchFolder folder;
  const auto error = [](const std::filesystem::path& path) {
    const Result<InputFile> file = InputFile::Open(path);
    return file ? "read" : file.Error();
  };
  EXPECT_EQ(error(folder.Path() / "none"), "does not exist");
  EXPECT_EQ(error(folder.Path()), "is a folder");
  EXPECT_EQ(error("/dev/null"), "is empty (0 bytes)");
  EXPECT_EQ(error("/dev/zero"),
            "gives more than 512 MiB, the most that is read from a pipe or device");
  WriteFile(folder.Path() / "a", "");
  EXPECT_EQ(error(folder.Path() / "a"), "is empty (0 bytes)");
  EXPECT_THAT(error(folder.Path() / "a" / "b"), HasSubstr("cannot be opened: Not a directory"));
  const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
  ASSERT_GE(terminal, 0);
  ASSERT_EQ(grantpt(terminal), 0);
  ASSERT_EQ(unlockpt(terminal), 0);
  EXPECT_EQ(error(ptsname(terminal)), "is a terminal");
  close(terminal);
}

}  // namespace
}  // namespace veral3::tools
