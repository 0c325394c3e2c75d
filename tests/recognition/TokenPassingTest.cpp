#include "recognition/TokenPassing.h"

#include <gtest/gtest.h>

#include <cmath>
#include <span>
#include <string>
#include <vector>

#include "recognition/AlignerCases.h"
#include "recognition/VTokenList.h"
#include "support/MessageCapture.h"

namespace veral3 {
namespace {

using test::Sentence;
using test::Word;

TEST(TokenPassing, AgreesWithTheLiteralAligner) {
  test::AlignerTally tally;
  for (std::uint64_t seed = 0; seed < 2500; ++seed) {
    const test::AlignerCase made = test::MakeAlignerCase(test::RandomChooser(seed));
    const std::string difference = test::CompareWithLiteral(made, &tally);
    ASSERT_EQ(difference, "") << "seed " << seed;
  }
  // The cases reach what is hard to get right, again and again.
  EXPECT_GE(tally.matched, 1500);
  EXPECT_GE(tally.matched_by_fallback, 100);
  EXPECT_GE(tally.no_winner, 100);
  EXPECT_GE(tally.no_sentence, 20);
  EXPECT_GE(tally.tied_paths, 10000);
  EXPECT_GE(tally.too_many_nodes, 100);
}

// Long enough for the history to run out of room and be cleared many times.
TEST(TokenPassing, AgreesWithTheLiteralAlignerOnLongRecordings) {
  test::AlignerTally tally;
  for (std::uint64_t seed = 0; seed < 20; ++seed) {
    const test::AlignerCase made = test::MakeAlignerCase(test::RandomChooser(seed), 800);
    const std::string difference = test::CompareWithLiteral(made, &tally);
    ASSERT_EQ(difference, "") << "seed " << seed;
  }
  EXPECT_GE(tally.matched, 15);
}

// A network of a sentence's usual size, and scores that keep many paths alive.
DecodingNetwork UsualNetwork() {
  const WordSequence sentence = Sentence(
      {Word(L"THIS", {"DIs", "D@s"}), Word(L"IS", {"Iz"}), Word(L"A", {"@", "eI"}),
       Word(L"SENTENCE", {"sEnt@ns"}), Word(L"OF", {"@v", "Af"}), Word(L"TWELVE", {"twElv"}),
       Word(L"WORDS", {"w3dz"}), Word(L"THAT", {"D{t", "D@t"}), Word(L"ANYONE", {"Eniw@n"}),
       Word(L"CAN", {"k{n", "k@n"}), Word(L"READ", {"rid"}), Word(L"ALOUD", {"@lAUd"})});
  DecodingNetwork network;
  ExtendNetwork(network, std::span(&sentence, 1));
  return network;
}

std::vector<double> RandomScores(const CPhonemeSet& set, int num_frames, std::uint64_t seed) {
  const test::Chooser choose = test::RandomChooser(seed);
  std::vector<double> scores(static_cast<std::size_t>(num_frames * 3 * set.GetSize()));
  for (double& score : scores) score = (1 + choose(1000)) / 1000.0;
  return scores;
}

TEST(TokenPassing, TenMinutesNeedNoMoreMemoryThanTenSeconds) {
  const CPhonemeSet& set = *PhonemeSetOf(kLanguageEnglish);
  const DecodingNetwork network = UsualNetwork();
  constexpr int kFrames = 60'000;
  const std::vector<double> scores = RandomScores(set, kFrames, 1);
  const auto best = PassTokens(network, set, scores, kFrames);
  ASSERT_TRUE(best);
  EXPECT_EQ(best->steps.back().frame, kFrames - 1);
  // Histories that were copied would hold up to 6 million entries a frame, appended ones without
  // reclaiming about 4 million in all.
  EXPECT_LE(best->history_room, 16'384u);
  const auto ten_seconds = PassTokens(network, set, scores, 1000);
  ASSERT_TRUE(ten_seconds);
  EXPECT_LE(best->history_room, 2 * ten_seconds->history_room);
}

TEST(TokenPassing, HistoryHasNoLimit) {
  const CPhonemeSet& set = *PhonemeSetOf(kLanguageJapanese);
  const WordSequence sentence = Sentence({Word(L"A", {"a"})});
  DecodingNetwork network;
  ExtendNetwork(network, std::span(&sentence, 1));
  // All but the first frames say the third state, which is entered anew in every frame.
  std::string track = "a0a1";
  while (track.size() < 2 * 9'999) track += "a2";
  track += "-0";  // the end node's frame
  const AlignmentResult spoken = test::Spoken(set, track);
  const auto best = PassTokens(network, set, spoken.frame_scores, spoken.num_frames);
  ASSERT_TRUE(best);
  ASSERT_EQ(best->steps.size(), 10'001u);
  EXPECT_EQ(best->steps[0].node, DecodingNetwork::kStartNode);
  for (int i = 1; i <= 10'000; ++i)
    EXPECT_EQ(best->steps[static_cast<std::size_t>(i)].frame, i - 1);
}

TEST(TokenPassing, WhatIsNoProbabilityCountsAsVanishing) {
  const CPhonemeSet& set = *PhonemeSetOf(kLanguageJapanese);
  const WordSequence sentence = Sentence({Word(L"A", {"a"})});
  DecodingNetwork network;
  ExtendNetwork(network, std::span(&sentence, 1));
  for (const double odd : {std::nan(""), HUGE_VAL, -HUGE_VAL, -1.0, 0.0, 9.99e-201}) {
    const std::vector<double> scores(static_cast<std::size_t>(8 * 3 * set.GetSize()), odd);
    const auto best = PassTokens(network, set, scores, 8);
    ASSERT_TRUE(best);
    EXPECT_EQ(best->score, 1.0);
  }
  const std::vector<double> least(static_cast<std::size_t>(4 * 3 * set.GetSize()), 1e-200);
  EXPECT_DOUBLE_EQ(PassTokens(network, set, least, 4)->score, 1.0 + 3 * std::log(1e-200));
}

TEST(TokenPassing, RowsOfNoFramesHaveNoWinner) {
  const DecodingNetwork network = UsualNetwork();
  const test::MessageCapture capture;
  EXPECT_FALSE(PassTokens(network, *PhonemeSetOf(kLanguageEnglish), {}, 0));
  EXPECT_EQ(capture.StandardError(), "ERROR! No Winner Token  in VTokenList::GetWinnerToken().\n");
}

TEST(VTokenList, FrontTokenWinsTies) {
  VTokenList list;
  list.AddToken({2.0, 1});
  list.AddToken({3.0, 2});
  list.AddToken({3.0, 3});
  list.AddToken({1.0, 4});
  list.KeepBestToken();
  EXPECT_EQ(list.GetCount(), 1);
  const test::MessageCapture capture;
  ASSERT_NE(list.GetWinnerToken(), nullptr);
  EXPECT_EQ(list.GetWinnerToken()->history, 3);
  EXPECT_EQ(capture.All(), "");
}

TEST(VTokenList, ReportsNoWinnerAndSeveral) {
  VTokenList list;
  test::MessageCapture capture;
  EXPECT_EQ(list.GetWinnerToken(), nullptr);
  EXPECT_EQ(capture.StandardError(), "ERROR! No Winner Token  in VTokenList::GetWinnerToken().\n");
  capture.Clear();
  list.AddToken({5.0, 1});
  list.AddToken({1.0, 2});
  const ViterbiToken* winner = list.GetWinnerToken();
  ASSERT_NE(winner, nullptr);
  EXPECT_EQ(winner->history, 2);  // the front one, whatever its score
  EXPECT_EQ(capture.StandardError(),
            "ERROR! More than one Winner Token  in VTokenList::GetWinnerToken().\n");
}

}  // namespace
}  // namespace veral3
