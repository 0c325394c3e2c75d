#pragma once

#include <algorithm>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

namespace veral3::tools {

// Runs `run(0)` to `run(count - 1)`, up to `threads` at a time, and hands over each outcome in that
// order on the calling thread. `run` must not throw.
template <typename Outcome>
void RunInOrder(std::size_t count, int threads, const std::function<Outcome(std::size_t)>& run,
                const std::function<void(const Outcome&)>& take) {
  if (threads <= 1 || count <= 1) {
    for (std::size_t i = 0; i < count; ++i) take(run(i));
    return;
  }

  // Workers stay at most `ahead` jobs in front of what has been handed over, so that outcomes do
  // not pile up behind a long recording.
  const auto workers = std::min(static_cast<std::size_t>(threads), count);
  const std::size_t ahead = 4 * workers;
  std::mutex mutex;
  std::condition_variable changed;
  std::vector<std::optional<Outcome>> outcomes(count);
  std::size_t next = 0;   // the first job that no worker has
  std::size_t taken = 0;  // outcomes handed over
  const auto work = [&] {
    std::unique_lock lock(mutex);
    for (;;) {
      changed.wait(lock, [&] { return next >= count || next < taken + ahead; });
      if (next >= count) return;
      const std::size_t job = next++;
      lock.unlock();
      Outcome outcome = run(job);
      lock.lock();
      outcomes[job] = std::move(outcome);
      changed.notify_all();
    }
  };
  std::vector<std::jthread> pool;
  for (std::size_t i = 0; i < workers; ++i) pool.emplace_back(work);
  for (std::size_t job = 0; job < count; ++job) {
    std::unique_lock lock(mutex);
    changed.wait(lock, [&] { return outcomes[job].has_value(); });
    const Outcome outcome = std::move(*outcomes[job]);
    outcomes[job].reset();
    taken = job + 1;
    changed.notify_all();
    lock.unlock();
    take(outcome);
  }
}

}  // namespace veral3::tools
