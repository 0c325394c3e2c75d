#pragma once

#include <locale>
#include <sstream>
#include <string_view>
#include <type_traits>

#include "common/Messages.h"

// The engine's side of the message sink; not installed.
namespace veral3 {

// Hands one whole message to the handler or the standard stream, and flushes it.
void WriteMessage(MessageStream stream, std::string_view text) noexcept;

// Builds one message and writes it when the statement ends:
//
//   Message(MessageStream::kError) << "ERROR in X::Y(), n=" << n << "\n";
//
// Numbers come in the classic locale and the stream's default precision. Wide text is written as
// UTF-8.
class Message {
 public:
  explicit Message(MessageStream stream) : m_stream(stream) {
    m_text.imbue(std::locale::classic());
  }
  ~Message() { WriteMessage(m_stream, m_text.view()); }
  Message(const Message&) = delete;
  Message& operator=(const Message&) = delete;

  template <typename T>
  Message& operator<<(const T& value) {
    if constexpr (std::is_convertible_v<const T&, std::wstring_view>) {
      AppendWide(value);
    } else {
      m_text << value;
    }
    return *this;
  }

 private:
  void AppendWide(std::wstring_view text);

  MessageStream m_stream;
  std::ostringstream m_text;
};

// Ends the process with `status`, if SetEndProcessHandler has not put something else in its place:
// the one way out for the engine's fatal errors.
[[noreturn]] void EndProcess(int status);

}  // namespace veral3
