#pragma once

namespace veral3::tools {

// Exit statuses of the command.
inline constexpr int kAllDone = 0;
inline constexpr int kSomeFailed = 1;
inline constexpr int kWrongUsage = 2;

}  // namespace veral3::tools
