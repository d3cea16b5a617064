#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <mutex>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "kestrix/utils/error.h"
#include "kestrix/utils/stop.h"

namespace kestrix {

/// The number of threads to use when `asked` is zero: one a core.
inline unsigned thread_count(unsigned asked) {
  return asked > 0 ? asked : std::max(1U, std::thread::hardware_concurrency());
}

/// Computes `make(i)` for every i below a count on several threads and hands the results to a
/// function on the calling one, in whatever order they get done. Few results wait at any time, so
/// memory does not grow with the count. For one run.
template <class Result>
class Workers {
 public:
  Workers(unsigned threads, const StopFlag* stop) : threads_(threads), stop_(stop) {}

  /// The first exception of either function ends the work and is thrown here; so is `StopRequest`
  /// as soon as the flag is set. No thread outlives the call.
  template <class Make, class Take>
  void run(std::size_t count, const Make& make, const Take& take) {
    if (count == 1) return take(make(0));
    std::vector<std::jthread> crew;
    const Closer closer{*this};  // goes before the crew, which waits for it
    for (std::size_t i = 0; i < std::min<std::size_t>(threads_, count); ++i) {
      if (!start(crew, [this, count, &make] { work(count, make); })) break;
    }
    for (std::size_t taken = 0; taken < count; ++taken) take(next_result());
  }

 private:
  static constexpr std::size_t kMostWaiting = 64;
  static constexpr auto kStopPoll = std::chrono::milliseconds(20);

  struct Closer {
    Workers& workers;

    explicit Closer(Workers& closed) : workers(closed) {}
    Closer(const Closer&) = delete;
    Closer& operator=(const Closer&) = delete;
    ~Closer() { workers.close(); }
  };

  // Fewer threads do as well; without any it is an error.
  template <class Work>
  static bool start(std::vector<std::jthread>& crew, Work work) {
    try {
      crew.emplace_back(std::move(work));
      return true;
    } catch (const std::system_error& failure) {
      if (!crew.empty()) return false;
      throw Error(std::string("no thread can be started: ") + failure.what());
    }
  }

  template <class Make>
  void work(std::size_t count, const Make& make) {
    try {
      for (auto i = next_++; i < count; i = next_++) {
        if (!put(make(i))) return;
      }
    } catch (...) {
      fail(std::current_exception());
    }
  }

  bool put(Result result) {
    std::unique_lock lock(mutex_);
    room_.wait(lock, [&] { return closed_ || waiting_.size() < kMostWaiting; });
    if (closed_) return false;
    waiting_.push_back(std::move(result));
    filled_.notify_one();
    return true;
  }

  Result next_result() {
    std::unique_lock lock(mutex_);
    while (waiting_.empty() && !failure_) {
      check_stop(stop_);
      filled_.wait_for(lock, kStopPoll);
    }
    check_stop(stop_);
    if (failure_) std::rethrow_exception(failure_);
    Result result = std::move(waiting_.front());
    waiting_.pop_front();
    room_.notify_one();
    return result;
  }

  void fail(std::exception_ptr failure) {
    const std::lock_guard lock(mutex_);
    if (!failure_) failure_ = std::move(failure);
    filled_.notify_one();
  }

  void close() {
    const std::lock_guard lock(mutex_);
    closed_ = true;
    room_.notify_all();
  }

  unsigned threads_;
  const StopFlag* stop_;
  std::atomic<std::size_t> next_ = 0;
  std::mutex mutex_;
  std::condition_variable room_;
  std::condition_variable filled_;
  std::deque<Result> waiting_;
  std::exception_ptr failure_;
  bool closed_ = false;
};

}  // namespace kestrix
