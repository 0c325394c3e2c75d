#include "training/goodness/Readings.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <sstream>
#include <stdexcept>

#include "training/measure/Scores.h"

namespace veral3::training {
namespace {

constexpr std::int32_t kPhoneme = 1000;  // samples
constexpr std::int32_t kEdge = 2205;     // silence before and after the speech

const CPhonemeSet& English() { return *PhonemeSetOf(kLanguageEnglish); }

std::vector<std::string> WordsOf(const std::string& sentence) {
  std::istringstream stream(sentence);
  std::vector<std::string> words;
  for (std::string word; stream >> word;) words.push_back(word);
  return words;
}

// A letter of a word is a phoneme of 1000 samples of one height.
Passage Spoken(const std::string& text, std::int16_t height, const std::string& voice = "v") {
  Passage passage;
  passage.voice = voice;
  passage.samples.assign(kEdge, 0);
  for (const std::string& text_of_word : WordsOf(text)) {
    SpokenWord word{text_of_word, {}, 0};
    for (const char letter : text_of_word) {
      word.phonemes.push_back({letter, static_cast<std::int32_t>(passage.samples.size())});
      passage.samples.insert(passage.samples.end(), kPhoneme, height);
    }
    word.end = static_cast<std::int32_t>(passage.samples.size());
    passage.words.push_back(word);
  }
  passage.samples.insert(passage.samples.end(), kEdge, 0);
  return passage;
}

const std::vector<Passage>& Recordings() {
  static const std::vector<Passage> recordings = {
      Spoken("aa bbb c dddd ee f ggg hh i jj", 1000),
      Spoken("kkk ll mmmm n oo", 2000),
      Spoken("pp qqq", 3000, "w"),
  };
  return recordings;
}

const PassageDrawer& Drawer() {
  static const PassageDrawer drawer(Recordings());
  return drawer;
}

const std::vector<Utterance>& Foreign() {
  static const std::vector<Utterance> utterances = {
      {"un deux", "test", {}, std::vector<std::int16_t>(3000, 4000)}};
  return utterances;
}

// How many samples are louder than half of `height`.
std::int64_t Loud(const std::vector<std::int16_t>& samples, int height) {
  return std::ranges::count_if(samples, [=](std::int16_t x) { return 2 * x > height; });
}

int Phonemes(const std::string& text) {
  int count = 0;
  for (const std::string& word : WordsOf(text)) count += static_cast<int>(word.size());
  return count;
}

class GradedReadings : public ::testing::TestWithParam<double> {
 protected:
  const ReadingMaker m_maker{English(), Drawer(), Foreign()};
  const Passage& m_passage = Recordings()[0];  // ten words, 21 phonemes
};

TEST_P(GradedReadings, ReplacedWordsAreOthersInTheirPlaces) {
  for (std::uint64_t seed = 0; seed < 20; ++seed) {
    Random random(seed);
    const Reading reading = m_maker.Make(m_passage, ReadingKind::kReplaced, GetParam(), random);
    EXPECT_EQ(reading.samples, m_passage.samples);
    const auto words = WordsOf(reading.sentence);
    ASSERT_EQ(words.size(), 10u);
    int changed = 0;
    int phonemes = 0;
    for (std::size_t i = 0; i < words.size(); ++i) {
      if (words[i] == m_passage.words[i].text) continue;
      ++changed;
      phonemes += static_cast<int>(m_passage.words[i].text.size());
    }
    EXPECT_EQ(changed, std::max(1L, std::lround(10 * GetParam())));
    EXPECT_DOUBLE_EQ(reading.wrong, phonemes / 21.0);
  }
}

TEST_P(GradedReadings, OmittedWordsStandThereAndAreNotSaid) {
  for (std::uint64_t seed = 0; seed < 20; ++seed) {
    Random random(seed);
    const Reading reading = m_maker.Make(m_passage, ReadingKind::kOmitted, GetParam(), random);
    EXPECT_EQ(reading.samples, m_passage.samples);
    const int all = Phonemes(reading.sentence);
    EXPECT_GT(all, 21);
    EXPECT_DOUBLE_EQ(reading.wrong, (all - 21.0) / all);
    // Without them the sentence is what was said.
    auto words = WordsOf(reading.sentence);
    const double share = 1.0 - 10.0 / static_cast<double>(words.size());
    EXPECT_NEAR(share, std::clamp(GetParam(), 0.09, 0.8), 0.05);
    std::size_t said = 0;
    for (const std::string& word : words) {
      if (said < 10 && word == m_passage.words[said].text) ++said;
    }
    EXPECT_EQ(said, 10u);
  }
}

TEST_P(GradedReadings, InsertedWordsAreSaidAndDoNotStandThere) {
  for (std::uint64_t seed = 0; seed < 20; ++seed) {
    Random random(seed);
    const Reading reading = m_maker.Make(m_passage, ReadingKind::kInserted, GetParam(), random);
    EXPECT_EQ(reading.samples, m_passage.samples);
    const auto wanted = std::clamp(std::lround(10 * GetParam()), 1L, 9L);
    EXPECT_EQ(WordsOf(reading.sentence).size(), static_cast<std::size_t>(10 - wanted));
    EXPECT_DOUBLE_EQ(reading.wrong, (21 - Phonemes(reading.sentence)) / 21.0);
  }
}

TEST_P(GradedReadings, SwappedWordsAreNeighbours) {
  for (std::uint64_t seed = 0; seed < 20; ++seed) {
    Random random(seed);
    const Reading reading = m_maker.Make(m_passage, ReadingKind::kSwapped, GetParam(), random);
    EXPECT_EQ(reading.samples, m_passage.samples);
    auto words = WordsOf(reading.sentence);
    ASSERT_EQ(words.size(), 10u);
    int exchanged = 0;
    int pairs = 0;
    for (std::size_t i = 0; i + 1 < 10; ++i) {
      if (words[i] == m_passage.words[i].text) continue;
      EXPECT_EQ(words[i], m_passage.words[i + 1].text);
      EXPECT_EQ(words[i + 1], m_passage.words[i].text);
      exchanged += static_cast<int>(words[i].size() + words[i + 1].size());
      ++pairs;
      ++i;
    }
    EXPECT_EQ(pairs, std::clamp(std::lround(10 * GetParam()), 1L, 5L));
    EXPECT_DOUBLE_EQ(reading.wrong, exchanged / 42.0);
  }
}

TEST_P(GradedReadings, CutRecordingsLackAShareOfTheirPhonemes) {
  const auto lost = std::clamp(std::lround(21 * GetParam()), 1L, 20L);
  for (const ReadingKind kind : {ReadingKind::kCutOff, ReadingKind::kBegunLate}) {
    Random random(3);
    const Reading reading = m_maker.Make(m_passage, kind, GetParam(), random);
    EXPECT_EQ(reading.sentence, TextOf(m_passage));
    EXPECT_DOUBLE_EQ(reading.wrong, static_cast<double>(lost) / 21.0);
    EXPECT_EQ(reading.samples.size(),
              m_passage.samples.size() - kEdge - static_cast<std::size_t>(lost * kPhoneme));
    EXPECT_NEAR(static_cast<double>(Loud(reading.samples, 1000)),
                static_cast<double>((21 - lost) * kPhoneme), 150.0);
  }
}

TEST_P(GradedReadings, OtherSpeechIsAShareOfAllThatIsSaid) {
  for (const ReadingKind kind : {ReadingKind::kSpeechBefore, ReadingKind::kSpeechAfter}) {
    for (std::uint64_t seed = 0; seed < 20; ++seed) {
      Random random(seed);
      const Reading reading = m_maker.Make(m_passage, kind, GetParam(), random);
      EXPECT_EQ(reading.sentence, TextOf(m_passage));
      // All phonemes are of one length; cuts and fades take a little.
      const auto said = static_cast<double>(Loud(reading.samples, 1000)) / kPhoneme;
      EXPECT_NEAR(reading.wrong, 1.0 - 21.0 / said, 0.02);
      EXPECT_NEAR(reading.wrong, std::clamp(GetParam(), 0.09, 0.7), 0.12);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Shares, GradedReadings, ::testing::Values(0.0, 0.1, 0.3, 0.5, 0.77, 1.0));

TEST(Readings, RightOnesAreWhatStandsThere) {
  const ReadingMaker maker(English(), Drawer(), Foreign());
  const Passage& passage = Recordings()[0];
  for (std::uint64_t seed = 0; seed < 20; ++seed) {
    Random random(seed);
    const auto make = [&](ReadingKind kind) {
      const Reading reading = maker.Make(passage, kind, random.Uniform(), random);
      EXPECT_EQ(reading.sentence, TextOf(passage));
      EXPECT_EQ(reading.wrong, 0.0);
      return reading.samples;
    };
    EXPECT_EQ(make(ReadingKind::kRight), passage.samples);
    const auto with_pauses = make(ReadingKind::kRightWithPauses);
    EXPECT_EQ(Loud(with_pauses, 1000), 21 * kPhoneme);
    EXPECT_LE(with_pauses.size(), passage.samples.size() + 22050 * 9 / 5);
    const auto trimmed = make(ReadingKind::kTrimmed);
    EXPECT_LE(trimmed.size(), 21u * kPhoneme);
    EXPECT_GE(trimmed.size(), 21u * kPhoneme - 2205u);
  }
}

TEST(Readings, OfOneWordLoseAFifthOfItAtMostByTrimming) {
  const ReadingMaker maker(English(), Drawer(), {});
  const Passage word = PieceOf(Recordings()[0], 0, 1);
  for (std::uint64_t seed = 0; seed < 20; ++seed) {
    Random random(seed);
    EXPECT_GE(maker.Make(word, ReadingKind::kTrimmed, 0.0, random).samples.size(), 1600u);
  }
}

TEST(Readings, MispronouncedOnesTakePhonemesOfTheSameKindFromOthers) {
  const std::vector<Passage> recordings = {Spoken("ss tt ss tt ss", 1000), Spoken("ff aa", 4000)};
  const PassageDrawer drawer(recordings);
  const ReadingMaker maker(English(), drawer, {});
  int exchanged = 0;
  for (std::uint64_t seed = 0; seed < 50; ++seed) {
    Random random(seed);
    const Reading reading = maker.Make(recordings[0], ReadingKind::kMispronounced, 0.0, random);
    EXPECT_EQ(reading.sentence, "ss tt ss tt ss");
    EXPECT_EQ(reading.wrong, 0.0);
    EXPECT_EQ(reading.samples.size(), recordings[0].samples.size());
    exchanged += static_cast<int>(Loud(reading.samples, 4000) / (kPhoneme - 200));
  }
  EXPECT_GT(exchanged, 10);  // of 500, one in eight, some of them for one of the same recording
  EXPECT_LT(exchanged, 90);
}

TEST(Readings, UnrelatedOnesAreWrongAltogether) {
  const ReadingMaker maker(English(), Drawer(), Foreign());
  const Passage& passage = Recordings()[1];
  for (std::uint64_t seed = 0; seed < 20; ++seed) {
    Random random(seed);
    const Reading other = maker.Make(passage, ReadingKind::kOtherSentence, 0.0, random);
    EXPECT_EQ(other.sentence, TextOf(passage));
    EXPECT_EQ(other.wrong, 1.0);
    EXPECT_NE(other.samples, passage.samples);
    const Reading foreign = maker.Make(passage, ReadingKind::kOtherLanguage, 0.0, random);
    EXPECT_EQ(foreign.samples, Foreign()[0].samples);
    EXPECT_EQ(foreign.wrong, 1.0);
    for (const ReadingKind kind :
         {ReadingKind::kSilence, ReadingKind::kNoise, ReadingKind::kTones}) {
      const Reading none = maker.Make(passage, kind, 0.0, random);
      EXPECT_EQ(none.wrong, 1.0);
      EXPECT_EQ(none.sentence, TextOf(passage));
      EXPECT_GE(none.samples.size(), passage.samples.size() / 2);
      EXPECT_LE(none.samples.size(), passage.samples.size() * 2);
      const bool is_quiet =
          std::ranges::all_of(none.samples, [](int x) { return std::abs(x) < 400; });
      if (kind == ReadingKind::kSilence) {
        EXPECT_TRUE(is_quiet);
      }
    }
    const Reading twice = maker.Make(passage, ReadingKind::kRepeated, 0.0, random);
    EXPECT_EQ(twice.wrong, 0.5);
    EXPECT_EQ(Loud(twice.samples, 2000), 2 * Loud(passage.samples, 2000));
  }
}

TEST(Readings, OfOneWordCanBeWrongAltogether) {
  const ReadingMaker maker(English(), Drawer(), {});
  const Passage word = PieceOf(Recordings()[0], 1, 1);
  Random random(1);
  const Reading reading = maker.Make(word, ReadingKind::kReplaced, 0.1, random);
  EXPECT_NE(reading.sentence, "bbb");
  EXPECT_EQ(reading.wrong, 1.0);
  EXPECT_THROW(maker.Make(word, ReadingKind::kInserted, 0.1, random), std::logic_error);
  EXPECT_THROW(maker.Make(word, ReadingKind::kSwapped, 0.1, random), std::logic_error);
}

TEST(RecordingOf, LabelsWhatIsSpoken) {
  using ::testing::ElementsAre;
  const ReadingMaker maker(English(), Drawer(), {});
  Random random(1);
  const Passage& passage = Recordings()[0];
  const Reading right = maker.Make(passage, ReadingKind::kRight, 0.0, random);
  const Utterance recording = RecordingOf(right, ReadingKind::kRight, "v");
  EXPECT_EQ(recording.text, right.sentence);
  EXPECT_EQ(recording.voice, "v");
  EXPECT_EQ(recording.samples, right.samples);
  EXPECT_THAT(recording.labels, ElementsAre(PhonemeLabel{'-', 0}, PhonemeLabel{'A', kEdge},
                                            PhonemeLabel{'-', kEdge + 21 * kPhoneme}));
  const Reading loud{"a", std::vector<std::int16_t>(50, 100)};
  EXPECT_THAT(RecordingOf(loud, ReadingKind::kRight, "v").labels,
              ElementsAre(PhonemeLabel{'A', 0}));
  const Reading silent{"a", std::vector<std::int16_t>(50, 0)};
  EXPECT_TRUE(RecordingOf(silent, ReadingKind::kRight, "v").labels.empty());
  EXPECT_TRUE(RecordingOf(loud, ReadingKind::kNoise, "v").labels.empty());
}

TEST(Readings, TheSameNumbersMakeTheSameReading) {
  const ReadingMaker maker(English(), Drawer(), Foreign());
  for (const ReadingKind kind : kReadingKinds) {
    Random first(5);
    Random second(5);
    const Reading a = maker.Make(Recordings()[0], kind, 0.3, first);
    const Reading b = maker.Make(Recordings()[0], kind, 0.3, second);
    EXPECT_EQ(a.sentence, b.sentence);
    EXPECT_EQ(a.samples, b.samples) << NameOf(kind);
    EXPECT_EQ(a.wrong, b.wrong);
  }
}

TEST(Readings, HaveNamesOfTheirOwn) {
  std::set<std::string_view> names;
  for (const ReadingKind kind : kReadingKinds) names.insert(NameOf(kind));
  EXPECT_EQ(names.size(), kReadingKinds.size());
  EXPECT_FALSE(names.contains(""));
}

TEST(Readings, NeedSomethingToBeWrongWith) {
  const std::vector<Passage> alike = {Spoken("red green", 1), Spoken("red green", 2)};
  const PassageDrawer drawer(alike);
  EXPECT_THROW(ReadingMaker(English(), drawer, {}), std::runtime_error);
  const ReadingMaker maker(English(), Drawer(), {});
  EXPECT_FALSE(maker.HasForeign());
  Random random(1);
  EXPECT_THROW(maker.Make(Recordings()[0], ReadingKind::kOtherLanguage, 0.0, random),
               std::runtime_error);
}

// What is left of the scores, computed as the header says it rather than as the code does.
TEST(WantedProbability, LeavesTheFactorThatTheHeaderPromises) {
  const auto factor = [](double wrong) { return 1.0 / (1.0 - std::log(WantedProbability(wrong))); };
  EXPECT_EQ(WantedProbability(0.0), 1.0);
  EXPECT_NEAR(factor(0.1), 0.82, 0.01);
  EXPECT_NEAR(factor(0.2), 0.61, 0.01);
  EXPECT_NEAR(factor(0.5), 0.28, 0.01);
  EXPECT_NEAR(factor(1.0), 0.12, 0.01);
}

TEST(Percentile, IsTheNearestValueRoundedUp) {
  const std::vector<double> values = {5, 1, 4, 2, 3, 6, 7, 8, 9, 10};
  EXPECT_EQ(Percentile(values, 10.0), 1.0);
  EXPECT_EQ(Percentile(values, 11.0), 2.0);
  EXPECT_EQ(Percentile(values, 100.0), 10.0);
  EXPECT_EQ(Percentile(values, 0.0), 1.0);
  EXPECT_EQ(Percentile({}, 10.0), 0.0);
}

}  // namespace
}  // namespace veral3::training
