#pragma once

#include <zirk/vuperfcounter.h>

#include <chrono>

namespace ZIRK::backends {

/// A timer that adds the time of its scope to `draw_time` or `swap_time` while LogPerf is set. If
/// timers of one thread nest, only the outermost counts.
class DrawTimer {
 public:
  static DrawTimer Drawing() { return DrawTimer(false); }
  static DrawTimer Swapping() { return DrawTimer(true); }

  ~DrawTimer() {
    if (thread_) Stop();
  }
  DrawTimer(const DrawTimer&) = delete;
  DrawTimer& operator=(const DrawTimer&) = delete;

 private:
  using Clock = std::chrono::steady_clock;

  struct Thread {
    int depth;  ///< The number of running timers.
    // The nanoseconds that are not yet counted: a drawing operation often takes less than a
    // microsecond.
    uint64_t remainders[2];
  };

  explicit DrawTimer(bool swapping) {
    if (LogPerf) Start(swapping);
  }

  // Not inlined: computing the address of thread-local variables takes longer than a small
  // operation, and compilers tend to do it in advance.
  [[gnu::cold, gnu::noinline]] void Start(bool swapping) {
    static thread_local Thread thread = {};
    ++thread.depth;
    thread_ = &thread;
    swapping_ = swapping;
    start_ = Clock::now();
  }
  [[gnu::cold, gnu::noinline]] void Stop() const {
    if (--thread_->depth > 0) return;
    const auto spent = std::chrono::nanoseconds(Clock::now() - start_).count();
    uint64_t& remainder = thread_->remainders[swapping_];
    remainder += static_cast<uint64_t>(spent);
    (swapping_ ? swap_time : draw_time) += static_cast<uint32_t>(remainder / 1000);
    remainder %= 1000;
  }

  Thread* thread_ = nullptr;  ///< Null if the timer does not measure.
  bool swapping_;             ///< Set, like `start_`, only if it does.
  Clock::time_point start_;
};

}  // namespace ZIRK::backends
