#include "recognition/DecodingNetwork.h"

#include <gmock/gmock.h>

#include <span>
#include <string>
#include <vector>

#include "recognition/AlignerCases.h"
#include "support/MessageCapture.h"

namespace veral3 {
namespace {

using test::Sentence;
using test::Word;
using testing::ElementsAre;

constexpr const char* kTooManyHeads = "ERROR: Too many heads in ViterbiHeads::AddHead()\n";
constexpr const char* kTooManyNextNodes =
    "ERROR: Too many Next Nodes in ViterbiNode::AddNextNode\n";

DecodingNetwork Network(const std::vector<WordSequence>& sentences) {
  DecodingNetwork network;
  ExtendNetwork(network, sentences);
  return network;
}

// First states in order of creation: symbol, and the owner where there is one ("k1" belongs to
// sentence 1); "!" marks a word start.
std::string Phonemes(const DecodingNetwork& network) {
  std::string text;
  for (std::size_t i = DecodingNetwork::kFirstPhonemeNode; i < network.nodes.size(); i += 3) {
    const ViterbiNode& node = network.nodes[i];
    if (!text.empty()) text += ' ';
    text += node.phoneme;
    if (node.sentence >= 0) text += std::to_string(node.sentence);
    if (node.word_start) text += '!';
  }
  return text;
}

// Number of a state of the i-th phoneme.
std::int32_t State(int phoneme, int state) {
  return DecodingNetwork::kFirstPhonemeNode + 3 * phoneme + state;
}

const ViterbiNode& Node(const DecodingNetwork& network, std::int32_t number) {
  return network.nodes[static_cast<std::size_t>(number)];
}

const std::vector<std::int32_t>& Next(const DecodingNetwork& network, std::int32_t number) {
  return Node(network, number).next;
}

std::vector<std::string> ManyVariants(int count) {
  return std::vector<std::string>(static_cast<std::size_t>(count), "a");
}

TEST(DecodingNetwork, OneWord) {
  const DecodingNetwork network = Network({Sentence({Word(L"KA", {"ka"})})});
  EXPECT_EQ(Phonemes(network), "- a k! -");
  // Successors before the self-loop in the third state, after it in the others.
  EXPECT_THAT(Next(network, State(0, 0)), ElementsAre(State(0, 0), State(0, 1)));
  EXPECT_THAT(Next(network, State(0, 1)), ElementsAre(State(0, 1), State(0, 2)));
  EXPECT_THAT(Next(network, State(0, 2)), ElementsAre(DecodingNetwork::kEndNode, State(0, 2)));
  EXPECT_THAT(Next(network, State(1, 2)),
              ElementsAre(State(0, 0), DecodingNetwork::kEndNode, State(1, 2)));
  EXPECT_THAT(Next(network, State(2, 2)), ElementsAre(State(1, 0), State(2, 2)));
  EXPECT_THAT(Next(network, State(3, 2)), ElementsAre(State(2, 0), State(3, 2)));
  EXPECT_THAT(Next(network, DecodingNetwork::kStartNode), ElementsAre(State(2, 0), State(3, 0)));
  EXPECT_TRUE(Next(network, DecodingNetwork::kEndNode).empty());
  EXPECT_EQ(network.fallback_sentence, -1);

  EXPECT_EQ(Node(network, DecodingNetwork::kStartNode).phoneme, '*');
  EXPECT_EQ(Node(network, DecodingNetwork::kEndNode).phoneme, '$');
  EXPECT_TRUE(Node(network, State(2, 0)).word_start);
  EXPECT_FALSE(Node(network, State(2, 1)).word_start);
  EXPECT_EQ(Node(network, State(1, 2)).state, 2);
}

TEST(DecodingNetwork, VariantsAreParallelAndEveryWordMayFollowAPause) {
  const DecodingNetwork network =
      Network({Sentence({Word(L"A", {"a", "e"}), Word(L"KU", {"ku"})})});
  EXPECT_EQ(Phonemes(network), "- u k! - a! e! -");
  EXPECT_THAT(Next(network, State(4, 2)), ElementsAre(State(2, 0), State(3, 0), State(4, 2)));
  EXPECT_THAT(Next(network, State(5, 2)), ElementsAre(State(2, 0), State(3, 0), State(5, 2)));
  EXPECT_THAT(Next(network, State(6, 2)), ElementsAre(State(4, 0), State(5, 0), State(6, 2)));
  EXPECT_EQ(Node(network, State(4, 0)).variant, 0);
  EXPECT_EQ(Node(network, State(5, 0)).variant, 1);
}

TEST(DecodingNetwork, SharesWordsAtBothEnds) {
  const auto first = Word(L"A", {"a"});
  const auto last = Word(L"I", {"i"});
  const DecodingNetwork network = Network({
      Sentence({first, Word(L"KU", {"ku"}), last}),
      Sentence({first, Word(L"TO", {"t"}), Word(L"O", {"o"}), last}),
  });
  // End, suffix, the sentences' own words, their common pause, prefix. A sentence's first own word
  // has no pause of its own, later ones have.
  EXPECT_EQ(Phonemes(network), "- i! - u0 k0! o1! -1 t1! - a! -");
  EXPECT_THAT(Next(network, State(8, 2)), ElementsAre(State(4, 0), State(7, 0), State(8, 2)));
  EXPECT_THAT(Next(network, State(9, 2)),
              ElementsAre(State(4, 0), State(7, 0), State(8, 0), State(9, 2)));
  EXPECT_EQ(network.fallback_sentence, -1);
}

TEST(DecodingNetwork, WordsAreEqualByTheirTextAlone) {
  const DecodingNetwork network = Network({
      Sentence({Word(L"a", {"a"})}),
      Sentence({Word(L"A", {"a"})}),
  });
  EXPECT_EQ(Phonemes(network), "- a0! a1! -");

  const DecodingNetwork shared = Network({
      Sentence({Word(L"A", {"a"})}),
      Sentence({Word(L"A", {"o"})}),
  });
  EXPECT_EQ(Phonemes(shared), "- - a! -");  // the first sentence's
  EXPECT_EQ(shared.fallback_sentence, 1);
}

TEST(DecodingNetwork, PrefixTakesWordsBeforeTheSuffixDoes) {
  const auto a = Word(L"A", {"a"});
  // Two equal words against one: the prefix is one word, no word is left for a suffix.
  const DecodingNetwork network = Network({Sentence({a, a}), Sentence({a})});
  EXPECT_EQ(Phonemes(network), "- a0! - a! -");
  EXPECT_EQ(network.fallback_sentence, 1);
}

TEST(DecodingNetwork, LaterFallbackTakesThePlaceOfAnEarlierOne) {
  const auto a = Word(L"A", {"a"});
  const auto i = Word(L"I", {"i"});
  const DecodingNetwork network = Network({
      Sentence({a, i}),
      Sentence({a, Word(L"O", {"o"}), i}),
      Sentence({a, i}),
  });
  EXPECT_EQ(network.fallback_sentence, 2);
  // The heads of the suffix stand twice among what follows the prefix.
  EXPECT_EQ(Phonemes(network), "- i! - o1! - a! -");
  EXPECT_THAT(Next(network, State(5, 2)),
              ElementsAre(State(1, 0), State(2, 0), State(3, 0), State(1, 0), State(2, 0),
                          State(4, 0), State(5, 2)));
}

TEST(DecodingNetwork, SentenceWithoutWords) {
  const DecodingNetwork network = Network({Sentence({})});
  EXPECT_EQ(Phonemes(network), "-");
  EXPECT_THAT(Next(network, DecodingNetwork::kStartNode),
              ElementsAre(State(0, 0), DecodingNetwork::kEndNode));

  const DecodingNetwork among = Network({Sentence({Word(L"A", {"a"})}), Sentence({})});
  EXPECT_EQ(Phonemes(among), "- a0! -");
  EXPECT_EQ(among.fallback_sentence, 1);
  EXPECT_THAT(Next(among, DecodingNetwork::kStartNode),
              ElementsAre(State(1, 0), State(0, 0), DecodingNetwork::kEndNode, State(2, 0)));
}

TEST(DecodingNetwork, ExtendingKeepsWhatIsThere) {
  std::vector<WordSequence> sentences = {Sentence({Word(L"A", {"a"})}), Sentence({})};
  DecodingNetwork network = Network(sentences);
  const std::vector<std::int32_t> before = Next(network, DecodingNetwork::kStartNode);
  sentences[1] = Sentence({Word(L"O", {"o"})});
  ExtendNetwork(network, sentences);
  EXPECT_EQ(Phonemes(network), "- a0! - - a0! o1! -");
  EXPECT_THAT(Next(network, DecodingNetwork::kStartNode),
              ElementsAre(before[0], before[1], before[2], before[3], State(4, 0), State(5, 0),
                          State(6, 0)));
  EXPECT_THAT(Next(network, State(3, 2)), ElementsAre(DecodingNetwork::kEndNode, State(3, 2)));
  EXPECT_EQ(network.fallback_sentence, 1) << "survives a network that has none";
}

TEST(DecodingNetwork, NothingToAdd) {
  DecodingNetwork network;
  ExtendNetwork(network, {});
  EXPECT_EQ(network.nodes.size(), 2u);
  EXPECT_EQ(network.NumPhonemes(), 0);
}

TEST(DecodingNetwork, ThirtyOneVariantsAndAPauseFit) {
  test::MessageCapture capture;
  const DecodingNetwork network = Network({Sentence({Word(L"A", ManyVariants(31))})});
  EXPECT_EQ(capture.All(), "");
  EXPECT_EQ(Next(network, DecodingNetwork::kStartNode).size(), 32u);
  // The pause before them: 31 heads, then its self-loop.
  EXPECT_EQ(Next(network, State(32, 2)).size(), 32u);
  EXPECT_EQ(Next(network, State(32, 2)).back(), State(32, 2));
}

TEST(DecodingNetwork, ThirtyTwoHeadsLeaveNoRoomForASelfLoop) {
  test::MessageCapture capture;
  const DecodingNetwork network =
      Network({Sentence({Word(L"I", {"i"}), Word(L"A", ManyVariants(32))})});
  // The pause before the many: no self-loop, and it is no head. The word before: no self-loop.
  EXPECT_EQ(capture.StandardError(),
            std::string(kTooManyNextNodes) + kTooManyHeads + kTooManyNextNodes);
  EXPECT_EQ(Next(network, State(33, 2)).size(), 32u);
  EXPECT_NE(Next(network, State(33, 2)).back(), State(33, 2));
  EXPECT_THAT(Next(network, State(34, 0)), ElementsAre(State(34, 0), State(34, 1)));
  EXPECT_THAT(Next(network, State(34, 1)), ElementsAre(State(34, 1), State(34, 2)));
  EXPECT_EQ(Next(network, State(34, 2)).size(), 32u);
}

TEST(DecodingNetwork, FurtherHeadsAreIgnored) {
  test::MessageCapture capture;
  const DecodingNetwork network = Network({Sentence({Word(L"A", ManyVariants(34))})});
  EXPECT_EQ(capture.StandardError(),
            std::string(kTooManyHeads) + kTooManyHeads + kTooManyNextNodes + kTooManyHeads);
  EXPECT_EQ(network.NumPhonemes(), 1 + 34 + 1) << "their nodes are there all the same";
}

TEST(DecodingNetwork, StartNodeTakesThirtyTwo) {
  test::MessageCapture capture;
  std::vector<WordSequence> sentences = {Sentence({Word(L"A", ManyVariants(20))})};
  DecodingNetwork network = Network(sentences);
  ExtendNetwork(network, sentences);
  std::string expected;
  for (int i = 0; i < 42 - 32; ++i) expected += kTooManyNextNodes;
  EXPECT_EQ(capture.StandardError(), expected);
  EXPECT_EQ(Next(network, DecodingNetwork::kStartNode).size(), 32u);
}

TEST(DecodingNetwork, PassesOverUnusablePronunciations) {
  test::MessageCapture capture;
  const auto word = std::make_shared<const OwnedWordEntry>(
      L"\u00C9", std::vector<OwnedWordEntry::Variant>{{"", {}, {}},
                                                      {"a", {1}, {0}},
                                                      {"ka", {1}, {0, 1}},
                                                      {"ki", {1, 1}, {0, 3}},
                                                      {"ku", {1}, {-1}},
                                                      {"ke", {1, 1, 7}, {0, 2}}});
  const DecodingNetwork network = Network({Sentence({word})});
  EXPECT_EQ(Phonemes(network), "- a! e k! -");
  EXPECT_EQ(Node(network, State(1, 0)).variant, 1);
  EXPECT_EQ(Node(network, State(3, 0)).variant, 5);
  std::string expected;
  for (const char* variant : {"0", "2", "3", "4"}) {
    expected += std::string("ERROR in ViterbiAligner::Align(), pronunciation ") + variant +
                " of word [\xC3\x89] cannot be used\n";
  }
  EXPECT_EQ(capture.StandardError(), expected);
}

// What the decoder's order of work rests on.
TEST(DecodingNetwork, PhonemesLeadToPhonemesMadeBefore) {
  for (std::uint64_t seed = 0; seed < 200; ++seed) {
    const test::MessageCapture capture;
    const test::AlignerCase made = test::MakeAlignerCase(test::RandomChooser(seed), 1);
    std::vector<WordSequence> sentences;
    DecodingNetwork network;
    for (const test::AlignerRound& round : made.rounds) {
      sentences.insert(sentences.end(), round.added.begin(), round.added.end());
      ExtendNetwork(network, sentences);
    }
    for (std::int32_t i = DecodingNetwork::kFirstPhonemeNode;
         i < static_cast<std::int32_t>(network.nodes.size()); ++i) {
      const int state = (i - DecodingNetwork::kFirstPhonemeNode) % 3;
      ASSERT_EQ(Node(network, i).state, state);
      for (const std::int32_t next : Next(network, i)) {
        if (state < 2) {
          ASSERT_TRUE(next == i || next == i + 1);
        } else {
          ASSERT_TRUE(next == i || next < i - 2);
        }
      }
    }
  }
}

}  // namespace
}  // namespace veral3
