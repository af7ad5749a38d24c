#pragma once

#include <gtest/gtest.h>
#include <zirk/vuperfcounter.h>
#include <zirk/vusyslog.h>

#include <string>
#include <utility>

namespace ZIRK::helpers {

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

/// Whether `run` writes one line, an error, or a warning if `level` is 4, and that holds `part`.
template <typename F>
testing::AssertionResult LogsOneError(const std::string& part, F&& run, int level = 3) {
  const std::string log = LoggedAt(level, std::forward<F>(run));
  const bool one = log.find('\n') == log.size() - 1 &&
                   log.rfind(level == 3 ? "<ZIRK.error>:" : "<ZIRK.warning>:", 0) == 0;
  if (one && log.find(part) != std::string::npos) return testing::AssertionSuccess();
  return testing::AssertionFailure() << "not one such line with \"" << part << "\":\n" << log;
}

}  // namespace ZIRK::helpers
