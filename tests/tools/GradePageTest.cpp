#include "tools/GradePage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <regex>

#include "SampleReport.h"
#include "common/Unicode.h"
#include "tools/PageStyle.h"
#include "tools/TextFiles.h"

namespace veral3::tools {
namespace {

using test::SampleGrade;
using test::SamplePronunciationGrade;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

// Every tag that opens closes, in order.
std::string TagError(const std::string& page) {
  std::vector<std::string> open;
  for (std::size_t at = page.find('<'); at != std::string::npos; at = page.find('<', at + 1)) {
    const std::string tag = page.substr(at + 1, page.find('>', at) - at - 1);
    const bool closes = tag.starts_with("/");
    const std::size_t begin = closes ? 1 : 0;
    const std::string name = tag.substr(begin, tag.find_first_of(" \n/", begin) - begin);
    if (tag.ends_with("/") || name == "meta" || name == "!DOCTYPE") continue;
    if (!closes) {
      open.push_back(name);
    } else if (open.empty() || open.back() != name) {
      return "</" + name + "> closes " + (open.empty() ? "nothing" : open.back());
    } else {
      open.pop_back();
    }
  }
  return open.empty() ? "" : "<" + open.back() + "> stays open";
}

TEST(GradePage, TagsThatDoNotCloseAreFound) {
  EXPECT_EQ(TagError("<!DOCTYPE html>\n<p class=\"a\">x<path d=\"M0 0\"/></p>"), "");
  EXPECT_EQ(TagError("<p><b>x</p></b>"), "</p> closes b");
  EXPECT_EQ(TagError("x</p>"), "</p> closes nothing");
  EXPECT_EQ(TagError("<div><p></p>"), "<div> stays open");
}

TEST(GradePage, StandsAlone) {
  const DrawnRecording tutor = SampleGrade().drawn;
  const std::string page = GradePage({SampleGrade(), SampleGrade()}, &tutor);
  EXPECT_EQ(TagError(page), "");
  EXPECT_TRUE(IsUtf8(page));
  EXPECT_THAT(page, testing::StartsWith("<!DOCTYPE html>\n"));
  for (const char* fetched :
       {"<script", "<link", "<img", "<iframe", "http:", "https:", "url(", "@import", "src="}) {
    EXPECT_THAT(page, Not(HasSubstr(fetched)));
  }
  EXPECT_THAT(page, AllOf(Not(HasSubstr("nan")), Not(HasSubstr("inf,"))));
}

TEST(GradePage, TellsScoresSoundsAndAdvice) {
  const DrawnRecording tutor = SampleGrade().drawn;
  const std::string page = GradePage({SampleGrade()}, &tutor);
  EXPECT_THAT(page, HasSubstr("<li>Total<span class=\"number\">81</span>"));
  EXPECT_THAT(page, HasSubstr("Tutor: t.wav (Ms. Lin)"));
  EXPECT_THAT(page, HasSubstr("<span class=\"heard\">like k</span>"));
  EXPECT_THAT(page, HasSubstr("AWAY, syllable @: a long pause before it where the tutor makes "
                              "none; pitch too high; much too short"));
  EXPECT_THAT(page, HasSubstr("<td>S</td><td>timing</td><td>much too short</td>"));
  EXPECT_THAT(page, HasSubstr("Length 0.20 s, tutor 0.20 s"));
  // The phonemes' scores fall from 100 to 40.
  for (const char* band : {"chip good", "chip fair", "chip weak"}) {
    EXPECT_THAT(page, HasSubstr(band));
  }
}

// "S", much too short, of the second syllable, which lasts from 8800 to 9900.
TEST(GradePage, AdviceAgainstTheLengthsSaysWhatItRestsOn) {
  DrawnRecording tutor = SampleGrade().drawn;
  const std::string added =
      "much too short, measured against the other syllables of the same reading";
  EXPECT_THAT(GradePage({SampleGrade()}, &tutor),
              HasSubstr("<p class=\"advice\">" + added + "</p>"));
  tutor.syllables[1] = {8800, 9800};
  EXPECT_THAT(GradePage({SampleGrade()}, &tutor), HasSubstr(added));
  tutor.syllables[1] = {8800, 10200};
  const std::string page = GradePage({SampleGrade()}, &tutor);
  EXPECT_THAT(page, HasSubstr("<p class=\"advice\">much too short</p>"));
  EXPECT_THAT(page, Not(HasSubstr("measured against")));
}

TEST(GradePage, LoweredScoresAreToldOf) {
  const DrawnRecording tutor = SampleGrade().drawn;
  GradeReport report = SampleGrade();
  EXPECT_THAT(GradePage({report}, &tutor), Not(HasSubstr("class=\"lowered\"")));
  report.lowered_to = 0.484375;
  report.reasons = {{"noise", "noise: <a>"}, {"cut_end", "cut off: b"}};
  const std::string page = GradePage({report}, &tutor);
  EXPECT_EQ(TagError(page), "");
  EXPECT_THAT(page, HasSubstr("<div class=\"lowered\"><p>Scores lowered to 48 %: this may not be a "
                              "reading of the sentence.</p><p>What speaks for it:</p>"
                              "<ul class=\"told\"><li>noise: &lt;a&gt;</li><li>cut off: b</li></ul>"
                              "</div>"));
  report.reasons.clear();
  EXPECT_THAT(GradePage({report}, &tutor), Not(HasSubstr("What speaks for it")));
}

TEST(GradePage, WhatWasNotMeasuredIsADash) {
  const std::string page = GradePage({SamplePronunciationGrade()}, nullptr);
  EXPECT_EQ(TagError(page), "");
  EXPECT_THAT(page, HasSubstr("<li>Pitch<span class=\"number\">\xE2\x80\x93</span>not measured"));
  EXPECT_THAT(page, HasSubstr("the pronunciation alone was graded"));
  EXPECT_THAT(page, Not(HasSubstr("What the letters mean")));
  EXPECT_THAT(page, Not(HasSubstr("Waveform of the tutor")));
}

TEST(GradePage, TextIsEscapedAndFailuresAreTold) {
  GradeReport hostile = SampleGrade();
  hostile.analysis.alignment.file = "<script>alert(1)</script>.wav";
  hostile.analysis.alignment.sentence = "\"a\" & <b>\xFF";
  hostile.analysis.alignment.words[0].text = "<i>";
  hostile.teacher = "</p>";
  GradeReport failed;
  failed.analysis.alignment.file = "b.wav";
  failed.analysis.alignment.error = "is silent: there is nothing to grade";
  const DrawnRecording tutor = SampleGrade().drawn;
  const std::string page = GradePage({hostile, failed}, &tutor);
  EXPECT_EQ(TagError(page), "");
  EXPECT_TRUE(IsUtf8(page));
  EXPECT_THAT(page, Not(HasSubstr("<script")));
  EXPECT_THAT(page, HasSubstr("&quot;a&quot; &amp; &lt;b&gt;\xEF\xBF\xBD"));
  EXPECT_THAT(page, HasSubstr("Not graded: is silent: there is nothing to grade"));
}

TEST(GradePage, TutorWithOtherCountsIsNoTrouble) {
  DrawnRecording tutor;
  EXPECT_EQ(TagError(GradePage({SampleGrade()}, &tutor)), "");
  tutor = SampleGrade().drawn;
  tutor.words.resize(1);
  tutor.syllables.resize(1);
  tutor.contours = {};
  EXPECT_EQ(TagError(GradePage({SampleGrade()}, &tutor)), "");
}

TEST(GradePage, ChineseTellsTones) {
  GradeReport report = SampleGrade();
  report.analysis.alignment.language = kLanguageChinese;
  for (SyllableGrade& syllable : report.syllables) {
    syllable.pitch_advice = '2';
    syllable.tutor_tone = 2;
    syllable.learner_tone = 2;
  }
  report.syllables[1].tutor_tone = 4;
  report.syllables[2].learner_tone = std::nullopt;
  const DrawnRecording tutor = report.drawn;
  const std::string page = GradePage({report}, &tutor);
  EXPECT_THAT(page, HasSubstr("said like tone 2, the tutor like tone 4"));
  EXPECT_THAT(page, HasSubstr("the pitch is too broken to tell a tone"));
  EXPECT_THAT(page, HasSubstr("<td>4</td><td>pitch</td>"));
  EXPECT_THAT(page, HasSubstr("<h2 lang=\"zh\">"));
}

// ---- contrast of text on its ground ----

double Channel(int value) {
  const double share = value / 255.0;
  return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
}

double Luminance(std::string colour) {
  if (colour.size() == 3) {
    colour = {colour[0], colour[0], colour[1], colour[1], colour[2], colour[2]};
  }
  const auto at = [&](std::size_t i) {
    return Channel(std::stoi(colour.substr(i, 2), nullptr, 16));
  };
  return 0.2126 * at(0) + 0.7152 * at(2) + 0.0722 * at(4);
}

TEST(PageStyle, TextStandsOutFromEveryGround) {
  const std::string style = kPageStyle;
  std::vector<double> texts;
  std::vector<double> grounds = {Luminance("fff")};
  const std::regex rule("(^|[ ;{])(color|background): #([0-9a-f]{3,6})");
  for (std::sregex_iterator i(style.begin(), style.end(), rule), end; i != end; ++i) {
    ((*i)[2] == "color" ? texts : grounds).push_back(Luminance((*i)[3]));
  }
  ASSERT_GE(texts.size(), 2u);
  ASSERT_GE(grounds.size(), 6u);
  for (const double text : texts) {
    for (const double ground : grounds) {
      // The bars of scores are dark grounds that hold no text.
      if (ground < 0.2) continue;
      EXPECT_GE((ground + 0.05) / (text + 0.05), 4.5);
    }
  }
}

}  // namespace
}  // namespace veral3::tools
