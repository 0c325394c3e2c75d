#include "common/Messages.h"

#include <cstdio>
#include <cstdlib>
#include <mutex>
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

// Never destroyed: messages may come from destructors of other static objects.
Sink& TheSink() {
  static Sink& sink = *new Sink;
  return sink;
}

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

void WriteMessage(MessageStream stream, std::string_view text) noexcept {
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

void Message::AppendWide(std::wstring_view text) { m_text << Utf8FromWide(text); }

void EndProcess(int status) {
  if (TheSink().end_process) TheSink().end_process(status);
  std::exit(status);
}

void SetEndProcessHandler(EndProcessHandler handler) { TheSink().end_process = std::move(handler); }

}  // namespace veral3
