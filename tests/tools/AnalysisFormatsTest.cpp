#include "tools/AnalysisFormats.h"

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
using test::SampleAnalysis;
using testing::HasSubstr;
using testing::Not;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

json Schema() {
  return json::parse(veral3::test::ReadFile(std::filesystem::path(VERAL3_SOURCE_DIR) /
                                            "docs/formats/analyze.schema.json"));
}

AnalysisReport Failed() {
  AnalysisReport report;
  report.alignment.file = "b.wav";
  report.alignment.error = "does not exist";
  return report;
}

TEST(AnalysisTable, MeasuresStandBesideTheText) {
  EXPECT_EQ(
      AnalysisTable(SampleAnalysis()),
      "a.wav: 1.000 s, English\n"
      "sentence 2: go away\n"
      "log probability -123.46, probability of a good reading 0.9375\n"
      "signal to noise 21.2 dB, speech has 0.500 of the energy\n"
      "mean pitch 120 Hz, 3 voiced stretches\n"
      "\n"
      "  start s    end s  pitch Hz  level dB  stress  good  voiced   prob   word      syllable  "
      "phoneme  sounds like\n"
      "    0.000    0.100                                            0.250   (pause)\n"
      "    0.100    0.299       180                                  0.500   GO\n"
      "    0.100    0.299       180     -27.5       1  1.00       1  0.500             g@U\n"
      "    0.100    0.150                                            0.500                       "
      "g        k 0.500, g 0.375, - 0.125\n"
      "    0.150    0.249                                            0.500                       "
      "@        -\n"
      "    0.249    0.299                                            0.500                       "
      "U        -\n"
      "    0.299    0.399                                                -   (pause)\n"
      "    0.399    0.798        90                                  0.250   AWAY\n"
      "    0.399    0.449       180     -37.5       0  0.50       2  0.250             @\n"
      "    0.399    0.449                                            0.250                       "
      "@        -\n"
      "    0.449    0.798         -         -       1  1.00       0  0.250             wEI\n"
      "    0.449    0.499                                            0.250                       "
      "w        -\n"
      "    0.499    0.698                                            0.250                       "
      "E        -\n"
      "    0.698    0.798                                            0.250                       "
      "I        -\n"
      "    0.798    1.000                                            1.000   (pause)\n");
  EXPECT_EQ(AnalysisTable(Failed()), "");
}

TEST(AnalysisTable, WhatIsNotMeasuredIsADash) {
  AnalysisReport report = SampleAnalysis();
  report.goodness_probability = std::nullopt;
  report.signal_to_noise_db = std::nullopt;
  report.mean_pitch = std::nullopt;
  report.speech_energy_ratio = std::nullopt;
  report.alignment.log_probability = -kInfinity;
  report.alignment.words[0].confidence = kNan;
  report.syllables[0].goodness = kNan;
  const std::string text = AnalysisTable(report);
  EXPECT_THAT(text, HasSubstr("log probability -, probability of a good reading -\n"));
  EXPECT_THAT(text, HasSubstr("signal to noise -, speech has - of the energy\n"));
  EXPECT_THAT(text, HasSubstr("mean pitch -, 3 voiced stretches\n"));
  EXPECT_THAT(text, Not(HasSubstr("nan")));
  EXPECT_THAT(text, Not(HasSubstr("inf")));
}

TEST(AnalysisTable, ChineseSyllablesShowTones) {
  AnalysisReport report = SampleAnalysis();
  report.alignment.language = kLanguageChinese;
  report.syllables[0].stress = std::nullopt;
  report.syllables[0].tone = 4;
  report.syllables[0].tone_probabilities = {0.0, 0.0, 0.25, 0.0, 0.75};
  const std::string text = AnalysisTable(report);
  EXPECT_THAT(text, HasSubstr("    tone  good"));
  EXPECT_THAT(text, HasSubstr("       4  1.00       1  0.500             g@U      tones 0:0.00 "
                              "1:0.00 2:0.25 3:0.00 4:0.75\n"));
}

