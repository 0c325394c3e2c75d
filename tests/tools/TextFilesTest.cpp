#include "tools/TextFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/Vectors.h"

namespace veral3::tools {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using veral3::test::ScratchFolder;
using veral3::test::WriteFile;

class TextFiles : public testing::Test {
 protected:
  std::filesystem::path Write(const std::string& bytes) {
    const auto path = m_folder.Path() / "text.txt";
    WriteFile(path, bytes);
    return path;
  }
  const ScratchFolder m_folder;
};

TEST_F(TextFiles, SentencesALine) {
  const auto sentences = ReadSentences(Write("Good morning\nGood evening\n"));
  ASSERT_TRUE(sentences) << sentences.Error();
  EXPECT_THAT(*sentences, ElementsAre("Good morning", "Good evening"));
}

TEST_F(TextFiles, ByteOrderMarkLineEndsAndBlankLinesDoNoHarm) {
  const auto sentences = ReadSentences(Write("\xEF\xBB\xBF  Good morning \r\n\r\n \t\r\nGood day"));
  ASSERT_TRUE(sentences) << sentences.Error();
  EXPECT_THAT(*sentences, ElementsAre("Good morning", "Good day"));
}

TEST_F(TextFiles, EightSentencesAreTheMost) {
  EXPECT_TRUE(ReadSentences(Write("a\nb\nc\nd\ne\nf\ng\nh\n")));
  EXPECT_THAT(ReadSentences(Write("a\nb\nc\nd\ne\nf\ng\nh\ni\n")).Error(),
              HasSubstr("more than 8"));
}

TEST_F(TextFiles, BadFilesSayWhy) {
  EXPECT_THAT(ReadSentences(Write("")).Error(), HasSubstr("has no sentence"));
  EXPECT_THAT(ReadSentences(Write("ok\n\xFF\xFEok\n")).Error(),
              HasSubstr("not UTF-8 in line 2; save it as UTF-8"));
  EXPECT_THAT(ReadSentences(Write(std::string("a\0b", 3))).Error(), HasSubstr("not UTF-8"));
  EXPECT_EQ(ReadSentences(m_folder.Path() / "none").Error(), "does not exist");
  EXPECT_EQ(ReadSentences(m_folder.Path()).Error(), "is a folder");
}

TEST_F(TextFiles, ListPathsAreBelowTheList) {
  const auto list = ReadList(Write("one.wav\tGood morning\r\n\n /abs/two.wav \t Hi \t\tHo\n"));
  ASSERT_TRUE(list) << list.Error();
  ASSERT_EQ(list->size(), 2u);
  EXPECT_EQ((*list)[0].audio, (m_folder.Path() / "one.wav").string());
  EXPECT_THAT((*list)[0].sentences, ElementsAre("Good morning"));
  EXPECT_EQ((*list)[0].line, 1);
  EXPECT_EQ((*list)[1].audio, "/abs/two.wav");
  EXPECT_THAT((*list)[1].sentences, ElementsAre("Hi", "Ho"));
  EXPECT_EQ((*list)[1].line, 3);
}

TEST_F(TextFiles, BadListsSayWhere) {
  EXPECT_THAT(ReadList(Write("a.wav\thi\nb.wav hi\n")).Error(), HasSubstr("no tab in line 2"));
  EXPECT_THAT(ReadList(Write("\thi\n")).Error(), HasSubstr("no path before the tab in line 1"));
  EXPECT_THAT(ReadList(Write("a.wav\t \n")).Error(), HasSubstr("no sentence"));
  EXPECT_THAT(ReadList(Write("a.wav\ta\tb\tc\td\te\tf\tg\th\ti\n")).Error(),
              HasSubstr("more than 8 sentences in line 1"));
  EXPECT_THAT(ReadList(Write("\n\n")).Error(), HasSubstr("empty list"));
}

TEST(Utf8, ZeroBytesSurrogatesAndCutSequencesAreBad) {
  EXPECT_TRUE(IsUtf8(""));
  EXPECT_TRUE(IsUtf8("caf\xC3\xA9 \xE4\xBD\xA0 \xF0\x9F\x98\x80"));
  EXPECT_FALSE(IsUtf8("\xC3"));
  EXPECT_FALSE(IsUtf8("\xED\xA0\x80"));
  EXPECT_FALSE(IsUtf8("\xC0\x80"));
  EXPECT_FALSE(IsUtf8(std::string_view("\0", 1)));
}

}  // namespace
}  // namespace veral3::tools
