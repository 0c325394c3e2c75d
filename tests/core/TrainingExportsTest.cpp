#include "core/TrainingExports.h"

#include <gtest/gtest.h>

#include <numeric>
#include <sstream>
#include <string>
#include <vector>

#include "core/Alignments.h"
#include "support/MessageCapture.h"

namespace veral3 {
namespace {

using test::MakeAlignment;

std::vector<std::string> Lines(const std::string& text) {
  EXPECT_TRUE(text.empty() || text.back() == '\n');
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

TEST(GoodnessExample, SixteenFeaturesAndALabel) {
  GoodnessFeatures features{};
  std::iota(features.begin(), features.end(), 0.0);
  features[12] = -1234567.0;
  features[13] = 1.0 / 3.0;
  std::ostringstream feature_lines, label_lines;
  WriteGoodnessExample(features, true, feature_lines, label_lines);
  WriteGoodnessExample(features, false, feature_lines, label_lines);
  const std::string line = "0,1,2,3,4,5,6,7,8,9,10,11,-1.23457e+06,0.333333,14,15\n";
  EXPECT_EQ(feature_lines.str(), line + line);
  EXPECT_EQ(label_lines.str(), "1.0, 0.0\n0.0, 1.0\n");
}

// One phoneme of 2 frames a syllable, with these tone marks.
AlignmentResult Toned(const std::vector<int>& marks) {
  std::vector<test::Phoneme> phonemes;
  std::vector<int> starts;
  for (int i = 0; i < static_cast<int>(marks.size()); ++i) {
    phonemes.push_back({'a', 2 * i, 2 * i + 2});
    starts.push_back(i);
  }
  AlignmentResult alignment =
      MakeAlignment(2 * static_cast<int>(marks.size()) + 1, phonemes, starts, starts);
  std::ranges::copy(marks, alignment.syllable_mark.begin());
  return alignment;
}

// Labels of the syllables in order, "." for one that no tone class has.
std::string ToneLabels(const std::vector<int>& marks, std::string* messages = nullptr) {
  const AlignmentResult alignment = Toned(marks);
  PitchMeasures pitch;
  pitch.frame.assign(static_cast<std::size_t>(alignment.num_frames), 100);
  pitch.syllable.assign(marks.size(), 100);
  std::ostringstream features, labels;
  test::MessageCapture capture;
  WriteToneExamples(alignment, pitch, features, labels);
  if (messages) *messages = capture.Of(MessageStream::kError);
  std::string got;
  for (const std::string& line : Lines(labels.str())) {
    EXPECT_EQ(line.size(), 9u);
    const std::size_t at = line.find('1');
    got += at == std::string::npos ? '.' : static_cast<char>('0' + at / 2);
  }
  EXPECT_EQ(Lines(features.str()).size(), got.size());
  return got;
}

TEST(ToneExamples, FeaturesAreWholeNumbersSeparatedByCommaAndBlank) {
  const AlignmentResult alignment = Toned({1, 4});
  PitchMeasures pitch;
  pitch.frame = {200, 0, 150, 160, 0};
  pitch.syllable = {200, 160};
  pitch.average_syllable_length = 2;
  std::ostringstream features, labels;
  WriteToneExamples(alignment, pitch, features, labels);
  std::string zeros;
  for (int i = 0; i < 62; ++i) zeros += ", 0";
  EXPECT_EQ(features.str(),
            "180, 2, 0, 150, 200, 0" + zeros + "\n" + "180, 2, 200, 0, 150, 160" + zeros + "\n");
  EXPECT_EQ(labels.str(), "0,1,0,0,0\n0,0,0,0,1\n");
}

TEST(ToneExamples, ThirdToneBeforeThirdToneIsLabelledSecond) {
  EXPECT_EQ(ToneLabels({1, 2, 3, 4, 0}), "12340");
  EXPECT_EQ(ToneLabels({3, 3}), "23");
  EXPECT_EQ(ToneLabels({3, 3, 1}), "231");
  EXPECT_EQ(ToneLabels({1, 3, 3, 4}), "1234");
  EXPECT_EQ(ToneLabels({3}), "3");
}

TEST(ToneExamples, TwoOfThreeThirdTonesAreSkipped) {
  std::string messages;
  EXPECT_EQ(ToneLabels({3, 3, 3}, &messages), "3");
  EXPECT_EQ(messages, "// Skipping syllables[1]: Triple 3rd tones!\n");
  EXPECT_EQ(ToneLabels({1, 3, 3, 3, 3}, &messages), "123");
  EXPECT_EQ(messages, "// Skipping syllables[2]: Triple 3rd tones!\n");
  EXPECT_EQ(ToneLabels({3, 3, 3, 3, 3}, &messages), "3");
  EXPECT_EQ(messages,
            "// Skipping syllables[1]: Triple 3rd tones!\n"
            "// Skipping syllables[3]: Triple 3rd tones!\n");
}

TEST(ToneExamples, AMarkThatNoClassHasMakesALineOfZeros) {
  EXPECT_EQ(ToneLabels({5, 1}), ".1");
  EXPECT_EQ(ToneLabels({-1}), ".");
  EXPECT_EQ(ToneLabels({}), "");
}

TEST(PhonemeExamples, SixteenFramesOfWhichThoseBeyondTheEndAreZero) {
  const CPhonemeSet& set = *PhonemeSetOf(kLanguageJapanese);
  AlignmentResult alignment = MakeAlignment(6, {{'a', 1, 3}, {'?', 3, 4}}, {0});
  for (int i = 0; i < 6 * 39; ++i) alignment.mfcc.push_back(static_cast<float>(i) / 4);
  std::ostringstream features, labels;
  WritePhonemeExamples(set, alignment, features, labels);
  std::string expected = "9.75";
  for (int i = 40; i < 3 * 39; ++i) {
    std::ostringstream number;
    number << i / 4.0;
    expected += ',';
    expected += number.str();
  }
  for (int i = 0; i < 14 * 39; ++i) expected += ",0";
  const std::vector<std::string> lines = Lines(features.str());
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[0], expected);

  std::string label;
  for (int i = 0; i < set.GetSize(); ++i) {
    if (i > 0) label += ',';
    label += set.GetFullSet()[i] == 'a' ? '1' : '0';
  }
  const std::vector<std::string> label_lines = Lines(labels.str());
  ASSERT_EQ(label_lines.size(), 2u);
  EXPECT_EQ(label_lines[0], label);
  EXPECT_EQ(label_lines[1].find('1'), std::string::npos);  // a symbol that the set lacks
}

TEST(PhonemeExamples, OffsetsAreThoseOfTheClassifier) {
  const CPhonemeSet& set = *PhonemeSetOf(kLanguageEnglish);
  AlignmentResult alignment = MakeAlignment(50, {{'e', 2, 45}}, {0});
  for (int frame = 0; frame < 50; ++frame) {
    alignment.mfcc.insert(alignment.mfcc.end(), 39, static_cast<float>(frame));
  }
  std::ostringstream features, labels;
  WritePhonemeExamples(set, alignment, features, labels);
  std::string expected;
  for (const int offset : {0, 1, 2, 3, 4, 5, 6, 7, 9, 11, 13, 15, 18, 21, 25, 31}) {
    for (int i = 0; i < 39; ++i) {
      if (!expected.empty()) expected += ',';
      expected += std::to_string(2 + offset);
    }
  }
  EXPECT_EQ(features.str(), expected + "\n");
}

TEST(SyllableTraits, OneLineASyllable) {
  const AlignmentResult alignment = MakeAlignment(9, {{'a', 0, 3}, {'i', 3, 8}}, {0, 1});
  ProsodyResult prosody;
  prosody.intensity.convexity = {0.0, 2599328617.0};
  prosody.pitch.segments = {{1, 0, 9}, {2, 10, 37}};
  std::ostringstream out;
  WriteSyllableTraits(alignment, prosody, out);
  EXPECT_EQ(out.str(), "0,1,0,9,0\n2.59933e+09,2,10,37,1\n");
}

TEST(SyllableTraits, OneSyllableIsTheLast) {
  const AlignmentResult alignment = MakeAlignment(9, {{'a', 0, 3}}, {0});
  std::ostringstream out;
  WriteSyllableTraits(alignment, {}, out);  // what was not measured reads 0
  EXPECT_EQ(out.str(), "0,0,0,0,1\n");
  std::ostringstream none;
  WriteSyllableTraits(MakeAlignment(9, {}, {}), {}, none);
  EXPECT_EQ(none.str(), "");
}

TEST(PhonemeTraits, OneLineAPhoneme) {
  AlignmentResult alignment = MakeAlignment(9, {{'k', 1, 3}, {'a', 3, 8}}, {0});
  alignment.phoneme_mfcc_prob = {0.25, 3e-06};
  std::ostringstream out;
  WritePhonemeTraits(alignment, out);
  EXPECT_EQ(out.str(), "0,k,440,0.25\n1,a,1100,3e-06\n");
}

TEST(PauseTraits, NoLineForTheFirstSyllable) {
  AlignmentResult alignment =
      MakeAlignment(20, {{'k', 1, 3}, {'a', 3, 8}, {'i', 10, 12}, {'u', 12, 14}}, {0, 2, 3});
  alignment.pause_mfcc_prob = {0.1, 0.2, 0.3, 0.4, 0.5};
  GoodnessResult goodness;
  goodness.loud_gaps = {7, 2, 0, 9};
  std::ostringstream out;
  WritePauseTraits(alignment, goodness, out);
  EXPECT_EQ(out.str(), "1,2,0.3\n2,0,0.4\n");
  std::ostringstream one;
  WritePauseTraits(MakeAlignment(9, {{'a', 0, 3}}, {0}), goodness, one);
  EXPECT_EQ(one.str(), "");
}

TEST(TrainingExports, NoAlignmentLeadsOutsideAnArray) {
  test::WildAlignments wild(11);
  const test::MessageCapture quiet;
  for (int i = 0; i < 1000; ++i) {
    AlignmentResult alignment = wild.Next();
    wild.Fill(alignment.syllable_mark, 6);
    ProsodyResult prosody;
    prosody.pitch.frame.assign(static_cast<std::size_t>(wild.Size(60)), wild.Number(300));
    prosody.pitch.syllable.assign(static_cast<std::size_t>(wild.Size(12)), wild.Number(300));
    wild.Fill(prosody.intensity.convexity, 12);
    prosody.pitch.segments.resize(static_cast<std::size_t>(wild.Size(12)));
    GoodnessResult goodness;
    goodness.loud_gaps.assign(static_cast<std::size_t>(wild.Size(12)), 1);
    std::ostringstream a, b;
    WriteToneExamples(alignment, prosody.pitch, a, b);
    WritePhonemeExamples(*PhonemeSetOf(kLanguageChinese), alignment, a, b);
    ASSERT_EQ(Lines(a.str()).size(), Lines(b.str()).size());
    WriteSyllableTraits(alignment, prosody, a);
    WritePhonemeTraits(alignment, a);
    WritePauseTraits(alignment, goodness, a);
  }
}

}  // namespace
}  // namespace veral3
