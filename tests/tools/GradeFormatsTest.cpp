#include "tools/GradeFormats.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <sstream>

#include "JsonSchema.h"
#include "SampleReport.h"
#include "support/Vectors.h"

namespace veral3::tools {
namespace {

using nlohmann::json;
using test::SampleGrade;
using test::SamplePronunciationGrade;
using testing::HasSubstr;
using testing::Not;

json Schema() {
  return json::parse(veral3::test::ReadFile(std::filesystem::path(VERAL3_SOURCE_DIR) /
                                            "docs/formats/grade.schema.json"));
}

GradeReport Failed() {
  GradeReport report;
  report.analysis.alignment.file = "b.wav";
  report.analysis.alignment.error = "does not exist";
  return report;
}

TEST(GradeTable, AdviceStandsUnderTheSyllables) {
  EXPECT_EQ(GradeTable(SampleGrade()),
            "a.wav: 1.000 s, English, against t.wav (Ms. Lin)\n"
            "sentence: go away\n"
            "total 81   pronunciation 90   pitch 80   timing 70   loudness 60\n"
            "\n"
            "                 GO   AWAY\n"
            "                 g@U  @   wEI\n"
            "pronunciation    91   80  95\n"
            "pitch            92   70  40\n"
            "timing           93   60  96\n"
            "loudness         94   50  97\n"
            "pitch advice     -    h   L\n"
            "timing advice    -    S   -\n"
            "loudness advice  -    -   l\n"
            "pause before     -    !   -\n"
            "word score       91   72\n"
            "\n"
            "advice:\n"
            "  pitch h: pitch too high\n"
            "  pitch L: pitch should be much higher\n"
            "  timing S: much too short\n"
            "  loudness l: too soft\n"
            "  pause !: a long pause where the tutor makes none\n"
            "sounds like another:\n"
            "  g of g@U (0.100 s, score 100) sounds like k\n");
  EXPECT_EQ(GradeTable(Failed()), "");
}

TEST(GradeTable, PronunciationAloneLeavesTheRestOut) {
  EXPECT_EQ(GradeTable(SamplePronunciationGrade()),
            "a.wav: 1.000 s, English, pronunciation only\n"
            "sentence: go away\n"
            "total 85   pronunciation 90   pitch -   timing -   loudness -\n"
            "\n"
            "                 GO   AWAY\n"
            "                 g@U  @   wEI\n"
            "pronunciation    91   80  95\n"
            "\n"
            "sounds like another:\n"
            "  g of g@U (0.100 s, score 100) sounds like k\n");
}

GradeReport Lowered() {
  GradeReport report = SampleGrade();
  report.lowered_to = 0.484375;
  report.reasons = {{"noise", "noise: a"}, {"cut_end", "cut off: b"}};
  return report;
}

TEST(GradeTable, LoweredScoresAreToldOf) {
  const std::string told =
      "loudness 60\n"
      "scores lowered to 48 %: this may not be a reading of the sentence\n"
      "  noise: a\n"
      "  cut off: b\n"
      "\n"
      "                 GO   AWAY\n";
  EXPECT_THAT(GradeTable(Lowered()), HasSubstr(told));
  GradeReport report = Lowered();
  report.reasons.clear();
  EXPECT_THAT(GradeTable(report), HasSubstr("reading of the sentence\n\n                 GO"));
  report.lowered_to = 0.9;
  EXPECT_EQ(GradeTable(report), GradeTable(SampleGrade()));
  report.lowered_to = 0.899;
  EXPECT_THAT(GradeTable(report), HasSubstr("scores lowered to 90 %: "));
  report.lowered_to.reset();
  EXPECT_EQ(GradeTable(report), GradeTable(SampleGrade()));
  report = Lowered();
  report.pronunciation_only = true;
  EXPECT_THAT(GradeTable(report), HasSubstr("\ntotal lowered to 48 %: "));
}

TEST(GradeTable, LongSentencesAreBrokenBetweenWords) {
  GradeReport report = SampleGrade();
  report.analysis.alignment.words[0].text = "INTERNATIONALISATION";
  for (int i = 0; i < 3; ++i) {
    AlignmentReport& alignment = report.analysis.alignment;
    const auto words = alignment.words;
    alignment.words.insert(alignment.words.end(), words.begin(), words.end());
    const auto syllables = alignment.syllables;
    alignment.syllables.insert(alignment.syllables.end(), syllables.begin(), syllables.end());
    const auto phonemes = alignment.phonemes;
    alignment.phonemes.insert(alignment.phonemes.end(), phonemes.begin(), phonemes.end());
    const auto word_grades = report.words;
    report.words.insert(report.words.end(), word_grades.begin(), word_grades.end());
    const auto grades = report.syllables;
    report.syllables.insert(report.syllables.end(), grades.begin(), grades.end());
    const auto scores = report.phonemes;
    report.phonemes.insert(report.phonemes.end(), scores.begin(), scores.end());
    const auto measures = report.analysis.phonemes;
    report.analysis.phonemes.insert(report.analysis.phonemes.end(), measures.begin(),
                                    measures.end());
  }
  std::istringstream lines(GradeTable(report));
  int headings = 0;
  int words = 0;
  for (std::string line; std::getline(lines, line);) {
    EXPECT_LE(line.size(), 96u) << line;
    headings += line.starts_with("pronunciation ");
    for (std::size_t at = 0;
         (at = line.find("INTERNATIONALISATION  AWAY", at)) != std::string::npos; ++at) {
      ++words;
    }
  }
  EXPECT_GT(headings, 1);
  EXPECT_EQ(words, 8);
}

TEST(GradeJson, FitsItsSchema) {
  const json one = json::parse(JsonText(GradeJson(SampleGrade())));
  EXPECT_EQ(test::SchemaError(one, Schema()), "");
  const json alone = json::parse(JsonText(GradeJson(SamplePronunciationGrade())));
  EXPECT_EQ(test::SchemaError(alone, Schema()), "");
  const json failed = json::parse(JsonText(GradeJson(Failed())));
  EXPECT_EQ(test::SchemaError(failed, Schema()), "");
  EXPECT_EQ(test::SchemaError(json::array({one, alone, failed}), Schema()), "");

  EXPECT_EQ(one["schema_version"], 1);
  EXPECT_EQ(one["scores"], json({{"total", 81},
                                 {"pronunciation", 90},
                                 {"pitch", 80},
                                 {"timing", 70},
                                 {"intensity", 60}}));
  EXPECT_EQ(one["tutor"]["teacher"], "Ms. Lin");
  EXPECT_EQ(one["words"][1]["contrasts"]["timing"], 1e10);
  EXPECT_EQ(one["syllables"][1]["advice"],
            json({{"pitch", "h"}, {"timing", "S"}, {"intensity", "-"}}));
  EXPECT_EQ(one["syllables"][1]["unnecessary_pause"], true);
  EXPECT_TRUE(one["syllables"][1]["tutor_tone"].is_null());
  EXPECT_EQ(one["phonemes"][2]["score"], 80);
  EXPECT_EQ(one["phonemes"][0]["sounds_like"], "k");

  // After grading the pronunciation alone the others were not measured.
  for (const char* name : {"pitch", "timing", "intensity"}) {
    EXPECT_TRUE(alone["scores"][name].is_null());
    EXPECT_TRUE(alone["words"][0]["scores"][name].is_null());
    EXPECT_TRUE(alone["syllables"][0]["advice"][name].is_null());
  }
  EXPECT_TRUE(alone["tutor"].is_null());
  EXPECT_EQ(alone["pronunciation_only"], true);
}

TEST(GradeJson, ReasonsStandBesideWhatIsLowered) {
  const json lowered = json::parse(JsonText(GradeJson(Lowered())));
  EXPECT_EQ(test::SchemaError(lowered, Schema()), "");
  EXPECT_EQ(lowered["lowered_to"], 0.484375);
  EXPECT_EQ(lowered["reasons"], json::array({{{"reason", "noise"}, {"text", "noise: a"}},
                                             {{"reason", "cut_end"}, {"text", "cut off: b"}}}));
  const json good = json::parse(JsonText(GradeJson(SampleGrade())));
  EXPECT_EQ(good["lowered_to"], 0.90625);
  EXPECT_EQ(good["reasons"], json::array());
}

TEST(GradeCsv, ReasonsAreOneField) {
  EXPECT_THAT(GradeCsv(Lowered()), HasSubstr(",0.937500,0.484375,noise;cut_end\r\n"));
}

TEST(GradeSchema, RejectsWhatIsOff) {
  const json good = json::parse(JsonText(GradeJson(SampleGrade())));
  const std::vector<std::pair<const char*, json>> changes = {{"/scores/total", 101},
                                                             {"/scores/pitch", 80.5},
                                                             {"/syllables/0/advice/pitch", "x"},
                                                             {"/syllables/0/unnecessary_pause", 1},
                                                             {"/words/0/contrasts/pitch", -1},
                                                             {"/syllables/0/tutor_tone", 5},
                                                             {"/lowered_to", 1.1},
                                                             {"/reasons", {{{"reason", "x"}}}},
                                                             {"/tutor", "t.wav"},
                                                             {"/pronunciation_only", nullptr}};
  for (const auto& [place, value] : changes) {
    json bad = good;
    bad[json::json_pointer(place)] = value;
    EXPECT_NE(test::SchemaError(bad, Schema()), "") << place;
  }
}

TEST(GradeCsv, ALineForEverything) {
  std::istringstream lines(GradeCsvHeader() + GradeCsv(SampleGrade()));
  std::vector<std::string> all;
  for (std::string line; std::getline(lines, line);) {
    ASSERT_TRUE(line.ends_with('\r'));
    all.push_back(line.substr(0, line.size() - 1));
    EXPECT_EQ(std::ranges::count(line, ','), 25) << line;
  }
  ASSERT_EQ(all.size(), 1u + 1u + 2u + 3u + 7u);
  EXPECT_EQ(all[1],
            "a.wav,recording,go away,0,22050,0.000000,1.000000,81,90,80,70,60,,,,,,,,,,,,"
            "0.937500,0.906250,");
  EXPECT_EQ(all[3],
            "a.wav,words,AWAY,8800,17600,0.399093,0.798186,72,70,60,80,90,,,,,1.500000,"
            "10000000000.000000,1.000000,,,,,,,");
  EXPECT_EQ(all[5], "a.wav,syllables,@,8800,9900,0.399093,0.448980,,80,70,60,50,h,S,-,1,,,,,,,,,,");
  EXPECT_EQ(all[7], "a.wav,phonemes,g,2200,3300,0.099773,0.149660,,100,,,,,,,,,,,,,k,0.500000,,,");
  EXPECT_EQ(GradeCsv(Failed()), "");
}

}  // namespace
}  // namespace veral3::tools
