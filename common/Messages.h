#pragma once

#include <functional>
#include <string_view>

#include "common/Export.h"

// Where the engine's messages go, and what becomes of the process where the engine would end it.
//
// Everything that the engine says, errors, confirmations of what was loaded, and the reports of
// PrintAlignmentResult, PrintScores and DumpData, is a message. By default it is written, and
// flushed, to the standard stream that its text is documented for. An application with a log of
// its own takes them all; then nothing is written to the standard streams:
//
//   veral3::SetMessageHandler([](veral3::MessageStream stream, std::string_view text) {
//     my_log(stream, text);   // UTF-8, one whole message a call, line end included
//   });
//
// A report is one message or a few, of many lines; a few messages have no line end. What is written
// to the streams that an application hands over (the exports of training data) is no message.
namespace veral3 {

// The stream that a message would go to.
enum class MessageStream {
  kError,       // standard error
  kOutput,      // standard output
  kWideError,   // standard error, text that may hold words of any language
  kWideOutput,  // standard output, likewise
};

using MessageHandler = std::function<void(MessageStream stream, std::string_view text)>;

// Sends later messages to `handler`; an empty one brings the standard streams back. The handler may
// be called from every thread that uses the engine, one call at a time; what it throws is
// swallowed, and that message is lost. It must call nothing of the engine.
VERAL3_API void SetMessageHandler(MessageHandler handler);

// The engine ends the process, by std::exit and after a message, in two cases only:
//
// - A layer of a model has an activation code that no layer knows: status -1, at the first
//   alignment, analysis, grading or annotation that evaluates the layer. Such a model loads;
//   veral3::CheckModelFile (recognition/CheckModelFile.h) finds it before.
// - The front end cannot go on: its own working memory cannot be had (status 5105, of which the
//   system keeps the low 8 bits). This takes a process that is out of memory;
//   whatever else fails to be allocated is a message and a negative answer.
//
// An application that must not end puts a handler in place of std::exit. It may throw: the
// operation under way then reports it and answers as for every failure, and the object can be used
// again.
//
//   veral3::SetEndProcessHandler([](int status) {
//     throw std::runtime_error("fatal error " + std::to_string(status));
//   });
//
// Or it ends the process in its own way; where it returns, std::exit follows. Set it before the
// first use of the engine, from one thread; an empty one brings std::exit back.
using EndProcessHandler = std::function<void(int status)>;
VERAL3_API void SetEndProcessHandler(EndProcessHandler handler);

}  // namespace veral3
