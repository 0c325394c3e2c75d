#include "training/augment/Pieces.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <set>

#include "tests/training/augment/Signals.h"

namespace veral3::training {
namespace {

constexpr int kLength = 2205;  // samples of a phoneme or pause

// Every phoneme lasts a tenth of a second at a height that no other has, pauses are silent.
Utterance Steps(const std::string& text, const std::string& labels, int first_height = 1000) {
  Utterance utterance{text, "test", {}, {}};
  int height = first_height;
  for (const char symbol : labels) {
    utterance.labels.push_back({symbol, static_cast<std::int32_t>(utterance.samples.size())});
    utterance.samples.insert(utterance.samples.end(), kLength,
                             static_cast<std::int16_t>(symbol == '-' ? 0 : height));
    if (symbol != '-') height += 100;
  }
  return utterance;
}

// "ab" "cde" "f", a pause, "gh" "i"; between pauses.
Utterance Sentence() { return Steps("one two three, four five.", "-abcdef-ghi-"); }

const std::vector<WordPlace>& Words() {
  static const std::vector<WordPlace> words = {
      {"one", 0}, {"two", 2}, {"three,", 5}, {"four", 6}, {"five.", 8}};
  return words;
}

// The height in the middle of a label's samples.
int HeightOf(const Utterance& utterance, std::size_t label) {
  const auto start = static_cast<std::size_t>(utterance.labels[label].start);
  const std::size_t end = label + 1 < utterance.labels.size()
                              ? static_cast<std::size_t>(utterance.labels[label + 1].start)
                              : utterance.samples.size();
  return utterance.samples[(start + end) / 2];
}

TEST(Pieces, AreWordsInTheirOrderWithNothingLost) {
  for (std::uint64_t seed = 0; seed < 30; ++seed) {
    Random random(seed);
    const auto pieces = CutIntoPieces(Sentence(), Words(), {.neighbour_chance = 0.0}, random);
    std::string text;
    std::string phonemes;
    for (const Utterance& piece : pieces) {
      text += (text.empty() ? "" : " ") + piece.text;
      phonemes += PhonemesOf(piece);
      const auto words = std::ranges::count(piece.text, ' ') + 1;
      EXPECT_GE(words, 1);
      EXPECT_LE(words, 3);
      EXPECT_EQ(piece.voice, "test");
      EXPECT_EQ(piece.labels.front().start, 0);
      for (std::size_t label = 0; label < piece.labels.size(); ++label) {
        const char symbol = piece.labels[label].symbol;
        if (symbol != '-') EXPECT_EQ(HeightOf(piece, label), 1000 + 100 * (symbol - 'a'));
      }
    }
    EXPECT_EQ(text, "one two three, four five.");
    EXPECT_EQ(phonemes, "abcdefghi");
  }
}

TEST(Pieces, KeepALittleOfThePausesAroundThem) {
  std::set<std::int32_t> margins;
  for (std::uint64_t seed = 0; seed < 30; ++seed) {
    Random random(seed);
    const Utterance piece = PieceOf(Sentence(), Words(), 0, 3, {}, random);
    EXPECT_EQ(piece.text, "one two three,");
    ASSERT_EQ(piece.labels.size(), 8u);
    EXPECT_EQ(piece.labels.front().symbol, '-');
    EXPECT_EQ(piece.labels.back().symbol, '-');
    const std::int32_t before = piece.labels[1].start;
    const std::int32_t after =
        static_cast<std::int32_t>(piece.samples.size()) - piece.labels[7].start;
    for (const std::int32_t margin : {before, after}) {
      EXPECT_GE(margin, 220);
      EXPECT_LE(margin, 883);
      margins.insert(margin);
    }
    EXPECT_EQ(piece.labels[7].start - before, 6 * kLength);
    EXPECT_EQ(piece.samples[static_cast<std::size_t>(before)], 1000);
    EXPECT_EQ(piece.samples[static_cast<std::size_t>(before) - 1], 0);
  }
  EXPECT_GT(margins.size(), 20u);
}

TEST(Pieces, ACutThroughSpeechLeavesTheNeighbourUnderItsLabel) {
  for (std::uint64_t seed = 0; seed < 20; ++seed) {
    Random random(seed);
    const Utterance piece = PieceOf(Sentence(), Words(), 1, 2, {.neighbour_chance = 1.0}, random);
    EXPECT_EQ(piece.text, "two");
    EXPECT_EQ(PhonemesOf(piece), "bcdef");
    EXPECT_GE(piece.labels[1].start, 220);
    EXPECT_LE(piece.labels[1].start, 883);
    for (std::size_t label = 0; label < 5; ++label) {
      EXPECT_EQ(HeightOf(piece, label), 1100 + 100 * static_cast<int>(label));
    }
    EXPECT_EQ(piece.samples.front(), 0);  // no click
    EXPECT_EQ(piece.samples.back(), 0);
  }
}

TEST(Pieces, ACutThroughSpeechFadesTheNeighbourOut) {
  for (std::uint64_t seed = 0; seed < 20; ++seed) {
    Random random(seed);
    const Utterance piece = PieceOf(Sentence(), Words(), 1, 2, {.neighbour_chance = 0.0}, random);
    ASSERT_EQ(piece.labels.size(), 5u);
    EXPECT_EQ(PhonemesOf(piece), "cde");
    const auto margin = static_cast<std::size_t>(piece.labels[1].start);
    EXPECT_GE(margin, 220u);
    EXPECT_LE(margin, 442u);
    EXPECT_TRUE(
        std::is_sorted(piece.samples.begin(), piece.samples.begin() + piece.labels[1].start));
    EXPECT_EQ(piece.samples[0], 0);
    EXPECT_NEAR(piece.samples[margin / 2], 550, 10);
    EXPECT_EQ(piece.samples[margin], 1200);
    const auto end = piece.samples.begin() + piece.labels[4].start;
    EXPECT_EQ(*(end - 1), 1400);
    EXPECT_TRUE(std::is_sorted(end, piece.samples.end(), std::greater<>()));
    EXPECT_EQ(piece.samples.back(), 0);
  }
}

TEST(Pieces, BothKindsOfCutOccurAndOneSeedGivesOneCut) {
  int kept = 0;
  for (std::uint64_t seed = 0; seed < 100; ++seed) {
    Random one(seed);
    Random again(seed);
    const Utterance piece = PieceOf(Sentence(), Words(), 1, 2, {}, one);
    kept += piece.labels.front().symbol == 'b';
    EXPECT_EQ(piece.samples, PieceOf(Sentence(), Words(), 1, 2, {}, again).samples);
  }
  EXPECT_NEAR(kept, 50, 20);
}

TEST(Pieces, HaveTonesAndSyllablesOfTheirOwn) {
  Utterance sentence = Sentence();
  sentence.tones = "12341";
  sentence.spoken_tones = "32345";
  sentence.syllables = {0, 2, 5, 6, 8};
  Random random(1);
  const Utterance piece = PieceOf(sentence, Words(), 1, 4, {.neighbour_chance = 1.0}, random);
  EXPECT_EQ(PhonemesOf(piece), "cdefgh");  // no neighbour, whose syllable would not be whole
  EXPECT_EQ(piece.tones, "234");
  EXPECT_EQ(piece.spoken_tones, "234");
  EXPECT_THAT(piece.syllables, testing::ElementsAre(0, 3, 4));
}

TEST(Pieces, AtTheEdgesOfARecordingWithoutPauses) {
  const Utterance sentence = Steps("one two", "ab");
  const std::vector<WordPlace> words = {{"one", 0}, {"two", 1}};
  Random random(1);
  const Utterance whole = PieceOf(sentence, words, 0, 2, {}, random);
  EXPECT_EQ(whole.samples, sentence.samples);
  EXPECT_EQ(whole.labels, sentence.labels);
  EXPECT_TRUE(CutIntoPieces(sentence, {}, {}, random).empty());
}

TEST(Join, PutsRecordingsBehindEachOther) {
  const std::vector<Utterance> parts = {
      Steps("one.", "-ab-", 1000), Steps("two three.", "cde", 1200), Steps("four", "--f-", 1500)};
  for (std::uint64_t seed = 0; seed < 20; ++seed) {
    Random random(seed);
    const Utterance whole = Join(parts, random);
    EXPECT_EQ(whole.text, "one. two three. four");
    EXPECT_EQ(PhonemesOf(whole), "abcdef");
    std::string symbols;
    for (const PhonemeLabel& label : whole.labels) symbols += label.symbol;
    EXPECT_EQ(symbols, "-ab-cde-f-");
    for (std::size_t label = 0; label < whole.labels.size(); ++label) {
      const char symbol = whole.labels[label].symbol;
      EXPECT_EQ(HeightOf(whole, label), symbol == '-' ? 0 : 1000 + 100 * (symbol - 'a'));
    }
    EXPECT_EQ(whole.labels[1].start, kLength);  // the first one's own pause
    for (const std::size_t pause : {3u, 7u}) {
      const double seconds = (whole.labels[pause + 1].start - whole.labels[pause].start) / 22050.0;
      EXPECT_GE(seconds, 0.1);
      EXPECT_LE(seconds, 0.8);
    }
  }
}

TEST(Join, MovesSyllablesBehindThePhonemesBefore) {
  Utterance one = Steps("one", "ab");
  one.tones = one.spoken_tones = "12";
  one.syllables = {0, 1};
  Utterance two = Steps("two", "-cde");
  two.tones = "34";
  two.spoken_tones = "24";
  two.syllables = {0, 2};
  Random random(1);
  const Utterance whole = Join(std::vector<Utterance>{one, two}, random);
  EXPECT_EQ(whole.tones, "1234");
  EXPECT_EQ(whole.spoken_tones, "1224");
  EXPECT_THAT(whole.syllables, testing::ElementsAre(0, 1, 2, 4));
}

TEST(Join, OfNothingOrOfEmptyRecordings) {
  Random random(1);
  EXPECT_TRUE(Join({}, random).samples.empty());
  const std::vector<Utterance> empty(3);
  const Utterance whole = Join(empty, random);
  EXPECT_EQ(PhonemesOf(whole), "");
  EXPECT_EQ(whole.text, "");
}

TEST(Paragraph, HasOneVoiceAndNoMorePhonemesThanAsked) {
  std::vector<Utterance> all;
  for (int i = 0; i < 60; ++i) {
    Utterance one = Steps("text", i % 2 == 0 ? "-abcdef-" : "-xyz-");
    one.voice = i % 2 == 0 ? "her" : "him";
    all.push_back(one);
  }
  for (const std::size_t most : {2u, 6u, 50u, 100u}) {
    Random random(most);
    const Utterance paragraph = Paragraph(all, 4, most, random);
    EXPECT_EQ(paragraph.voice, "her");
    const std::string phonemes = PhonemesOf(paragraph);
    EXPECT_EQ(phonemes.find_first_of("xyz"), std::string::npos);
    EXPECT_LE(phonemes.size(), std::max<std::size_t>(most, 6));
    EXPECT_GT(phonemes.size() + 6, most);
  }
  Random random(1);
  EXPECT_EQ(PhonemesOf(Paragraph(all, 4, 1000, random)).size(), 180u);
}

}  // namespace
}  // namespace veral3::training
