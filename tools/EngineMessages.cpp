#include "tools/EngineMessages.h"

#include <cstdio>
#include <mutex>
#include <utility>

#include "common/Messages.h"
#include "tools/EngineWords.h"
#include "tools/PrintableText.h"

namespace veral3::tools {
namespace {

thread_local EngineMessages* innermost = nullptr;
thread_local std::string* innermost_text = nullptr;

void Take(MessageStream, std::string_view text) {
  if (innermost_text == nullptr) {
    std::fputs(PrintableLines(text).c_str(), stderr);
    return;
  }
  innermost_text->append(text);
  if (!text.ends_with('\n')) innermost_text->push_back('\n');
}

}  // namespace

EngineMessages::EngineMessages() : m_outer(std::exchange(innermost, this)) {
  static std::once_flag installed;
  std::call_once(installed, [] { SetMessageHandler(Take); });
  innermost_text = &m_text;
}

EngineMessages::~EngineMessages() {
  innermost = m_outer;
  innermost_text = m_outer != nullptr ? &m_outer->m_text : nullptr;
}

std::string EngineMessages::OneLine() const {
  std::string line;
  for (const char c : LinesInWords(m_text)) {
    if (c != '\n') {
      line += c;
    } else if (!line.ends_with("; ")) {
      line += "; ";
    }
  }
  while (line.ends_with("; ")) line.resize(line.size() - 2);
  return line;
}

}  // namespace veral3::tools
