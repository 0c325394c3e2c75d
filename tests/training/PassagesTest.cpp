#include "training/goodness/Passages.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <set>
#include <stdexcept>

namespace veral3::training {
namespace {

// Words of two phonemes of 1000 samples each, whose height tells the word; 3000 samples of silence
// before, between and after them.
Passage Spoken(const std::vector<std::string>& words, const std::string& voice,
               std::int16_t first_height) {
  Passage passage;
  passage.voice = voice;
  passage.samples.assign(3000, 0);
  for (const std::string& text : words) {
    const auto start = static_cast<std::int32_t>(passage.samples.size());
    const auto height = static_cast<std::int16_t>(first_height + 100 * passage.words.size());
    passage.words.push_back({text, {{'s', start}, {'i', start + 1000}}, start + 2000});
    passage.samples.insert(passage.samples.end(), 2000, height);
    passage.samples.insert(passage.samples.end(), 3000, 0);
  }
  return passage;
}

// That every word lies where its samples are.
void ExpectPlaces(const Passage& passage) {
  std::int32_t last_end = 0;
  for (const SpokenWord& word : passage.words) {
    EXPECT_GE(word.Start(), last_end);
    EXPECT_EQ(word.end - word.Start(), 2000);
    EXPECT_EQ(word.phonemes[1].start - word.phonemes[0].start, 1000);
    ASSERT_LE(static_cast<std::size_t>(word.end), passage.samples.size());
    const auto begin = passage.samples.begin() + word.Start();
    EXPECT_TRUE(std::all_of(begin + 60, begin + 1940, [&](int x) { return x == begin[1000]; }));
    EXPECT_GT(begin[1000], 0);
    last_end = word.end;
  }
}

TEST(Passages, PiecesHaveTheirWordsAndSomeOfThePauses) {
  const Passage passage = Spoken({"one", "two", "three"}, "v", 500);
  const Passage piece = PieceOf(passage, 1, 1);
  EXPECT_EQ(TextOf(piece), "two");
  EXPECT_EQ(CountPhonemes(piece.words), 2);
  EXPECT_EQ(piece.voice, "v");
  ExpectPlaces(piece);
  EXPECT_EQ(piece.samples.size(), 2000u + 2u * 1102u);  // 50 ms
  EXPECT_EQ(piece.samples[static_cast<std::size_t>(piece.words[0].Start()) + 500], 600);
  EXPECT_EQ(TextOf(PieceOf(passage, 0, 3)), "one two three");
}

TEST(Passages, PiecesTakeNothingOfTheWordsBesideThem) {
  Passage passage = Spoken({"one", "two"}, "v", 500);
  // Without a pause between.
  passage.samples.erase(passage.samples.begin() + 5000, passage.samples.begin() + 8000);
  for (PhonemeLabel& phoneme : passage.words[1].phonemes) phoneme.start -= 3000;
  passage.words[1].end -= 3000;
  const Passage second = PieceOf(passage, 1, 1);
  EXPECT_EQ(second.words[0].Start(), 0);
  EXPECT_TRUE(std::ranges::none_of(second.samples, [](int x) { return x == 500; }));
}

TEST(Passages, JoinWithAGap) {
  Passage passage = Spoken({"one"}, "v", 500);
  const std::size_t own = passage.samples.size();
  Append(passage, Spoken({"two"}, "v", 700), 0.1);
  EXPECT_EQ(TextOf(passage), "one two");
  EXPECT_EQ(passage.samples.size(), 2 * own + 2205);
  ExpectPlaces(passage);
}

TEST(PassageDrawer, DrawsAsManyWordsAsAskedForByOneVoice) {
  const std::vector<Passage> recordings = {Spoken({"a", "b", "c"}, "v", 100),
                                           Spoken({"d", "e"}, "v", 1100),
                                           Spoken({"f", "g", "h"}, "w", 2100)};
  const PassageDrawer drawer(recordings);
  std::set<std::string> texts;
  for (std::uint64_t seed = 0; seed < 60; ++seed) {
    Random random(seed);
    for (const int words : {1, 2, 3, 7, 20}) {
      const Passage passage = drawer.Draw(words, random);
      EXPECT_EQ(passage.words.size(), static_cast<std::size_t>(words));
      ExpectPlaces(passage);
      const bool is_w = passage.voice == "w";
      for (const SpokenWord& word : passage.words) EXPECT_EQ(word.text >= "f", is_w);
      if (words == 2) texts.insert(TextOf(passage));
    }
    EXPECT_EQ(drawer.DrawBy("w", 1, random).voice, "w");
    EXPECT_FALSE(drawer.DrawBy("nobody", 1, random).words.empty());
  }
  EXPECT_TRUE(texts.contains("b c"));
  EXPECT_TRUE(texts.contains("f g"));
}

TEST(PassageDrawer, EndsAtTheMostPhonemes) {
  const std::vector<Passage> recordings = {Spoken({"a", "b", "c"}, "v", 100)};
  const PassageDrawer drawer(recordings);
  EXPECT_DOUBLE_EQ(drawer.WordsOf(500), 250.0);
  Random random(1);
  EXPECT_EQ(CountPhonemes(drawer.Draw(1000, random).words), 500);
}

TEST(PassageDrawer, TheSameNumbersDrawTheSame) {
  const std::vector<Passage> recordings = {Spoken({"a", "b", "c"}, "v", 100),
                                           Spoken({"d", "e"}, "v", 1100)};
  const PassageDrawer drawer(recordings);
  Random first(9);
  Random second(9);
  EXPECT_EQ(drawer.Draw(12, first).samples, drawer.Draw(12, second).samples);
}

TEST(PassageDrawer, RefusesWhatHasNoWords) {
  EXPECT_THROW(PassageDrawer({}), std::runtime_error);
  const std::vector<Passage> silent = {Passage{}};
  EXPECT_THROW(PassageDrawer{silent}, std::runtime_error);
}

}  // namespace
}  // namespace veral3::training
