#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "tools/AlignmentReport.h"

// The JSON of an alignment as a value, for the outputs that add to it. No number in it is infinite
// or none; where one would be stands null.
namespace veral3::tools {

using OrderedJson = nlohmann::ordered_json;

// {"file": ..., "error": ...} for a report with an error, else what docs/formats/align.schema.json
// describes.
OrderedJson AlignmentJson(const AlignmentReport& report);

// Two blanks of indentation, no line end after it; bytes that are no UTF-8 become U+FFFD. What a
// terminal must not be sent raw (tools/PrintableText.h) stands escaped, so that nothing is lost.
std::string JsonText(const OrderedJson& value);

// [s] of a sample number, to the microsecond.
double RoundedSeconds(int sample);

// null where there is no value.
template <typename T>
OrderedJson OrNull(const std::optional<T>& value) {
  return value ? OrderedJson(*value) : OrderedJson(nullptr);
}

}  // namespace veral3::tools
