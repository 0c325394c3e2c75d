#include "tools/Annotation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "JsonSchema.h"
#include "support/Vectors.h"

namespace veral3::tools {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

AlignmentReport Sample() {
  AlignmentReport report;
  report.file = "a.wav";
  report.language = kLanguageJapanese;
  report.num_samples = 22050;
  report.phonemes = {{"a", 220, 2200}, {"-", 2200, 4400}, {"k", 4400, 22050}};
  return report;
}

TEST(Annotation, TableShowsPausesToo) {
  EXPECT_EQ(AnnotationText(Sample(), Format::kTable),
            "a.wav: 1.000 s, Japanese, 3 segments\n"
            "\n"
            "  start s    end s     start       end   phoneme\n"
            "    0.010    0.100       220      2200   a\n"
            "    0.100    0.200      2200      4400   -\n"
            "    0.200    1.000      4400     22050   k\n");
}

TEST(Annotation, JsonFitsItsSchema) {
  const json schema = json::parse(veral3::test::ReadFile(std::filesystem::path(VERAL3_SOURCE_DIR) /
                                                         "docs/formats/annotate.schema.json"));
  const json value = json::parse(AnnotationText(Sample(), Format::kJson));
  EXPECT_EQ(test::SchemaError(value, schema), "");
  EXPECT_EQ(value["phonemes"].size(), 3u);
  EXPECT_EQ(value["phonemes"][1]["symbol"], "-");
  AlignmentReport failed;
  failed.file = "b.wav";
  failed.error = "does not exist";
  EXPECT_EQ(test::SchemaError(json::parse(AnnotationText(failed, Format::kJson)), schema), "");
  EXPECT_EQ(AnnotationText(failed, Format::kTable), "");
  EXPECT_EQ(AnnotationText(failed, Format::kTextGrid), "");
}

TEST(Annotation, TextGridHasOneTierAndEmptyPauses) {
  const std::string text = AnnotationText(Sample(), Format::kTextGrid);
  EXPECT_THAT(text, HasSubstr("size = 1\n"));
  EXPECT_THAT(text, HasSubstr("name = \"phonemes\"\n"));
  EXPECT_THAT(text, Not(HasSubstr("\"-\"")));
  EXPECT_THAT(text, HasSubstr("            xmin = 0.099773\n            xmax = 0.199546\n"
                              "            text = \"\"\n"));
}

TEST(Annotation, LabelsAndCommaSeparatedValues) {
  EXPECT_EQ(AnnotationText(Sample(), Format::kAudacity),
            "0.009977\t0.099773\ta\n0.199546\t1.000000\tk\n");
  EXPECT_EQ(AnnotationText(Sample(), Format::kCsv),
            "a.wav,phonemes,a,220,2200,0.009977,0.099773\r\n"
            "a.wav,phonemes,-,2200,4400,0.099773,0.199546\r\n"
            "a.wav,phonemes,k,4400,22050,0.199546,1.000000\r\n");
}

}  // namespace
}  // namespace veral3::tools
