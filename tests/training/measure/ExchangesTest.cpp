#include "training/measure/Exchanges.h"

#include <gmock/gmock.h>

#include <map>
#include <set>

namespace veral3::training {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

// "kA-t": a pause stands before the last phoneme.
Utterance Cat() {
  Utterance utterance{
      "cat", "test", {{'-', 0}, {'k', 100}, {'A', 300}, {'-', 600}, {'t', 700}}, {}};
  utterance.samples.assign(1000, 1000);
  return utterance;
}

TEST(EveryOtherEquallyOften, TakesEachPairAsOften) {
  // a is said 3 times, b twice, c once.
  const std::vector<std::string> phonemes = {"ab", "ca", "xba"};
  Random random(1);
  std::map<std::pair<char, char>, int> pairs;
  for (const Exchange& one : EveryOtherEquallyOften(phonemes, "abc", 2, random)) {
    EXPECT_EQ(one.expected, "abc"[one.group]);
    EXPECT_FALSE(one.dropped);
    ++pairs[{one.expected, phonemes[one.utterance][one.phoneme]}];
  }
  // c is not said often enough to be said; it can still be expected.
  const std::map<std::pair<char, char>, int> wanted = {
      {{'a', 'b'}, 2}, {{'b', 'a'}, 2}, {{'c', 'a'}, 2}, {{'c', 'b'}, 2}};
  EXPECT_EQ(pairs, wanted);
}

TEST(EveryOtherEquallyOften, TakesNoRecordingOfAPairTwice) {
  const std::vector<std::string> phonemes = {"aaab", "abbb"};
  Random random(2);
  std::set<std::tuple<char, std::size_t, std::size_t>> seen;
  for (const Exchange& one : EveryOtherEquallyOften(phonemes, "abcd", 4, random)) {
    EXPECT_TRUE(seen.emplace(one.expected, one.utterance, one.phoneme).second);
  }
  // a expects b; b expects a; c and d expect a and b: 6 pairs of 4.
  EXPECT_THAT(seen, SizeIs(24));
}

TEST(InRounds, KeepsExchangesApart) {
  std::vector<Exchange> exchanges;
  for (const std::size_t place : {0, 2, 3, 5, 6}) exchanges.push_back({7, place, 'x'});
  exchanges.push_back({4, 3, 'y'});
  const auto rounds = InRounds(exchanges, 3);
  std::vector<std::vector<std::pair<std::size_t, std::size_t>>> places;
  for (const auto& round : rounds) {
    auto& own = places.emplace_back();
    for (const Exchange& one : round) own.emplace_back(one.utterance, one.phoneme);
  }
  using Place = std::pair<std::size_t, std::size_t>;
  EXPECT_THAT(places, ElementsAre(ElementsAre(Place{4, 3}),
                                  ElementsAre(Place{7, 0}, Place{7, 3}, Place{7, 6}),
                                  ElementsAre(Place{7, 2}, Place{7, 5})));
}

TEST(WithExchanges, ChangesWhatIsExpectedAndLeavesTheRecording) {
  const Utterance changed = WithExchanges(Cat(), std::vector<Exchange>{{0, 2, 'd'}, {0, 0, 'g'}});
  EXPECT_EQ(PhonemesOf(changed), "gAd");
  EXPECT_EQ(changed.samples, Cat().samples);
}

TEST(WithExchanges, CutsADroppedPhonemeOut) {
  const Utterance changed =
      WithExchanges(Cat(), std::vector<Exchange>{{.phoneme = 1, .expected = 'A', .dropped = true}});
  EXPECT_EQ(PhonemesOf(changed), "kAt");  // still expected
  ASSERT_THAT(changed.samples, SizeIs(700));
  const std::vector<PhonemeLabel> labels = {
      {'-', 0}, {'k', 100}, {'A', 300}, {'-', 300}, {'t', 400}};
  EXPECT_EQ(changed.labels, labels);
  // Both sides of the cut are silent and come back within 2 ms, 44 samples.
  EXPECT_EQ(changed.samples[299], 0);
  EXPECT_EQ(changed.samples[300], 0);
  EXPECT_EQ(changed.samples[277], 500);
  EXPECT_EQ(changed.samples[322], 500);
  EXPECT_EQ(changed.samples[255], 1000);
  EXPECT_EQ(changed.samples[344], 1000);
}

TEST(WithExchanges, CutsTheLastPhonemeOut) {
  const Utterance changed =
      WithExchanges(Cat(), std::vector<Exchange>{{.phoneme = 2, .expected = 't', .dropped = true}});
  EXPECT_THAT(changed.samples, SizeIs(700));
  EXPECT_EQ(changed.samples.back(), 0);
  EXPECT_EQ(changed.labels.back(), (PhonemeLabel{'t', 700}));
}

}  // namespace
}  // namespace veral3::training
