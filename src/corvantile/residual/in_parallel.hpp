#pragma once
// Work shared out to threads.

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace corvantile {

/// As many as the machine runs at once; 1 if it does not say.
inline unsigned usual_threads() { return std::max(1U, std::thread::hardware_concurrency()); }

/// Calls `work(i)` once for each i below `count`, from `threads` threads of which the caller's is one (0: as many as
/// the machine runs at once), and returns when all are done. Each call writes to places of its own that no other call
/// reads: then the result does not depend on the number of threads. `between()` is called on the caller's thread
/// after each of its own calls. What either throws ends the work early, and is thrown here. A thread that the system
/// refuses is done without.
template <class Work, class Between>
void in_parallel(std::size_t count, unsigned threads, const Work& work, const Between& between) {
  if (threads == 0) threads = usual_threads();
  std::atomic<std::size_t> next = 0;
  std::exception_ptr thrown;
  std::mutex of_thrown;
  const auto guarded = [&](const auto& task) {
    try {
      task();
    } catch (...) {
      next = count;
      const std::lock_guard lock(of_thrown);
      if (!thrown) thrown = std::current_exception();
    }
  };
  const auto share = [&] {
    guarded([&] {
      for (std::size_t i = next++; i < count; i = next++) work(i);
    });
  };
  std::vector<std::jthread> others;
  try {
    while (others.size() + 1 < std::min<std::size_t>(threads, count)) others.emplace_back(share);
  } catch (const std::system_error&) {  // those that there are, and this one, do it all
  }
  guarded([&] {
    for (std::size_t i = next++; i < count; i = next++) {
      work(i);
      between();
    }
  });
  others.clear();  // waits for them
  if (thrown) std::rethrow_exception(thrown);
}
template <class Work>
void in_parallel(std::size_t count, unsigned threads, const Work& work) {
  in_parallel(count, threads, work, [] {});
}

}  // namespace corvantile
