#include "tools/AlignJobs.h"

#include <algorithm>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <mutex>
#include <optional>
#include <thread>

#include "core/AnalyzedAudio.h"
#include "tools/AudioFile.h"
#include "tools/EngineMessages.h"
#include "tools/Numbers.h"

namespace veral3::tools {
namespace {

AlignmentReport Failed(const AlignJob& job, std::string error) {
  AlignmentReport report;
  report.file = job.file;
  report.error = std::move(error);
  return report;
}

AlignmentReport Align(const AlignJob& job, LanguageType language, std::string& messages) {
  Result<Recording> recording = ReadAudioFile(job.file);
  if (!recording) return Failed(job, recording.Error());
  if (recording->silent) messages += "is silent: every sample is 0\n";
  if (recording->clamped > 0) {
    messages += "is louder than 16 bits hold: " + std::to_string(recording->clamped) +
                " samples were clamped\n";
  }

  const EngineMessages engine;
  AnalyzedAudio audio(language);
  for (const std::string& sentence : job.prepared) {
    if (audio.AddPossibleSentence(CString(sentence)) < 0) {
      return Failed(job, "sentence \"" + sentence + "\" cannot be used: " + engine.OneLine());
    }
  }
  const int matched =
      audio.Align(static_cast<std::uint32_t>(recording->samples.size()), recording->samples.data());
  if (matched < 0 || static_cast<std::size_t>(matched) >= job.sentences.size()) {
    std::string error = "cannot be aligned: " + engine.OneLine();
    if (error.find("No Sentence matched") != std::string::npos) {
      error += " (the recording, " +
               Fixed(Seconds(static_cast<int>(recording->samples.size())), 3) +
               " s, may be too short for the sentence)";
    }
    return Failed(job, std::move(error));
  }
  messages += engine.Text();
  return MakeReport(job.file, job.sentences[static_cast<std::size_t>(matched)], audio);
}

}  // namespace

AlignOutcome RunAlignJob(const AlignJob& job, LanguageType language) {
  AlignOutcome outcome;
  try {
    outcome.report = Align(job, language, outcome.messages);
  } catch (const std::bad_alloc&) {
    outcome.report = Failed(job, "memory ran out");
  } catch (const std::exception& error) {
    outcome.report = Failed(job, error.what());
  }
  return outcome;
}

void RunAlignJobs(const std::vector<AlignJob>& jobs, LanguageType language, int threads,
                  const std::function<void(const AlignOutcome&)>& take) {
  if (threads <= 1 || jobs.size() <= 1) {
    for (const AlignJob& job : jobs) take(RunAlignJob(job, language));
    return;
  }

  // Workers stay at most `ahead` jobs in front of what has been handed over, so that outcomes do
  // not pile up behind a long recording.
  const auto workers = std::min(static_cast<std::size_t>(threads), jobs.size());
  const std::size_t ahead = 4 * workers;
  std::mutex mutex;
  std::condition_variable changed;
  std::vector<std::optional<AlignOutcome>> outcomes(jobs.size());
  std::size_t next = 0;   // the first job that no worker has
  std::size_t taken = 0;  // outcomes handed over
  const auto work = [&] {
    std::unique_lock lock(mutex);
    for (;;) {
      changed.wait(lock, [&] { return next >= jobs.size() || next < taken + ahead; });
      if (next >= jobs.size()) return;
      const std::size_t job = next++;
      lock.unlock();
      AlignOutcome outcome = RunAlignJob(jobs[job], language);
      lock.lock();
      outcomes[job] = std::move(outcome);
      changed.notify_all();
    }
  };
  std::vector<std::jthread> pool;
  for (std::size_t i = 0; i < workers; ++i) pool.emplace_back(work);
  for (std::size_t job = 0; job < jobs.size(); ++job) {
    std::unique_lock lock(mutex);
    changed.wait(lock, [&] { return outcomes[job].has_value(); });
    const AlignOutcome outcome = std::move(*outcomes[job]);
    outcomes[job].reset();
    taken = job + 1;
    changed.notify_all();
    lock.unlock();
    take(outcome);
  }
}

}  // namespace veral3::tools
