#pragma once

#include <atomic>
#include <cstddef>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace veral3::training {

// Calls work(i) for every i below `count` on `threads` threads. Each index is worked on once, in no
// promised order; what an index does must not depend on another. The first exception is thrown
// again here, after all threads ended.
template <typename Work>
void ParallelFor(std::size_t count, int threads, const Work& work) {
  std::atomic<std::size_t> next{0};
  std::exception_ptr failure;
  std::mutex lock;
  const auto run = [&] {
    try {
      for (std::size_t i = next++; i < count; i = next++) work(i);
    } catch (...) {
      const std::lock_guard guard(lock);
      if (!failure) failure = std::current_exception();
      next = count;
    }
  };
  std::vector<std::jthread> pool;
  for (int t = 1; t < threads; ++t) pool.emplace_back(run);
  run();
  pool.clear();
  if (failure) std::rethrow_exception(failure);
}

}  // namespace veral3::training
