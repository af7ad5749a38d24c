#pragma once

#include <zirk/vuperfcounter.h>

#include <chrono>

namespace ZIRK::backends {

/// Adds the time of the scope it stands in to `draw_time` or `swap_time` while LogPerf is set.
class DrawTimer {
 public:
  static DrawTimer Drawing() { return DrawTimer(draw_time, drawRemainder_); }
  static DrawTimer Swapping() { return DrawTimer(swap_time, swapRemainder_); }

  ~DrawTimer() {
    if (!running_) return;
    const auto spent = std::chrono::nanoseconds(Clock::now() - start_).count();
    remainder_ += static_cast<uint64_t>(spent);
    microseconds_ += static_cast<uint32_t>(remainder_ / 1000);
    remainder_ %= 1000;
  }
  DrawTimer(const DrawTimer&) = delete;
  DrawTimer& operator=(const DrawTimer&) = delete;

 private:
  using Clock = std::chrono::steady_clock;

  DrawTimer(uint32_t& microseconds, uint64_t& remainder)
      : microseconds_(microseconds), remainder_(remainder), running_(LogPerf) {
    if (running_) start_ = Clock::now();
  }

  // Nanoseconds left over from last time: one drawing operation often takes less than a
  // microsecond.
  static inline thread_local uint64_t drawRemainder_ = 0;
  static inline thread_local uint64_t swapRemainder_ = 0;

  uint32_t& microseconds_;
  uint64_t& remainder_;
  const bool running_;
  Clock::time_point start_{};
};

}  // namespace ZIRK::backends
