// How well the pitch track, before its mapping to whole hertz, follows sounds of known pitch.
// Prints the table of docs/pitch.md:
//
//   veral3_test_signal --gtest_filter='PitchAccuracy.*'

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "SyntheticVoice.h"
#include "signal/FramePitch.h"

namespace veral3::test {
namespace {

constexpr double kClean = 300.0;  // dB: noise below a 16-bit step

PitchErrors Track(const KnownSound& sound) {
  const auto track = TrackSpeakerPitch(CPraAutoCorrPDA(), sound.samples.data(),
                                       static_cast<std::uint32_t>(sound.samples.size()));
  return track ? Compare(*track, sound) : PitchErrors{};
}

void Print(const std::string& name, double noise_db, const PitchErrors& errors) {
  const std::string noise =
      noise_db == kClean ? "clean" : std::to_string(static_cast<int>(noise_db)) + " dB";
  std::printf("| %-22s | %-5s | %5d | %5.2f | %5.2f | %5.2f | %6.3f |\n", name.c_str(),
              noise.c_str(), errors.frames, errors.GrossPercent(), errors.MissedPercent(),
              errors.FalsePercent(), errors.MedianHertz());
}

VoiceMaker::Contour Steady(double hertz) {
  return [hertz](double) { return hertz; };
}

VoiceMaker::Contour Glide(double from, double to) {
  return [from, to](double time) { return from * std::pow(to / from, time); };
}

// A level of the fundamental and of the second harmonic other than the vowel's.
VoiceMaker::Envelope Shaped(double fundamental, double second) {
  return [fundamental, second](int harmonic, double hertz) {
    const double level = VowelEnvelope(harmonic, hertz);
    return harmonic == 1 ? level * fundamental : harmonic == 2 ? level * second : level;
  };
}

// Every case is a list of recordings, each of one speaker: the tracker fits its range to a
// recording.
using Recordings = std::vector<VoiceMaker>;

VoiceMaker OneVowel(double seconds, const VoiceMaker::Contour& contour,
                    const VoiceMaker::Envelope& envelope, double alternation = 0.0) {
  VoiceMaker voice;
  voice.AddSilence(0.2);
  voice.AddVoiced(seconds, contour, envelope, alternation);
  voice.AddSilence(0.2);
  return voice;
}

Recordings SteadyTones() {
  Recordings recordings;
  for (double hertz = 80.0; hertz <= 400.0; hertz *= 1.17) {
    recordings.push_back(OneVowel(0.5, Steady(hertz), VowelEnvelope));
  }
  return recordings;
}

Recordings Glides() {
  Recordings recordings;
  for (const double seconds : {3.0, 1.5, 0.8}) {
    recordings.push_back(OneVowel(seconds, Glide(80.0, 400.0), VowelEnvelope));
    recordings.push_back(OneVowel(seconds, Glide(400.0, 80.0), VowelEnvelope));
  }
  return recordings;
}

Recordings WeakFundamental() {
  Recordings recordings;
  for (const double level : {0.1, 0.0}) {  // 20 dB down, and none at all
    recordings.push_back(OneVowel(1.5, Glide(90.0, 250.0), Shaped(level, 1.0)));
    recordings.push_back(OneVowel(1.0, Glide(220.0, 120.0), Shaped(level, 1.0)));
  }
  return recordings;
}

Recordings StrongSecondHarmonic() {
  return {OneVowel(1.5, Glide(90.0, 210.0), Shaped(0.5, 4.0)),
          OneVowel(1.0, Glide(200.0, 110.0), Shaped(0.5, 4.0))};
}

Recordings AlternatingPeriods() {
  Recordings recordings;
  for (const double alternation : {0.05, 0.1, 0.15}) {
    recordings.push_back(OneVowel(1.0, Glide(160.0, 300.0), VowelEnvelope, alternation));
  }
  return recordings;
}

Recordings WhisperBetweenVowels() {
  VoiceMaker voice;
  for (const double hertz : {110.0, 140.0, 125.0, 160.0}) {
    voice.AddVoiced(0.4, Glide(hertz, hertz * 1.3), VowelEnvelope);
    voice.AddWhisper(0.4);
    voice.AddSilence(0.1);
  }
  return {voice};
}

Recordings CreakAfterVowels() {
  VoiceMaker voice;
  for (const double hertz : {190.0, 210.0, 170.0, 230.0}) {
    voice.AddVoiced(0.5, Glide(hertz, hertz * 0.7), VowelEnvelope);
    voice.AddCreak(0.3);
    voice.AddSilence(0.1);
  }
  return {voice};
}

struct Case {
  const char* name;
  Recordings (*make)();
};
constexpr Case kCases[] = {
    {"steady tones", SteadyTones},
    {"glides", Glides},
    {"weak fundamental", WeakFundamental},
    {"strong 2nd harmonic", StrongSecondHarmonic},
    {"alternating periods", AlternatingPeriods},
    {"whisper between vowels", WhisperBetweenVowels},
    {"creak after vowels", CreakAfterVowels},
};

PitchErrors TrackCase(const Case& c, double noise_db) {
  static std::map<std::string, Recordings> made;  // they take longer to make than to track
  if (!made.contains(c.name)) made[c.name] = c.make();
  PitchErrors errors;
  for (VoiceMaker voice : made[c.name]) errors.Add(Track(voice.WithNoise(noise_db)));
  return errors;
}

PitchErrors TrackAll(double noise_db) {
  PitchErrors all;
  for (const Case& c : kCases) {
    const PitchErrors errors = TrackCase(c, noise_db);
    Print(c.name, noise_db, errors);
    all.Add(errors);
  }
  Print("all", noise_db, all);
  return all;
}

class PitchAccuracy : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    std::printf(
        "|                        | noise | frames | gross %% | missed %% | false %% |"
        " median Hz |\n|---|---|---|---|---|---|---|\n");
  }
};

TEST_F(PitchAccuracy, Clean) {
  const PitchErrors errors = TrackAll(kClean);
  EXPECT_LE(errors.GrossPercent(), 1.0);
  EXPECT_LE(errors.MissedPercent(), 2.0);
  EXPECT_LE(errors.FalsePercent(), 2.0);
}

TEST_F(PitchAccuracy, TwentyDecibels) {
  const PitchErrors errors = TrackAll(20.0);
  EXPECT_LE(errors.GrossPercent(), 1.0);
}

TEST_F(PitchAccuracy, TenDecibels) {
  const PitchErrors errors = TrackAll(10.0);
  EXPECT_LE(errors.GrossPercent(), 3.0);
}

TEST_F(PitchAccuracy, ZeroDecibels) {
  const PitchErrors errors = TrackAll(0.0);
  EXPECT_LE(errors.GrossPercent(), 10.0);
}

TEST_F(PitchAccuracy, SteadyTonesAreExact) {
  for (const double noise_db : {kClean, 20.0, 10.0}) {
    EXPECT_LT(TrackCase(kCases[0], noise_db).MedianHertz(), 0.5);
  }
}

}  // namespace
}  // namespace veral3::test
