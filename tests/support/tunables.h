#pragma once

#include <zirk/vuperfcounter.h>
#include <zirk/vusyslog.h>

namespace ZIRK::support {

/// Puts the library's global switches back at the end of the scope.
class Tunables {
 public:
  Tunables() = default;
  ~Tunables() {
    LogLevel = level_;
    LogBurst = burst_;
    LogInterval = interval_;
    LogPerf = perf_;
    LogOverdraw = overdraw_;
  }
  Tunables(const Tunables&) = delete;
  Tunables& operator=(const Tunables&) = delete;

 private:
  const int level_ = LogLevel;
  const int burst_ = LogBurst;
  const int interval_ = LogInterval;
  const bool perf_ = LogPerf;
  const bool overdraw_ = LogOverdraw;
};

}  // namespace ZIRK::support
