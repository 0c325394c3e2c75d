#include "training/features/ToneExamples.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <stdexcept>

#include "signal/CWaveFrameDef.h"
#include "training/corpus/ChineseVoices.h"
#include "training/corpus/EspeakVariants.h"

namespace veral3::training {
namespace {

using ::testing::ElementsAre;

// A second of a voice at `hz`, in two syllables "ma" with a pause between.
Utterance TwoSyllables(double hz) {
  Utterance utterance;
  utterance.labels = {{'-', 0}, {'m', 4400}, {'a', 5500}, {'-', 11000}, {'m', 13200}, {'a', 14300}};
  utterance.syllables = {0, 2};
  utterance.tones = utterance.spoken_tones = "15";
  for (int i = 0; i < kSampleRate; ++i) {
    const bool voiced = (i >= 4400 && i < 11000) || i >= 13200;
    double x = 0.0;
    for (int harmonic = 1; voiced && harmonic <= 8; ++harmonic) {
      x += std::sin(2.0 * std::numbers::pi * hz * harmonic * i / kSampleRate) / harmonic;
    }
    utterance.samples.push_back(static_cast<std::int16_t>(8000.0 * x));
  }
  return utterance;
}

// Five syllables of 20 frames each: rising, with a hole of three frames in the third.
ToneTrack RisingTrack() {
  ToneTrack track;
  for (int syllable = 0; syllable < 5; ++syllable) {
    track.syllables.push_back({syllable * 20, syllable * 20 + 20});
    for (int f = 0; f < 20; ++f) track.pitch.push_back(150 + 2 * f);
  }
  for (int f = 48; f < 51; ++f) track.pitch[static_cast<std::size_t>(f)] = 0;
  return track;
}

TEST(ToneClasses, NeutralIsZero) {
  EXPECT_EQ(ToneClassOf('1'), 1);
  EXPECT_EQ(ToneClassOf('4'), 4);
  EXPECT_EQ(ToneClassOf('5'), 0);
  EXPECT_THROW(ToneClassOf('0'), std::runtime_error);
  EXPECT_THROW(ToneClassOf('6'), std::runtime_error);
}

TEST(SyllableFrames, LeaveOutPauses) {
  EXPECT_THAT(SyllableFrames(TwoSyllables(200.0)),
              ElementsAre(FrameSpan{20, 50}, FrameSpan{60, kSampleRate / kFrameShift}));
}

TEST(SyllableFrames, RefuseSyllablesThatAreNotThere) {
  Utterance utterance = TwoSyllables(200.0);
  utterance.syllables = {0, 4};
  EXPECT_THROW(SyllableFrames(utterance), std::runtime_error);
  utterance.syllables = {2, 2};
  EXPECT_THROW(SyllableFrames(utterance), std::runtime_error);
}

TEST(ToneTrack, HasThePitchOfTheVoice) {
  const ToneTrack track = ToneTrackOf(TwoSyllables(200.0));
  for (const FrameSpan span : track.syllables) {
    for (int f = span.begin + 3; f < span.end - 3; ++f) {
      EXPECT_NEAR(track.pitch[static_cast<std::size_t>(f)], 200, 2) << f;
    }
  }
}

TEST(ToneTrack, LosesAVoiceBelowTheTrackerThatTheDeepOneFollows) {
  const Utterance low = TwoSyllables(60.0);
  const ToneTrack deep = DeepTrackOf(low);
  for (const FrameSpan span : deep.syllables) {
    for (int f = span.begin + 4; f < span.end - 4; ++f) {
      EXPECT_NEAR(deep.pitch[static_cast<std::size_t>(f)], 60, 1) << f;
      EXPECT_NE(ToneTrackOf(low).pitch[static_cast<std::size_t>(f)], 60) << f;
    }
  }
  EXPECT_NEAR(MeanPitch(deep), 60.0, 1.5);
  EXPECT_THAT(FallBelowTracker(deep), ElementsAre(true, true));
  const ToneTrack high = DeepTrackOf(TwoSyllables(200.0));
  EXPECT_NEAR(MeanPitch(high), 200.0, 2.0);
  EXPECT_THAT(FallBelowTracker(high), ElementsAre(false, false));
}

TEST(ToneTrack, ASyllableFallsBelowTheTrackerWhenAFifthOfItDoes) {
  ToneTrack track;
  track.pitch = {0, 90, 90, 90, 90, 74, 90, 90, 90, 74, 0, 0, 0};
  track.syllables = {{0, 6}, {5, 9}, {1, 5}, {10, 13}, {1, 10}};
  // 1 of 5, 1 of 4, none, nothing, 2 of 9.
  EXPECT_THAT(FallBelowTracker(track), ElementsAre(true, true, false, false, true));
  track.syllables = {{0, 9}};  // 1 of 8
  EXPECT_THAT(FallBelowTracker(track), ElementsAre(false));
  EXPECT_NEAR(MeanPitch(track), (7 * 90 + 74) / 8.0, 1e-9);
  track.syllables = {{10, 13}};
  EXPECT_EQ(MeanPitch(track), 0.0);
}

TEST(ToneTrack, IsEmptyForARecordingBelowOneFrame) {
  Utterance utterance;
  utterance.samples.resize(kFrameLength - 1);
  EXPECT_TRUE(ToneTrackOf(utterance).pitch.empty());
  EXPECT_TRUE(ToneExamplesOf(ToneTrackOf(utterance), "").empty());
}

TEST(ToneExamples, AreWhatTheEngineComputes) {
  const ToneTrack track = RisingTrack();
  const auto examples = ToneExamplesOf(track, "12345");
  ASSERT_EQ(examples.size(), 5u);
  EXPECT_EQ(examples[1].tone_class, 2);
  EXPECT_EQ(examples[4].tone_class, 0);
  EXPECT_EQ(examples[1].syllable, 1);
  const ToneFeatures& features = examples[1].features;
  EXPECT_EQ(features[0], 188);  // mean of the highest
  EXPECT_EQ(features[1], 20);
  EXPECT_EQ(features[2], 188);
  EXPECT_EQ(features[3], 150);
  EXPECT_EQ(features[4], 150);
  EXPECT_EQ(features[23], 188);
  EXPECT_EQ(features[24], 0);
  EXPECT_THROW(ToneExamplesOf(track, "1234"), std::runtime_error);
}

TEST(ToneExamples, LeaveOutSyllablesInPieces) {
  ToneTrack track = RisingTrack();
  for (const int f : {5, 6, 7, 12, 13, 14}) track.pitch[static_cast<std::size_t>(f)] = 0;
  const auto examples = ToneExamplesOf(track, "12345");
  ASSERT_EQ(examples.size(), 4u);
  EXPECT_EQ(examples[0].syllable, 1);
}

TEST(WarpTrack, KeepsSyllablesAndTheTrackersRange) {
  const ToneTrack track = RisingTrack();
  bool higher = false;
  bool longer = false;
  for (std::uint64_t seed = 0; seed < 200; ++seed) {
    Random random(seed);
    const ToneTrack warped = WarpTrack(track, random);
    ASSERT_EQ(warped.syllables.size(), 5u);
    int end = 0;
    for (const FrameSpan span : warped.syllables) {
      EXPECT_EQ(span.begin, end);
      EXPECT_GT(span.end, span.begin);
      end = span.end;
    }
    EXPECT_EQ(static_cast<std::size_t>(end), warped.pitch.size());
    for (const std::int32_t hz : warped.pitch) EXPECT_TRUE(hz == 0 || (hz >= 75 && hz <= 450));
    higher = higher || *std::ranges::max_element(warped.pitch) > 250;
    longer = longer || warped.pitch.size() > 120;
    Random again(seed);
    EXPECT_EQ(WarpTrack(track, again).pitch, warped.pitch);
  }
  EXPECT_TRUE(higher);
  EXPECT_TRUE(longer);
}

TEST(ToneExamples, LeaveOutLostSyllables) {
  ToneTrack track = RisingTrack();
  track.lost = {true, false, false, true, false};
  const auto examples = ToneExamplesOf(track, "12345");
  ASSERT_EQ(examples.size(), 3u);
  EXPECT_EQ(examples[0].syllable, 1);
  EXPECT_EQ(examples[1].tone_class, 3);
  EXPECT_EQ(examples[2].syllable, 4);
}

TEST(WarpTrack, TellsWhichSyllablesALowVoiceLoses) {
  ToneTrack track = RisingTrack();
  for (std::int32_t& hz : track.pitch) hz = hz / 2 + 10;  // 85 to 104 Hz
  track.lost = {false, false, false, false, true};
  int lost = 0;
  for (std::uint64_t seed = 0; seed < 100; ++seed) {
    Random random(seed);
    const ToneTrack warped = WarpTrack(track, random);
    ASSERT_EQ(warped.lost.size(), 5u);
    EXPECT_TRUE(warped.lost[4]);
    const auto voiced = [](std::int32_t hz) { return hz > 0; };
    for (std::size_t i = 0; i < 4; ++i) {
      const FrameSpan span = warped.syllables[i];
      const auto begin = warped.pitch.begin();
      const auto left = std::count_if(begin + span.begin, begin + span.end, voiced);
      if (left == 0) {
        EXPECT_TRUE(warped.lost[i]) << seed;
      }
      lost += warped.lost[i];
    }
  }
  EXPECT_GT(lost, 40);
  EXPECT_LT(lost, 360);
}

TEST(WarpTrack, TakesTracksWithoutVoiceOrFrames) {
  Random random(1);
  ToneTrack silent;
  silent.pitch.resize(10);
  silent.syllables = {{0, 5}, {5, 5}, {5, 10}};
  for (const std::int32_t hz : WarpTrack(silent, random).pitch) EXPECT_EQ(hz, 0);
  EXPECT_EQ(WarpTrack(silent, random).syllables.size(), 3u);
  EXPECT_TRUE(WarpTrack({}, random).syllables.empty());
}

TEST(ToneVoices, AreLowAndHighAndHaveMelody) {
  for (const bool held_out : {false, true}) {
    Random random(1);
    int lowest = 99;
    int highest = 0;
    for (int i = 0; i < 500; ++i) {
      const EspeakVoice voice = DrawToneVoice(random, held_out);
      const std::string variant = voice.name.substr(voice.name.rfind('+') + 1);
      EXPECT_EQ(std::ranges::count(kHeldOutVariants, variant), held_out ? 1 : 0) << variant;
      EXPECT_NE(variant, "aunty");
      EXPECT_NE(variant, "Alex");
      EXPECT_GE(voice.range, 85);
      lowest = std::min(lowest, voice.pitch);
      highest = std::max(highest, voice.pitch);
    }
    EXPECT_LT(lowest, 25);
    EXPECT_GT(highest, 90);
  }
}

TEST(ChineseVoices, HeldOutOnesAreNeverTrainedOn) {
  Random random(1);
  for (int i = 0; i < 500; ++i) {
    const std::string name = DrawChineseVoice(random, false).name;
    EXPECT_EQ(std::ranges::count(kHeldOutVariants, name.substr(name.rfind('+') + 1)), 0) << name;
  }
}

TEST(ChineseVoices, CarryTonesAndSyllables) {
  EspeakSpeech espeak;
  const ChineseTexts texts(VERAL3_SOURCE_DIR "/resources/KCN-UTF8Order.txt");
  Random random(4);
  const ChineseSentence sentence = texts.DrawHeldOut(random);
  const Utterance utterance = SpeakChinese(espeak, DrawToneVoice(random, true), sentence);
  EXPECT_EQ(PhonemesOf(utterance), sentence.phonemes);
  EXPECT_EQ(utterance.tones, sentence.tones);
  EXPECT_EQ(utterance.spoken_tones, sentence.spoken_tones);
  EXPECT_EQ(utterance.syllables, sentence.starts);
  EXPECT_EQ(SyllableFrames(utterance).size(), utterance.tones.size());
}

}  // namespace
}  // namespace veral3::training
