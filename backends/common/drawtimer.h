#pragma once

#include <zirk/vuperfcounter.h>

#include <chrono>

namespace ZIRK::backends {

/// Adds the time of the scope it stands in to `draw_time` or `swap_time` while LogPerf is set.
class DrawTimer {
 public:
  static DrawTimer Drawing() {
    return LogPerf ? DrawTimer(draw_time, drawRemainder_) : DrawTimer();
  }
  static DrawTimer Swapping() {
    return LogPerf ? DrawTimer(swap_time, swapRemainder_) : DrawTimer();
  }

  ~DrawTimer() {
    if (!microseconds_) return;
    const auto spent = std::chrono::nanoseconds(Clock::now() - start_).count();
    *remainder_ += static_cast<uint64_t>(spent);
    *microseconds_ += static_cast<uint32_t>(*remainder_ / 1000);
    *remainder_ %= 1000;
  }
  DrawTimer(const DrawTimer&) = delete;
  DrawTimer& operator=(const DrawTimer&) = delete;

 private:
  using Clock = std::chrono::steady_clock;

  DrawTimer() = default;
  DrawTimer(uint32_t& microseconds, uint64_t& remainder)
      : microseconds_(&microseconds), remainder_(&remainder), start_(Clock::now()) {}

  // Nanoseconds left over from last time: one drawing operation often takes less than a
  // microsecond.
  static inline thread_local uint64_t drawRemainder_ = 0;
  static inline thread_local uint64_t swapRemainder_ = 0;

  // Null where nothing is measured: to find out where a thread's own variables lie takes longer
  // than a small operation.
  uint32_t* const microseconds_ = nullptr;
  uint64_t* const remainder_ = nullptr;
  const Clock::time_point start_{};
};

}  // namespace ZIRK::backends
