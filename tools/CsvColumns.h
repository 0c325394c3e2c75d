#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "tools/Numbers.h"
#include "tools/TextCells.h"

namespace veral3::tools {

// A line of comma-separated values whose columns have names; what is not set stays empty. Numbers
// that are infinite or none stay empty too. A name that no column has is a std::logic_error.
template <std::size_t kCount>
class CsvLine {
 public:
  explicit CsvLine(const std::array<std::string_view, kCount>& columns) : m_columns(columns) {}

  // What every line about a stretch of a recording begins with; [samples at 22050 Hz]. `text` is a
  // field already: CsvText of words and sentences, QuotedForCsv of phoneme symbols.
  void SetSpan(const std::string& file, const char* tier, std::string text, int start, int end) {
    Set("file", CsvText(file));
    Set("tier", tier);
    Set("text", std::move(text));
    Set("start_sample", std::to_string(start));
    Set("end_sample", std::to_string(end));
    Set("start_s", Fixed(Seconds(start), 6));
    Set("end_s", Fixed(Seconds(end), 6));
  }

  void Set(std::string_view column, std::string field) {
    const auto found = std::ranges::find(m_columns, column);
    if (found == m_columns.end()) throw std::logic_error("no column " + std::string(column));
    m_fields[static_cast<std::size_t>(found - m_columns.begin())] = std::move(field);
  }
  void Set(std::string_view column, const std::optional<double>& value, int decimals) {
    if (value && std::isfinite(*value)) Set(column, Fixed(*value, decimals));
  }
  void Set(std::string_view column, const std::optional<int>& value) {
    if (value) Set(column, std::to_string(*value));
  }

  std::string Text() const { return Joined(m_fields); }

  // The header line.
  static std::string Header(const std::array<std::string_view, kCount>& columns) {
    return Joined(columns);
  }

 private:
  template <typename Fields>
  static std::string Joined(const Fields& fields) {
    std::string text;
    for (std::size_t i = 0; i < fields.size(); ++i) {
      if (i > 0) text += ',';
      text += fields[i];
    }
    return text + "\r\n";
  }

  const std::array<std::string_view, kCount>& m_columns;
  std::array<std::string, kCount> m_fields;
};

}  // namespace veral3::tools
