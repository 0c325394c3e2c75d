#include "text/TracedText.h"

#include <algorithm>
#include <utility>

namespace veral3 {

TracedText::TracedText(std::wstring original) : m_text(std::move(original)) {
  m_origins.reserve(m_text.size());
  for (std::size_t i = 0; i < m_text.size(); ++i) {
    m_origins.push_back({i, i + 1, TextSource::kWritten});
  }
}

TextOrigin TracedText::OriginOf(std::size_t at, std::size_t length) const {
  at = std::min(at, m_origins.size());
  length = std::min(length, m_origins.size() - at);
  if (length == 0) {
    const std::size_t place = at == 0 ? 0 : m_origins[at - 1].end;
    return {place, place, TextSource::kWritten};
  }
  TextOrigin origin = m_origins[at];
  for (std::size_t i = at + 1; i < at + length; ++i) {
    origin.begin = std::min(origin.begin, m_origins[i].begin);
    origin.end = std::max(origin.end, m_origins[i].end);
    if (origin.source == TextSource::kWritten) origin.source = m_origins[i].source;
  }
  return origin;
}

void TracedText::Append(std::wstring_view text, TextOrigin origin) {
  m_text += text;
  m_origins.resize(m_text.size(), origin);
}

void TracedText::Append(const TracedText& other) { Append(other, 0, other.Size()); }

void TracedText::Append(const TracedText& other, std::size_t at, std::size_t length) {
  m_text += other.Text().substr(at, length);
  const auto begin = other.m_origins.begin() + static_cast<std::ptrdiff_t>(at);
  m_origins.insert(m_origins.end(), begin, begin + static_cast<std::ptrdiff_t>(length));
}

}  // namespace veral3
