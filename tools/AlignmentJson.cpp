#include "tools/AlignmentJson.h"

#include <cmath>
#include <string_view>
#include <vector>

#include "common/Unicode.h"
#include "recognition/Languages.h"
#include "tools/Numbers.h"
#include "tools/PrintableText.h"

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
  const std::string dumped = value.dump(2, ' ', false, OrderedJson::error_handler_t::replace);
  // Between strings stand line ends alone, and in strings those are escaped already.
  std::wstring text;
  for (const wchar_t c : WideFromUtf8(dumped)) {
    if (c == L'\n' || !IsUnprintable(c)) {
      text += c;
      continue;
    }
    constexpr std::wstring_view kDigits = L"0123456789abcdef";
    text += L"\\u";
    for (int shift = 12; shift >= 0; shift -= 4) {
      text += kDigits[static_cast<std::size_t>(c >> shift) & 0xFU];
    }
  }
  return Utf8FromWide(text);
}

double RoundedSeconds(int sample) { return std::round(Seconds(sample) * 1e6) / 1e6; }

}  // namespace veral3::tools
