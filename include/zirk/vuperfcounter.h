#pragma once

#include <zirk/export.h>

#include <cstdint>

namespace ZIRK {

struct VuPerfCounterImpl;

/// A stopwatch that adds up microseconds over any number of Start/Stop intervals.
/// Not synchronised: use each counter from one thread at a time.
class ZIRK_API VuPerfCounter {
 public:
  VuPerfCounter();
  ~VuPerfCounter();
  VuPerfCounter(const VuPerfCounter&) = delete;
  VuPerfCounter& operator=(const VuPerfCounter&) = delete;

  /// Begins an interval. One in progress is counted first, with an "info" line.
  void Start();
  /// Ends the interval and counts it. Without one, only writes an "info" line.
  void Stop();
  /// Forgets everything counted, and an interval in progress.
  void Reset();

  /// Microseconds in all completed intervals; wraps after about 71 minutes.
  unsigned Elapsed();
  /// Number of completed intervals.
  unsigned Count();

 private:
  VuPerfCounterImpl* impl;
};

/// Counts the scope that it stands in.
class VuScopedCounter {
 public:
  /// Starts `counter`, which has to live until the end of the scope and is stopped there.
  explicit VuScopedCounter(VuPerfCounter& counter) : counter_(counter) { counter_.Start(); }
  ~VuScopedCounter() { counter_.Stop(); }
  VuScopedCounter(const VuScopedCounter&) = delete;
  VuScopedCounter& operator=(const VuScopedCounter&) = delete;

 private:
  VuPerfCounter& counter_;
};

/// While set, backends add to draw_time and swap_time, and ShowFPS reports them.
extern ZIRK_API bool LogPerf;
/// While set, a screen's SwapBuffers calls ShowFPS.
extern ZIRK_API bool LogFPS;
/// While set, drawing is added to its surface's overdraw counter, reported at the end of a frame.
extern ZIRK_API bool LogOverdraw;

/// Microseconds spent drawing and swapping since the last report, added by the backend.
extern ZIRK_API uint32_t draw_time;
extern ZIRK_API uint32_t swap_time;

/// Call once per presented frame, from the rendering thread: about once a second it logs, at
/// "warning", the average frame time and rate, and with LogPerf the average drawing and swapping
/// times. Each thread has statistics of its own; the first call on a thread reports at once.
ZIRK_API void ShowFPS();

}  // namespace ZIRK
