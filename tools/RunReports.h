#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/Console.h"
#include "tools/ReportWriter.h"

namespace veral3::tools {

// What became of one recording.
struct RecordingReport {
  std::string messages;  // lines for the user, without the recording's name
  std::string error;     // why it failed, "" when it did not
  std::string text;      // the result in the form asked for
};

// Writes lines about a recording, each with its name in front.
void PrintMessages(Console& console, const std::string& file, std::string_view messages);

// Runs `run(i)` for each of `files`, up to `threads` at a time, writes the texts to `target` in
// order, and says on the console what went wrong and how far it has come. What `run` throws is the
// recording's error.
// Gives the exit status: kWrongUsage when the target cannot be written, before anything is run.
int RunReports(const ReportTarget& target, const std::vector<std::string>& files, int threads,
               const std::function<RecordingReport(std::size_t i)>& run, Console& console);

}  // namespace veral3::tools
