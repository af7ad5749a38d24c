#pragma once

#include <gtest/gtest.h>
#include <zirk/vuperfcounter.h>
#include <zirk/vusyslog.h>

#include <string>

namespace ZIRK::support {

/// Puts the library's global switches back at the end of the scope.
struct Tunables {
  const int level = LogLevel, burst = LogBurst, interval = LogInterval;
  const bool perf = LogPerf, overdraw = LogOverdraw;

  ~Tunables() {
    LogLevel = level;
    LogBurst = burst;
    LogInterval = interval;
    LogPerf = perf;
    LogOverdraw = overdraw;
  }
};

/// What `run` writes to standard error at `level`, with the limiter off.
template <typename F>
std::string LoggedAt(int level, F&& run) {
  const Tunables restored;
  LogLevel = level;
  LogInterval = 0;
  testing::internal::CaptureStderr();
  run();
  return testing::internal::GetCapturedStderr();
}

}  // namespace ZIRK::support
