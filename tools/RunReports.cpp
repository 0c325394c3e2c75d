#include "tools/RunReports.h"

#include <exception>
#include <string_view>

#include "tools/ExitStatus.h"
#include "tools/InOrder.h"

namespace veral3::tools {

void PrintMessages(Console& console, const std::string& file, std::string_view messages) {
  while (!messages.empty()) {
    const std::size_t end = messages.find('\n');
    console.Error(file + ": " + std::string(messages.substr(0, end)));
    messages = end == std::string_view::npos ? std::string_view() : messages.substr(end + 1);
  }
}

int RunReports(const ReportTarget& target, const std::vector<std::string>& files, int threads,
               const std::function<RecordingReport(std::size_t i)>& run, Console& console) {
  ReportWriter writer(target, files);
  if (!writer.Error().empty()) {
    console.Error(writer.Error());
    return kWrongUsage;
  }
  int status = kAllDone;
  std::size_t done = 0;
  console.Progress(0, files.size(), files.front());
  const auto guarded = [&](std::size_t i) -> RecordingReport {
    try {
      return run(i);
    } catch (const std::exception& error) {
      return {"", error.what(), ""};
    }
  };
  RunInOrder<RecordingReport>(files.size(), threads, guarded, [&](const RecordingReport& report) {
    const std::string& file = files[done];
    PrintMessages(console, file, report.messages);
    if (!report.error.empty()) {
      console.Error(file + ": " + report.error);
      status = kSomeFailed;
    }
    writer.Write(file, report.text);
    ++done;
    if (done < files.size()) console.Progress(done, files.size(), files[done]);
  });
  if (const std::string error = writer.Finish(); !error.empty()) {
    console.Error(error);
    status = kSomeFailed;
  }
  return status;
}

}  // namespace veral3::tools
