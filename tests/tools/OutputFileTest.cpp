#include "tools/OutputFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/Vectors.h"

namespace veral3::tools {
namespace {

using testing::HasSubstr;
using veral3::test::ReadFile;
using veral3::test::ScratchFolder;
using veral3::test::WriteFile;

std::size_t FilesIn(const std::filesystem::path& folder) {
  return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder), {}));
}

TEST(OutputFile, AppearsWhenFinished) {
  const ScratchFolder folder;
  const auto path = folder.Path() / "out.txt";
  OutputFile file(path);
  file.Write("one ");
  file.Write("two");
  EXPECT_FALSE(std::filesystem::exists(path));
  EXPECT_EQ(file.Finish(), "");
  EXPECT_EQ(ReadFile(path), "one two");
  EXPECT_EQ(FilesIn(folder.Path()), 1u);
}

TEST(OutputFile, UnfinishedLeavesTheOldOne) {
  const ScratchFolder folder;
  const auto path = folder.Path() / "out.txt";
  WriteFile(path, "old");
  {
    OutputFile file(path);
    file.Write("new");
  }
  EXPECT_EQ(ReadFile(path), "old");
  EXPECT_EQ(FilesIn(folder.Path()), 1u);
}

TEST(OutputFile, KeepsRightsAndLinks) {
  const ScratchFolder folder;
  const auto path = folder.Path() / "out.txt";
  WriteFile(path, "old");
  std::filesystem::permissions(path, std::filesystem::perms(0640));
  const auto link = folder.Path() / "link.txt";
  std::filesystem::create_symlink("out.txt", link);
  OutputFile file(link);
  file.Write("new");
  EXPECT_EQ(file.Finish(), "");
  EXPECT_TRUE(std::filesystem::is_symlink(link));
  EXPECT_EQ(ReadFile(path), "new");
  EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms(0640));
}

TEST(OutputFile, DevicesAreWrittenAsTheyStand) {
  OutputFile null("/dev/null");
  null.Write("text");
  EXPECT_EQ(null.Finish(), "");
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));

  OutputFile full("/dev/full");
  full.Write("text");
  EXPECT_THAT(full.Finish(), HasSubstr("cannot be written: No space left on device"));
}

TEST(OutputFile, NamesMayHave255Bytes) {
  const ScratchFolder folder;
  for (const int length : {240, 249, 250, 255}) {
    const auto path = folder.Path() / std::string(static_cast<std::size_t>(length), 'n');
    OutputFile file(path);
    file.Write("text");
    EXPECT_EQ(file.Finish(), "") << length;
    EXPECT_EQ(ReadFile(path), "text");
  }
  EXPECT_EQ(FilesIn(folder.Path()), 4u);
}

TEST(OutputFile, ImpossiblePlaceIsKnownAtOnce) {
  const ScratchFolder folder;
  OutputFile too_long(folder.Path() / std::string(256, 'n'));
  EXPECT_EQ(too_long.Error(), "cannot be written: File name too long");
  EXPECT_EQ(FilesIn(folder.Path()), 0u);
  OutputFile file(folder.Path() / "none" / "out.txt");
  EXPECT_THAT(file.Error(), HasSubstr("cannot be written: No such file"));
  file.Write("text");
  EXPECT_NE(file.Finish(), "");
}

}  // namespace
}  // namespace veral3::tools
