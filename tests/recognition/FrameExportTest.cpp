#include "recognition/FrameExport.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "core/Alignments.h"
#include "recognition/FrameScores.h"

namespace veral3 {
namespace {

const CPhonemeSet& Japanese() { return *PhonemeSetOf(kLanguageJapanese); }

// Row r holds r everywhere.
void FillMfcc(AlignmentResult& alignment) {
  alignment.mfcc.clear();
  for (int frame = 0; frame < alignment.num_frames; ++frame) {
    alignment.mfcc.insert(alignment.mfcc.end(), 39, static_cast<float>(frame));
  }
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

// Symbol and state of each label line, "a0 a1 -2 ".
std::string States(const CPhonemeSet& set, const std::string& labels) {
  std::string states;
  for (const std::string& line : Lines(labels)) {
    EXPECT_EQ(line.size(), static_cast<std::size_t>(6 * set.GetSize() - 1));
    EXPECT_EQ(std::count(line.begin(), line.end(), '1'), 1);
    const std::size_t state = line.find('1') / 2;
    states += set.GetFullSet()[state / 3];
    states += static_cast<char>('0' + state % 3);
    states += ' ';
  }
  return states;
}

// The centre frame of each feature line.
std::string Frames(const std::string& features) {
  std::string frames;
  for (const std::string& line : Lines(features)) {
    std::istringstream in(line);
    std::string cell;
    for (int i = 0; i <= 2 * 39; ++i) std::getline(in, cell, ',');
    frames += cell;
    frames += ' ';
    EXPECT_EQ(std::count(line.begin(), line.end(), ','), kFrameInputSize - 1);
  }
  return frames;
}

// Frames 0 - 1 pause, 2 - 3 k, 4 - 6 a, 7 - 8 pause, 9 the end.
AlignmentResult Spoken() {
  AlignmentResult alignment =
      test::MakeAlignment(10, {{'k', 2, 4}, {'a', 4, 7}}, {0}, std::vector<int>{0});
  FillMfcc(alignment);
  alignment.path = {{'*', 0, false, 0, 0, 0},    {'-', 0, false, 0, 1, 0},
                    {'-', 1, false, 0, 2, 220},  {'k', 0, true, 0, 3, 440},
                    {'k', 2, false, 0, 4, 660},  {'a', 0, false, 0, 5, 880},
                    {'a', 1, false, 0, 6, 1100}, {'a', 2, false, 0, 7, 1320},
                    {'-', 1, false, 0, 8, 1540}, {'$', 0, false, 0, 9, 1980}};
  return alignment;
}

struct Exported {
  std::string frames, states;
};

Exported Export(const AlignmentResult& alignment, const FrameExportChoice& choice) {
  std::ostringstream features, labels;
  ExportFrames(Japanese(), alignment, choice, features, labels);
  return {Frames(features.str()), States(Japanese(), labels.str())};
}

Exported ExportAdjusted(const AlignmentResult& alignment) {
  std::ostringstream features, labels;
  ExportAdjustedFrames(Japanese(), alignment, features, labels);
  return {Frames(features.str()), States(Japanese(), labels.str())};
}

TEST(FrameExport, FramesOfThePathWithTheirStates) {
  const std::vector<double> intensity = {0, 1, 9, 9, 9, 9, 9, 1, 0, 9};
  const Exported got =
      Export(Spoken(), {.threshold = 0.5, .loud_above = 1, .intensity = intensity});
  EXPECT_EQ(got.frames, "0 1 2 3 4 5 6 7 8 ");
  EXPECT_EQ(got.states, "-0 -1 k0 k2 a0 a1 a2 -1 -1 ");
}

TEST(FrameExport, PosteriorAtTheThresholdCounts) {
  AlignmentResult alignment = Spoken();
  alignment.path_posterior = {1, 1, 0.5, 0.499, 1, 1, 1, 1, 1, 1};
  const std::vector<double> intensity = {0, 0, 9, 9, 9, 9, 9, 0, 0, 0};
  EXPECT_EQ(Export(alignment, {.threshold = 0.5, .loud_above = 1, .intensity = intensity}).frames,
            "0 1 2 4 5 6 7 8 ");
}

TEST(FrameExport, LoudnessMustAgreeWithTheLabel) {
  // Exactly the bound is not loud: right for a pause, wrong for a phoneme.
  const std::vector<double> intensity = {1, 2, 1, 2, 0, 9, 9, 9, 0, 0};
  const Exported got = Export(Spoken(), {.threshold = 0, .loud_above = 1, .intensity = intensity});
  EXPECT_EQ(got.frames, "0 3 5 6 8 ");
  EXPECT_EQ(got.states, "-0 k2 a1 a2 -1 ");
}

TEST(FrameExport, TheLastFrameIsNeverWritten) {
  AlignmentResult alignment = Spoken();
  alignment.path.back().time = 2200;  // as if the pause went on
  EXPECT_EQ(Export(alignment, {}).frames, "0 1 7 8 ");
  EXPECT_EQ(ExportAdjusted(alignment).frames, "0 1 2 3 4 5 6 7 8 ");
}

TEST(FrameExport, FeatureLinesAreTheClassifiersInputs) {
  std::ostringstream features, labels;
  ExportFrames(Japanese(), Spoken(), {}, features, labels);
  std::string expected;
  for (const int frame : {0, 0, 0, 1, 2}) {
    for (int i = 0; i < 39; ++i) {
      if (!expected.empty()) expected += ',';
      expected += std::to_string(frame);
    }
  }
  EXPECT_EQ(Lines(features.str())[0], expected);
}

TEST(FrameExport, AdjustedStatesDivideAPhonemeEvenly) {
  struct Case {
    int length;
    const char* states;
  };
  for (const Case& c : {Case{1, "a0 "}, Case{2, "a0 a1 "}, Case{3, "a0 a1 a2 "},
                        Case{4, "a0 a0 a1 a2 "}, Case{5, "a0 a0 a1 a1 a2 "},
                        Case{7, "a0 a0 a0 a1 a1 a2 a2 "}, Case{8, "a0 a0 a0 a1 a1 a1 a2 a2 "}}) {
    AlignmentResult alignment = test::MakeAlignment(c.length + 1, {{'a', 0, c.length}}, {0});
    FillMfcc(alignment);
    EXPECT_EQ(ExportAdjusted(alignment).states, c.states) << c.length;
  }
}

TEST(FrameExport, AdjustedStatesOfAPauseAreItsEdges) {
  struct Case {
    int length;
    const char* states;
  };
  for (const Case& c : {Case{8, "-0 -0 -0 -1 -1 -2 -2 -2 "}, Case{6, "-0 -0 -0 -2 -2 -2 "},
                        Case{4, "-0 -0 -0 -2 "}, Case{3, "-0 -0 -0 "}, Case{2, "-0 -0 "}}) {
    AlignmentResult alignment =
        test::MakeAlignment(c.length + 2, {{'a', c.length, c.length + 1}}, {0});
    FillMfcc(alignment);
    EXPECT_EQ(ExportAdjusted(alignment).states, std::string(c.states).append("a0 ")) << c.length;
  }
}

TEST(FrameExport, AdjustedPausesLieBeforeBetweenAndAfter) {
  AlignmentResult alignment = test::MakeAlignment(12, {{'k', 1, 4}, {'a', 6, 9}}, {0});
  FillMfcc(alignment);
  EXPECT_EQ(ExportAdjusted(alignment).states, "-0 k0 k1 k2 -0 -0 a0 a1 a2 -0 -0 ");
}

TEST(FrameExport, NothingSpokenIsOnePause) {
  AlignmentResult alignment = test::MakeAlignment(8, {}, {}, {});
  FillMfcc(alignment);
  EXPECT_EQ(ExportAdjusted(alignment).states, "-0 -0 -0 -1 -2 -2 -2 ");
  EXPECT_EQ(Export(alignment, {}).states, "");
}

TEST(FrameExport, NothingAligned) {
  const AlignmentResult none;
  EXPECT_EQ(Export(none, {}).frames, "");
  EXPECT_EQ(ExportAdjusted(none).frames, "");
}

TEST(FrameExport, NoAlignmentLeadsOutsideAnArray) {
  test::WildAlignments wild(7);
  for (int i = 0; i < 400; ++i) {
    AlignmentResult alignment = wild.Next();
    for (int k = wild.Size(12); k > 0; --k) {
      alignment.path.push_back({"*-ak$?"[wild.Size(6)], static_cast<std::int8_t>(wild.Size(3)),
                                false, 0, 0, wild.Number(60 * kFrameShift)});
    }
    std::vector<double> intensity;
    wild.Fill(intensity, 60);
    std::ostringstream features, labels;
    ExportFrames(Japanese(), alignment,
                 {.threshold = 0.5, .loud_above = 0.5, .intensity = intensity}, features, labels);
    ExportAdjustedFrames(Japanese(), alignment, features, labels);
    ASSERT_EQ(Lines(features.str()).size(), Lines(labels.str()).size());
  }
}

}  // namespace
}  // namespace veral3
