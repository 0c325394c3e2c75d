#include "training/corpus/RecordingFolder.h"

#include <gmock/gmock.h>

#include <fstream>
#include <stdexcept>

namespace veral3::training {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class RecordingFolderTest : public testing::Test {
 protected:
  RecordingFolderTest() {
    std::filesystem::remove_all(m_folder);
    std::filesystem::create_directories(m_folder);
  }
  ~RecordingFolderTest() override { std::filesystem::remove_all(m_folder); }

  void Write(const std::string& name, const std::string& content) {
    const std::filesystem::path path = m_folder / name;
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path) << content;
  }

  const std::filesystem::path m_folder =
      std::filesystem::path(testing::TempDir()) / "veral3_recordings";
};

TEST_F(RecordingFolderTest, PairsWithTheirFolderAsSpeaker) {
  Write("b.wav", "");
  Write("b.txt", " Good morning\r\n");
  Write("anna/a.flac", "");
  Write("anna/a.txt", "Hello");
  Write("c.wav", "");
  Write("notes.txt", "no recording");
  const RecordingFolder folder = ReadRecordingFolder(m_folder);
  ASSERT_EQ(folder.entries.size(), 2u);
  EXPECT_EQ(folder.entries[0].id, "anna/a");
  EXPECT_EQ(folder.entries[0].speaker, "anna");
  EXPECT_EQ(folder.entries[0].text, "Hello");
  EXPECT_EQ(folder.entries[1].id, "b");
  EXPECT_EQ(folder.entries[1].speaker, "");
  EXPECT_EQ(folder.entries[1].text, "Good morning");
  EXPECT_THAT(folder.refused, ElementsAre("c: there is no c.txt"));
}

TEST_F(RecordingFolderTest, KaldiWithoutSegments) {
  Write("data/one.wav", "");
  Write("wav.scp", "u1 data/one.wav\nu2 sox x.wav -t wav - |\nu3 " +
                       (m_folder / "data/one.wav").string() + "\n");
  Write("text", "u1 good morning\nu2 hello\nu3 again\nu4 lost\n");
  Write("utt2spk", "u1 anna\nu3 bert\n");
  const RecordingFolder folder = ReadRecordingFolder(m_folder);
  ASSERT_EQ(folder.entries.size(), 2u);
  EXPECT_EQ(folder.entries[0].audio, m_folder / "data/one.wav");
  EXPECT_EQ(folder.entries[0].text, "good morning");
  EXPECT_EQ(folder.entries[0].speaker, "anna");
  EXPECT_FALSE(folder.entries[0].end.has_value());
  EXPECT_EQ(folder.entries[1].speaker, "bert");
  EXPECT_THAT(folder.refused, ElementsAre(HasSubstr("u2: its wav.scp entry is a command"),
                                          "u4: wav.scp has no recording u4"));
}

TEST_F(RecordingFolderTest, KaldiWithSegments) {
  Write("one.wav", "");
  Write("wav.scp", "rec one.wav\n");
  Write("text", "u1 first\nu2 second\nu3 third\nu4 fourth\n");
  Write("segments", "u1 rec 0.5 1.25\nu2 rec 2 -1\nu3 rec x y\n");
  const RecordingFolder folder = ReadRecordingFolder(m_folder);
  ASSERT_EQ(folder.entries.size(), 2u);
  EXPECT_DOUBLE_EQ(folder.entries[0].begin, 0.5);
  EXPECT_DOUBLE_EQ(folder.entries[0].end.value(), 1.25);
  EXPECT_DOUBLE_EQ(folder.entries[1].begin, 2.0);
  EXPECT_FALSE(folder.entries[1].end.has_value());
  EXPECT_EQ(folder.refused.size(), 2u);
}

TEST_F(RecordingFolderTest, EmptyAndMissingFolders) {
  EXPECT_THAT(ReadRecordingFolder(m_folder).entries, IsEmpty());
  EXPECT_THROW(ReadRecordingFolder(m_folder / "nothing"), std::runtime_error);
}

}  // namespace
}  // namespace veral3::training
