#include "training/corpus/CorpusFile.h"

#include <gmock/gmock.h>

#include <fstream>

#include "training/corpus/PhonemeBalance.h"
#include "training/features/FeatureFile.h"

namespace veral3::training {
namespace {

// A path that nothing stands at.
std::filesystem::path Scratch(const std::string& name) {
  const auto path = std::filesystem::path(::testing::TempDir()) / ("veral3_" + name);
  std::filesystem::remove_all(path);
  return path;
}

TEST(CorpusFile, GivesBackWhatWasWritten) {
  const auto path = Scratch("round.corpus");
  const Utterance first{"a text", "a voice", {{'-', 0}, {'A', 7}}, {1, -2, 32767}, "3", "2", {0}};
  const Utterance empty{"", "", {}, {}};
  CorpusWriter writer(path);
  writer.Write(first);
  writer.Write(empty);
  EXPECT_FALSE(std::filesystem::exists(path)) << "a file under its own name is whole";
  writer.Close();
  CorpusReader reader(path);
  const auto read = reader.Next();
  ASSERT_TRUE(read.has_value());
  EXPECT_EQ(read->text, first.text);
  EXPECT_EQ(read->voice, first.voice);
  EXPECT_EQ(read->labels, first.labels);
  EXPECT_EQ(read->samples, first.samples);
  EXPECT_EQ(read->tones, "3");
  EXPECT_EQ(read->spoken_tones, "2");
  EXPECT_EQ(read->syllables, first.syllables);
  EXPECT_EQ(PhonemesOf(*read), "A");
  EXPECT_TRUE(reader.Next().has_value());
  EXPECT_FALSE(reader.Next().has_value());
}

TEST(CorpusFile, RefusesDamagedFiles) {
  const auto path = Scratch("damaged.corpus");
  CorpusWriter writer(path);
  writer.Write({"text", "voice", {{'-', 0}}, std::vector<std::int16_t>(100)});
  writer.Close();
  const auto size = std::filesystem::file_size(path);
  std::filesystem::resize_file(path, size - 1);
  CorpusReader reader(path);
  EXPECT_THROW(reader.Next(), std::runtime_error);
  std::ofstream(path) << "something else";
  EXPECT_THROW(CorpusReader{path}, std::runtime_error);
  EXPECT_THROW(CorpusReader{Scratch("missing.corpus")}, std::runtime_error);
  EXPECT_THROW(CorpusWriter("/no/such/folder/x.corpus"), std::runtime_error);
}

TEST(CorpusFile, ReadsTheFirstVersionWhichHadNoTones) {
  const auto path = Scratch("old.corpus");
  // Five fields: text, voice, symbols, starts, samples, each with its length in bytes before it.
  constexpr char kFields[] = "\1\0\0\0a\1\0\0\0v\1\0\0\0-\4\0\0\0\0\0\0\0\2\0\0\0\7\0";
  std::ofstream(path, std::ios::binary) << "V3CORP1\n"
                                        << std::string_view(kFields, sizeof kFields - 1)
                                        << std::string_view(kFields, sizeof kFields - 1);
  CorpusReader reader(path);
  for (int i = 0; i < 2; ++i) {
    const auto read = reader.Next();
    ASSERT_TRUE(read.has_value());
    EXPECT_EQ(read->text, "a");
    EXPECT_EQ(read->samples, std::vector<std::int16_t>{7});
    EXPECT_EQ(read->tones, "");
  }
  EXPECT_FALSE(reader.Next().has_value());
}

TEST(CorpusFile, RefusesTonesThatAreNotOneASyllable) {
  const auto path = Scratch("tones.corpus");
  CorpusWriter writer(path);
  writer.Write({"text", "voice", {{'-', 0}}, {1}, "12", "12", {0}});
  writer.Close();
  EXPECT_THROW(CorpusReader(path).Next(), std::runtime_error);
}

TEST(CorpusFile, RefusesFieldsOfAbsurdLength) {
  const auto path = Scratch("absurd.corpus");
  std::ofstream(path, std::ios::binary) << "V3CORP1\n\xFF\xFF\xFF\x7F";
  CorpusReader reader(path);
  EXPECT_THROW(reader.Next(), std::runtime_error);
}

TEST(FeatureFile, GivesBackFramesAndSegments) {
  const auto folder = Scratch("round.features");
  std::vector<float> frames(3 * 39);
  for (std::size_t i = 0; i < frames.size(); ++i) frames[i] = static_cast<float>(i);
  FeatureWriter writer(folder);
  writer.Write(frames, std::vector<FrameSegment>{{36, 0}, {2, 1}});
  writer.Write(std::span(frames).first(39), std::vector<FrameSegment>{{5, 0}});
  writer.Close();
  const FeatureFile file(folder);
  ASSERT_EQ(file.Utterances().size(), 2u);
  EXPECT_EQ(file.Utterances()[0].segments[1].phoneme, 2);
  EXPECT_EQ(file.Utterances()[1].first_frame, 3u);
  EXPECT_THAT(file.FramesOf(file.Utterances()[0]), ::testing::ElementsAreArray(frames));
  std::filesystem::resize_file(folder / "frames.f32", 10);
  EXPECT_THROW(FeatureFile{folder}, std::runtime_error);
}

TEST(PhonemeBalance, ChoosesTheTextThatIsWanting) {
  const PhonemeFrequency wanted[] = {{'a', 1.0}, {'b', 3.0}};
  PhonemeBalance balance(wanted);
  balance.Count("aaaa");
  const std::string candidates[] = {"aab", "bbb", "bba"};
  EXPECT_EQ(balance.Choose(candidates), 1u);
  balance.Count("bbbbbbbbbbbbbbbb");
  const std::string again[] = {"bbb", "aab"};
  EXPECT_EQ(balance.Choose(again), 1u);
}

}  // namespace
}  // namespace veral3::training
