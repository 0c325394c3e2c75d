#pragma once

#include <gtest/gtest.h>

#include <string>

#include "support/MessageCapture.h"

namespace veral3::test {

// Runs `action`, which must end in the toolkit's error `code` with exactly `text`.
template <typename F>
void ExpectFatal(int code, const std::string& text, F action) {
  SCOPED_TRACE(text);
  const MessageCapture capture;
  const EndProcessTrap trap;
  int status = 0;
  try {
    action();
  } catch (const EndedProcess& ended) {
    status = ended.status;
  }
  EXPECT_EQ(status, code);
  EXPECT_EQ(capture.StandardError(), "  ERROR [+" + std::to_string(code) + "]" + text +
                                         "\n FATAL ERROR - Terminating program Veral3\n");
  EXPECT_EQ(capture.StandardOutput(), "");
}

}  // namespace veral3::test
