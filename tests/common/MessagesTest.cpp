#include "common/Messages.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <thread>

#include "common/MessageWriter.h"
#include "support/MessageCapture.h"

namespace veral3 {
namespace {

TEST(Messages, HandlerIsToldTheStream) {
  test::MessageCapture capture;
  Message(MessageStream::kWideOutput) << "n=" << 3 << std::wstring_view(L" \u00E9") << "\n";
  ASSERT_EQ(capture.Entries().size(), 1u);
  EXPECT_EQ(capture.Entries()[0].stream, MessageStream::kWideOutput);
  EXPECT_EQ(capture.Entries()[0].text, "n=3 \xC3\xA9\n");
}

TEST(Messages, DefaultGoesToTheStandardStreams) {
  testing::internal::CaptureStderr();
  testing::internal::CaptureStdout();
  Message(MessageStream::kError) << "to error\n";
  Message(MessageStream::kOutput) << "to output\n";
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "to output\n");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "to error\n");
}

TEST(Messages, ThrowingHandlerIsSwallowed) {
  SetMessageHandler([](MessageStream, std::string_view) { throw std::runtime_error("full"); });
  EXPECT_NO_THROW(Message(MessageStream::kError) << "lost");
  SetMessageHandler({});
}

TEST(Messages, NumbersHaveDefaultPrecision) {
  test::MessageCapture capture;
  Message(MessageStream::kError) << 1234567.0 << " " << 0.1 << " " << 1e-300;
  EXPECT_EQ(capture.All(), "1.23457e+06 0.1 1e-300");
}

TEST(Messages, EndProcessCanBeTrapped) {
  const test::EndProcessTrap trap;
  try {
    EndProcess(-1);
  } catch (const test::EndedProcess& ended) {
    EXPECT_EQ(ended.status, -1);
  }
}

TEST(MutedMessages, LastAsLongAsTheOutermost) {
  std::string heard;
  SetMessageHandler([&](MessageStream, std::string_view text) { heard += text; });
  {
    const MutedMessages outer;
    Message(MessageStream::kError) << "a";
    { const MutedMessages inner; }
    Message(MessageStream::kWideOutput) << "b";
    std::thread([] { Message(MessageStream::kError) << "c"; }).join();
  }
  Message(MessageStream::kError) << "d";
  SetMessageHandler({});
  EXPECT_EQ(heard, "cd");
}

}  // namespace
}  // namespace veral3
