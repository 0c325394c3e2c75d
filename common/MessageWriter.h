#pragma once

#include <array>
#include <locale>
#include <memory>
#include <ostream>
#include <streambuf>
#include <string_view>
#include <type_traits>

#include "common/Messages.h"

// The engine's side of the message sink; not installed.
namespace veral3 {

// Hands one whole message to the handler or the standard stream, and flushes it.
void WriteMessage(MessageStream stream, std::string_view text) noexcept;

// While one lives, nothing that this thread says is delivered: for asking where a failure is an
// answer.
class MutedMessages {
 public:
  MutedMessages();
  ~MutedMessages();
  MutedMessages(const MutedMessages&) = delete;
  MutedMessages& operator=(const MutedMessages&) = delete;
};

// The text of one message. A short one needs no memory, so that what went wrong can be said when
// there is none left; a long one that finds none is cut, and its last line says so.
class MessageBuffer : public std::streambuf {
 public:
  MessageBuffer();

  // Puts the closing line behind a cut text; nothing can be added afterwards.
  std::string_view Finish();
  bool IsWhole() const { return m_whole; }

 protected:
  int_type overflow(int_type c) override;

 private:
  std::array<char, 1024> m_short;
  std::unique_ptr<char[]> m_long;  // instead of m_short
  bool m_whole = true;
};

// Builds one message and writes it when the statement ends:
//
//   Message(MessageStream::kError) << "ERROR in X::Y(), n=" << n << "\n";
//
// Numbers come in the classic locale and the stream's default precision. Wide text is written as
// UTF-8. Nothing throws.
class Message {
 public:
  explicit Message(MessageStream stream) : m_stream(stream), m_text(&m_buffer) {
    m_text.imbue(std::locale::classic());
  }
  ~Message() { WriteMessage(m_stream, m_buffer.Finish()); }
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

  // False once memory ran out for a long text.
  bool IsWhole() const { return m_buffer.IsWhole(); }

 private:
  void AppendWide(std::wstring_view text);

  MessageStream m_stream;
  MessageBuffer m_buffer;
  std::ostream m_text;
};

// Ends the process with `status`, if SetEndProcessHandler has not put something else in its place:
// the one way out for the engine's fatal errors.
[[noreturn]] void EndProcess(int status);

}  // namespace veral3
