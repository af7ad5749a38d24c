#pragma once

#include <zirk/vuperfcounter.h>

#include <chrono>

namespace ZIRK::backends {

/// Adds the time of the scope it stands in to `draw_time` or `swap_time` while LogPerf is set.
/// Of timers inside one another, in one thread, only the outermost counts.
class DrawTimer {
 public:
  static DrawTimer Drawing() { return DrawTimer(LogPerf ? Start(false) : Measurement()); }
  static DrawTimer Swapping() { return DrawTimer(LogPerf ? Start(true) : Measurement()); }

  ~DrawTimer() {
    if (measured_.thread) Stop(measured_);
  }
  DrawTimer(const DrawTimer&) = delete;
  DrawTimer& operator=(const DrawTimer&) = delete;

 private:
  using Clock = std::chrono::steady_clock;

  struct Thread {
    int depth;  ///< Of timers that run.
    // Nanoseconds left over from last time: one drawing operation often takes less than a
    // microsecond.
    uint64_t remainders[2];
  };
  /// Null where nothing is measured.
  struct Measurement {
    Thread* thread = nullptr;
    bool swapping = false;
    Clock::time_point start{};
  };

  explicit DrawTimer(const Measurement& measured) : measured_(measured) {}

  // Apart: to find out where a thread's own variables lie takes longer than a small operation, and
  // compilers like to do that beforehand.
  [[gnu::cold, gnu::noinline]] static Measurement Start(bool swapping) {
    static thread_local Thread thread = {};
    ++thread.depth;
    return {&thread, swapping, Clock::now()};
  }
  [[gnu::cold, gnu::noinline]] static void Stop(const Measurement& m) {
    if (--m.thread->depth > 0) return;
    const auto spent = std::chrono::nanoseconds(Clock::now() - m.start).count();
    uint64_t& remainder = m.thread->remainders[m.swapping];
    remainder += static_cast<uint64_t>(spent);
    (m.swapping ? swap_time : draw_time) += static_cast<uint32_t>(remainder / 1000);
    remainder %= 1000;
  }

  const Measurement measured_;
};

}  // namespace ZIRK::backends
