#include "tools/AlignmentJson.h"

#include <cmath>
#include <vector>

#include "tools/Languages.h"
#include "tools/Numbers.h"

namespace veral3::tools {
namespace {

OrderedJson JsonSegments(const std::vector<Segment>& segments, const char* name) {
  OrderedJson array = OrderedJson::array();
  for (const Segment& segment : segments) {
    array.push_back({{name, segment.text},
                     {"start_sample", segment.start},
                     {"end_sample", segment.end},
                     {"start_s", RoundedSeconds(segment.start)},
                     {"end_s", RoundedSeconds(segment.end)}});
  }
  return array;
}

}  // namespace

OrderedJson AlignmentJson(const AlignmentReport& report) {
  OrderedJson object = {{"file", report.file}};
  if (!report.error.empty()) {
    object["error"] = report.error;
    return object;
  }
  object["language"] = LanguageCode(report.language);
  object["sentence_index"] = report.sentence_index;
  object["sentence"] = report.sentence;
  object["log_probability"] = report.log_probability;
  object["sample_rate"] = kSampleRate;
  object["num_samples"] = report.num_samples;
  object["words"] = JsonSegments(report.words, "text");
  object["syllables"] = JsonSegments(report.syllables, "text");
  object["phonemes"] = JsonSegments(report.phonemes, "symbol");
  return object;
}

std::string JsonText(const OrderedJson& value) {
  return value.dump(2, ' ', false, OrderedJson::error_handler_t::replace);
}

double RoundedSeconds(int sample) { return std::round(Seconds(sample) * 1e6) / 1e6; }

}  // namespace veral3::tools
