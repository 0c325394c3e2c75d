#include "JsonSchema.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>

#include "SampleReport.h"
#include "support/Vectors.h"
#include "tools/AlignmentFormats.h"

namespace veral3::tools {
namespace {

using nlohmann::json;

json Schema() {
  return json::parse(veral3::test::ReadFile(std::filesystem::path(VERAL3_SOURCE_DIR) /
                                            "docs/formats/align.schema.json"));
}

TEST(AlignSchema, OutputFits) {
  const json one = json::parse(Json(test::SampleReport()));
  EXPECT_EQ(test::SchemaError(one, Schema()), "");
  AlignmentReport failed;
  failed.file = "b.wav";
  failed.error = "does not exist";
  const json other = json::parse(Json(failed));
  EXPECT_EQ(test::SchemaError(other, Schema()), "");
  EXPECT_EQ(test::SchemaError(json::array({one, other}), Schema()), "");
}

TEST(AlignSchema, EndlessLogProbabilityIsNull) {
  AlignmentReport report = test::SampleReport();
  report.log_probability = -std::numeric_limits<double>::infinity();
  const json value = json::parse(Json(report));
  EXPECT_TRUE(value["log_probability"].is_null());
  EXPECT_EQ(test::SchemaError(value, Schema()), "");
}

TEST(AlignSchema, OtherThingsDoNotFit) {
  const json good = json::parse(Json(test::SampleReport()));
  const std::vector<std::function<void(json&)>> changes = {
      [](json& v) { v.erase("words"); },
      [](json& v) { v["error"] = "no"; },
      [](json& v) { v["sentence_index"] = 8; },
      [](json& v) { v["sentence_index"] = 0.5; },
      [](json& v) { v["language"] = "fr"; },
      [](json& v) { v["sample_rate"] = 44100; },
      [](json& v) { v["phonemes"][0]["symbol"] = "ab"; },
      [](json& v) { v["phonemes"][0]["text"] = "a"; },
      [](json& v) { v["words"][0]["start_sample"] = -1; },
      [](json& v) { v["words"][0].erase("end_s"); },
      [](json& v) { v = json::array({v}); },
  };
  for (std::size_t i = 0; i < changes.size(); ++i) {
    json changed = good;
    changes[i](changed);
    EXPECT_NE(test::SchemaError(changed, Schema()), "") << i;
  }
}

}  // namespace
}  // namespace veral3::tools
