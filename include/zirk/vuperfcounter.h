#pragma once

#include <zirk/export.h>

#include <cstdint>

namespace ZIRK {

struct VuPerfCounterImpl;

/// A stopwatch that adds up microseconds over any number of intervals.
///
///     VuPerfCounter counter;
///     {
///       const VuScopedCounter scope(counter);
///       DrawPage();
///     }
///     std::printf("%u us\n", counter.Elapsed());
///
/// **Threads**: use each counter from one thread at a time.
class ZIRK_API VuPerfCounter {
 public:
  /// A counter with nothing counted. Raises std::bad_alloc if memory runs out.
  VuPerfCounter();
  ~VuPerfCounter();
  VuPerfCounter(const VuPerfCounter&) = delete;
  VuPerfCounter& operator=(const VuPerfCounter&) = delete;

  /// Begins an interval. One in progress is ended and counted first, with an info line.
  void Start();
  /// Ends the interval and counts it. Without one, does nothing but log an info line.
  void Stop();
  /// Sets both totals to 0 and drops an interval in progress.
  void Reset();

  /// Microseconds in all completed intervals. Wraps around after about 71 minutes.
  [[nodiscard]] unsigned Elapsed();
  /// Number of completed intervals.
  [[nodiscard]] unsigned Count();

 private:
  VuPerfCounterImpl* impl;
};

/// Counts the time that the program spends in a scope, as one interval of a VuPerfCounter.
class VuScopedCounter {
 public:
  /// Starts `counter`. The destructor stops it, so `counter` must live until then.
  explicit VuScopedCounter(VuPerfCounter& counter) : counter_(counter) { counter_.Start(); }
  ~VuScopedCounter() { counter_.Stop(); }
  VuScopedCounter(const VuScopedCounter&) = delete;
  VuScopedCounter& operator=(const VuScopedCounter&) = delete;

 private:
  VuPerfCounter& counter_;
};

/// While true, backends add to draw_time and swap_time, and ShowFPS() reports them. False at first.
/// Set it before threads draw.
extern ZIRK_API bool LogPerf;
/// While true, a screen's SwapBuffers() calls ShowFPS(). False at first. Set it before threads
/// draw.
extern ZIRK_API bool LogFPS;
/// While true, every drawing operation adds the pixels it covers to the overdraw counter of its
/// surface, which is reported at the end of a frame. False at first. Set it before threads draw.
extern ZIRK_API bool LogOverdraw;

/// Microseconds that backends spent drawing since the last report. Not synchronised.
extern ZIRK_API uint32_t draw_time;
/// Microseconds that backends spent in SwapBuffers() since the last report. Not synchronised.
extern ZIRK_API uint32_t swap_time;

/// Counts a frame. About once a second it logs, at level warning, the average frame time and rate,
/// and with LogPerf the average drawing and swapping times. Call it once per presented frame from
/// the rendering thread. Each thread has statistics of its own; the first call on a thread reports
/// at once.
ZIRK_API void ShowFPS();

}  // namespace ZIRK
