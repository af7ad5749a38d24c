#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "support/tunables.h"

namespace ZIRK::support {

/// What `run` writes to standard error at `level`, with the limiter off.
template <typename F>
std::string LoggedAt(int level, F&& run) {
  const Tunables restored;
  LogLevel = level;
  LogInterval = 0;
  testing::internal::CaptureStderr();
  std::forward<F>(run)();
  return testing::internal::GetCapturedStderr();
}

}  // namespace ZIRK::support
