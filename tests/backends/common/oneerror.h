#pragma once

#include <string>
#include <utility>

#include "support/logged.h"

namespace ZIRK::tests {

/// Whether `run` writes one error line, and that holds `part`.
template <typename F>
testing::AssertionResult LogsOneError(const std::string& part, F&& run) {
  const std::string log = support::LoggedAt(3, std::forward<F>(run));
  const bool one = log.rfind("<ZIRK.error>:", 0) == 0 && log.find('\n') == log.size() - 1;
  if (one && log.find(part) != std::string::npos) return testing::AssertionSuccess();
  return testing::AssertionFailure() << "not one error line with \"" << part << "\":\n" << log;
}

}  // namespace ZIRK::tests
