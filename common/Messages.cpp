#include "common/Messages.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <new>
#include <utility>

#include "common/MessageWriter.h"
#include "common/Unicode.h"

namespace veral3 {
namespace {

struct Sink {
  std::mutex mutex;
  MessageHandler handler;
  EndProcessHandler end_process;
};

// Never destroyed: messages may come from destructors of other static objects. In a place of its
// own: messages tell of memory that ran out.
Sink& TheSink() {
  alignas(Sink) static std::byte place[sizeof(Sink)];
  static Sink& sink = *new (place) Sink;
  return sink;
}

thread_local int muted_here = 0;  // objects of MutedMessages that live on this thread

constexpr std::size_t kMaxText = std::size_t{1} << 30;  // bytes of a message
constexpr std::string_view kCut = "...\n(cut: out of memory)\n";

std::FILE* FileOf(MessageStream stream) {
  switch (stream) {
    case MessageStream::kOutput:
    case MessageStream::kWideOutput:
      return stdout;
    default:
      return stderr;
  }
}

}  // namespace

void SetMessageHandler(MessageHandler handler) {
  Sink& sink = TheSink();
  const std::lock_guard lock(sink.mutex);
  sink.handler = std::move(handler);
}

MutedMessages::MutedMessages() { ++muted_here; }

MutedMessages::~MutedMessages() { --muted_here; }

void WriteMessage(MessageStream stream, std::string_view text) noexcept {
  if (muted_here > 0) return;
  try {
    Sink& sink = TheSink();
    const std::lock_guard lock(sink.mutex);
    if (sink.handler) {
      sink.handler(stream, text);
      return;
    }
    std::fwrite(text.data(), 1, text.size(), FileOf(stream));
    std::fflush(FileOf(stream));
  } catch (...) {
    // A message that can't be delivered is lost; the engine goes on.
  }
}

MessageBuffer::MessageBuffer() {
  setp(m_short.data(), m_short.data() + m_short.size() - kCut.size());
}

MessageBuffer::int_type MessageBuffer::overflow(int_type c) {
  if (!m_whole || traits_type::eq_int_type(c, traits_type::eof())) return traits_type::eof();
  const auto length = static_cast<std::size_t>(pptr() - pbase());
  const std::size_t size = 2 * (length + kCut.size());
  std::unique_ptr<char[]> longer(size > kMaxText ? nullptr : new (std::nothrow) char[size]);
  if (!longer) {
    m_whole = false;
    return traits_type::eof();
  }
  std::copy(pbase(), pptr(), longer.get());
  m_long = std::move(longer);
  setp(m_long.get(), m_long.get() + size - kCut.size());
  pbump(static_cast<int>(length));
  return sputc(traits_type::to_char_type(c));
}

std::string_view MessageBuffer::Finish() {
  if (m_whole) return {pbase(), pptr()};
  char* end = pptr();
  // A character of several bytes may have lost some: it goes.
  while (end > pbase() && (static_cast<unsigned char>(end[-1]) & 0xC0U) == 0x80U) --end;
  if (end > pbase() && static_cast<unsigned char>(end[-1]) >= 0xC0U) --end;
  return {pbase(), std::copy(kCut.begin(), kCut.end(), end)};
}

void Message::AppendWide(std::wstring_view text) {
  for (const wchar_t c : text) m_text << Utf8Character(c).View();
}

void EndProcess(int status) {
  if (TheSink().end_process) TheSink().end_process(status);
  std::exit(status);
}

void SetEndProcessHandler(EndProcessHandler handler) { TheSink().end_process = std::move(handler); }

}  // namespace veral3
