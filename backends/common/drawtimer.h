#pragma once

#include <zirk/vuperfcounter.h>

#include <chrono>

namespace ZIRK::backends {

/// Adds the time of the scope it stands in to `draw_time` or `swap_time` while LogPerf is set.
class DrawTimer {
 public:
  static DrawTimer Drawing() { return DrawTimer(LogPerf ? Start(false) : Measurement()); }
  static DrawTimer Swapping() { return DrawTimer(LogPerf ? Start(true) : Measurement()); }

  ~DrawTimer() {
    if (measured_.microseconds) Stop(measured_);
  }
  DrawTimer(const DrawTimer&) = delete;
  DrawTimer& operator=(const DrawTimer&) = delete;

 private:
  using Clock = std::chrono::steady_clock;

  /// Null where nothing is measured.
  struct Measurement {
    uint32_t* microseconds = nullptr;
    uint64_t* remainder = nullptr;
    Clock::time_point start{};
  };

  explicit DrawTimer(const Measurement& measured) : measured_(measured) {}

  // Apart: to find out where a thread's own variables lie takes longer than a small operation, and
  // compilers like to do that beforehand.
  [[gnu::cold, gnu::noinline]] static Measurement Start(bool swapping) {
    // Nanoseconds left over from last time: one drawing operation often takes less than a
    // microsecond.
    static thread_local uint64_t remainders[2] = {};
    return {swapping ? &swap_time : &draw_time, &remainders[swapping], Clock::now()};
  }
  [[gnu::cold, gnu::noinline]] static void Stop(const Measurement& m) {
    const auto spent = std::chrono::nanoseconds(Clock::now() - m.start).count();
    *m.remainder += static_cast<uint64_t>(spent);
    *m.microseconds += static_cast<uint32_t>(*m.remainder / 1000);
    *m.remainder %= 1000;
  }

  const Measurement measured_;
};

}  // namespace ZIRK::backends