TEST(AnalysisJson, FitsItsSchema) {
  const json one = json::parse(JsonText(AnalysisJson(SampleAnalysis())));
  EXPECT_EQ(test::SchemaError(one, Schema()), "");
  const json other = json::parse(JsonText(AnalysisJson(Failed())));
  EXPECT_EQ(test::SchemaError(other, Schema()), "");
  EXPECT_EQ(test::SchemaError(json::array({one, other}), Schema()), "");
  EXPECT_EQ(one["schema_version"], 1);
  EXPECT_EQ(one["words"][1]["syllables"], 2);
  EXPECT_EQ(one["words"][1]["pitch_hz"], 90);
  EXPECT_EQ(one["syllables"][0]["duration_s"], 0.199546);
  EXPECT_TRUE(one["syllables"][2]["pitch_hz"].is_null());
  EXPECT_TRUE(one["syllables"][2]["intensity_db"].is_null());
  EXPECT_TRUE(one["syllables"][0]["tone"].is_null());
  EXPECT_EQ(one["phonemes"][0]["readings"][1]["symbol"], "g");
  EXPECT_TRUE(one["phonemes"][1]["sounds_like"].is_null());
  EXPECT_EQ(one["utterance"]["signal_to_noise_db"], 21.25);
  EXPECT_EQ(one["pauses"][0]["after_phoneme"], -1);
  EXPECT_EQ(one["contours"]["pitch"].size(), 128u);
}

TEST(AnalysisJson, NoNumberIsInfiniteOrNone) {
  AnalysisReport report = SampleAnalysis();
  report.alignment.log_probability = kInfinity;
  report.goodness_probability = std::nullopt;
  report.signal_to_noise_db = std::nullopt;
  report.speech_energy_ratio = std::nullopt;
  const std::string text = JsonText(AnalysisJson(report));
  const json value = json::parse(text);
  EXPECT_EQ(test::SchemaError(value, Schema()), "");
  EXPECT_TRUE(value["utterance"]["goodness_probability"].is_null());
  EXPECT_TRUE(value["log_probability"].is_null());
}

TEST(AnalysisSchema, RejectsWhatIsOff) {
  const json good = json::parse(JsonText(AnalysisJson(SampleAnalysis())));
  const std::vector<std::pair<const char*, json>> changes = {
      {"/schema_version", 2},           {"/contours/wave", json::array({1})},
      {"/syllables/0/intensity_db", 1}, {"/phonemes/0/readings/0/probability", 1.5},
      {"/phonemes/0/symbol", "ab"},     {"/utterance/goodness_probability", -0.5},
      {"/words/0/pitch_hz", 0}};
  for (const auto& [place, value] : changes) {
    json bad = good;
    bad[json::json_pointer(place)] = value;
    EXPECT_NE(test::SchemaError(bad, Schema()), "") << place;
  }
}

TEST(AnalysisCsv, ALineForEverything) {
  AnalysisReport report = SampleAnalysis();
  report.alignment.file = "a,b.wav";
  std::istringstream lines(AnalysisCsvHeader() + AnalysisCsv(report));
  std::vector<std::string> all;
  for (std::string line; std::getline(lines, line);) {
    ASSERT_TRUE(line.ends_with('\r'));
    all.push_back(line.substr(0, line.size() - 1));
  }
  ASSERT_EQ(all.size(), 1u + 1u + 2u + 3u + 7u + 3u);
  for (const std::string& line : all) {
    const auto commas = std::ranges::count(line, ',') - (line == all.front() ? 0 : 1);
    EXPECT_EQ(commas, 28) << line;
  }
  EXPECT_EQ(all[1],
            "\"a,b.wav\",recording,go away,0,22050,0.000000,1.000000,,120,1.000000,,,,,,,,,,"
            "0.937500,3,,,,,,,21.250,0.500000");
  EXPECT_EQ(all[2],
            "\"a,b.wav\",words,GO,2200,6600,0.099773,0.299320,0.500000,180,0.199546"
            ",,,,,,,,,,,,,,,,,,,");
  EXPECT_EQ(all[4],
            "\"a,b.wav\",syllables,g@U,2200,6600,0.099773,0.299320,0.500000,180,0.199546,"
            "1000000000,-27.500,1,,,,,,,1.000000,1,,,,,,,,");
  EXPECT_EQ(all[7],
            "\"a,b.wav\",phonemes,g,2200,3300,0.099773,0.149660,0.500000,,0.049887,,,,,,,,,,,,"
            "k,0.500000,g,0.375000,-,0.125000,,");
  EXPECT_EQ(all[15],
            "\"a,b.wav\",pauses,,6600,8800,0.299320,0.399093,,,0.099773"
            ",,,,,,,,,,,,,,,,,,,");
  EXPECT_EQ(AnalysisCsv(Failed()), "");
}

}  // namespace
}  // namespace veral3::tools
