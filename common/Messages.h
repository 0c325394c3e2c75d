#pragma once

#include <functional>
#include <string_view>

#include "common/Export.h"

// Where the engine's messages go. By default each is written to the standard stream that its text
// is documented for. An application with a log of its own takes them all:
//
//   veral3::SetMessageHandler([](veral3::MessageStream stream, std::string_view text) {
//     my_log(stream, text);   // UTF-8, one whole message a call, line end included
//   });
//
// The handler may be called from every thread that uses the engine, one call at a time; what it
// throws is swallowed. It must not call SetMessageHandler.
namespace veral3 {

enum class MessageStream {
  kError,       // standard error
  kOutput,      // standard output
  kWideError,   // standard error, text that may hold words of any language
  kWideOutput,  // standard output, likewise
};

using MessageHandler = std::function<void(MessageStream stream, std::string_view text)>;

// Sends later messages to `handler`; an empty one brings the standard streams back.
VERAL3_API void SetMessageHandler(MessageHandler handler);

}  // namespace veral3
