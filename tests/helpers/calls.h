#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace ZIRK::helpers {

/// What the library asks of the C library and of FreeType: functions in calls.cpp replace theirs,
/// note the call, and forward it. The clock is that of clock_gettime(), which std::chrono uses too.
struct Calls {
  std::vector<std::string> faces;        ///< Paths given to FT_New_Face().
  std::vector<int> loads;                ///< Flags given to FT_Load_Glyph().
  int glyphsToRefuse = 0;                ///< So many calls of FT_Load_Glyph() find no memory.
  std::chrono::nanoseconds stoppedAt{};  ///< What the monotonic clock shows, unless it is zero.
};
extern Calls calls;

/// While one lives, the monotonic clock moves only by Advance(). It goes on from there afterwards.
struct StoppedClock {
  StoppedClock() { Advance(std::chrono::steady_clock::now().time_since_epoch()); }
  ~StoppedClock() { calls.stoppedAt = {}; }
  static void Advance(std::chrono::nanoseconds time) { calls.stoppedAt += time; }
};

}  // namespace ZIRK::helpers
