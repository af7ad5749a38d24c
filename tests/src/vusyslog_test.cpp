#include <gtest/gtest.h>
#include <sys/klog.h>
#include <unistd.h>
#include <zirk/impl/log.h>

#include <string>
#include <thread>

#include "helpers/calls.h"
#include "helpers/logged.h"
#include "support/allocations.h"

namespace ZIRK {
namespace {

using helpers::LoggedAt;

TEST(Log, LevelsAndTags) {
  int evaluated = 0;
  const auto all = [&] {
    ZIRK_LOG_ERROR("e%d", 1);
    ZIRK_LOG_WARNING("w%s", "2");
    ZIRK_LOG_INFO("i%d", ++evaluated);
    ZIRK_LOG_DEBUG("d");
    _vuSysLog(4, "word", "tag", "%c", 'x');
  };
  EXPECT_EQ(LoggedAt(3, all), "<ZIRK.error>: e1\n");
  EXPECT_EQ(LoggedAt(4, all), "<ZIRK.error>: e1\n<ZIRK.warning>: w2\n<tag.word>: x\n");
  EXPECT_EQ(evaluated, 0);
  EXPECT_EQ(LoggedAt(7, all),
            "<ZIRK.error>: e1\n<ZIRK.warning>: w2\n<ZIRK.info>: i1\n<ZIRK.debug>: d\n"
            "<tag.word>: x\n");
}

TEST(Log, LinesAreCutAt1023Characters) {
  const auto line = [](size_t size) {
    const std::string message(size - std::string("<ZIRK.warning>: ").size(), 'x');
    return LoggedAt(4, [&] { ZIRK_LOG_WARNING("%s", message.c_str()); });
  };
  EXPECT_EQ(line(1022).size(), 1023u);
  EXPECT_EQ(line(1022).back(), '\n');
  for (const size_t size : {1023, 5000}) {
    EXPECT_EQ(line(size).size(), 1023u);
    EXPECT_EQ(line(size).back(), 'x');
  }
  const std::string tag(3000, 't');
  EXPECT_EQ(LoggedAt(4, [&] { _vuSysLog(4, "warning", tag.c_str(), "lost"); }).size(), 1023u);
}

TEST(Log, AMessageThatCannotBeFormattedLeavesTheColon) {
  EXPECT_EQ(LoggedAt(4, [] { _vuSysLog(4, "warning", "ZIRK", "%ls", L"\x100"); }),
            "<ZIRK.warning>:\n");
}

/// Standard error after numbered warnings.
std::string Warnings(int count) {
  testing::internal::CaptureStderr();
  for (int i = 0; i < count; ++i) ZIRK_LOG_WARNING("%d", i);
  return testing::internal::GetCapturedStderr();
}

TEST(Log, TheBurstIsLimitedAndReportedOnce) {
  const helpers::Tunables restored;
  helpers::StoppedClock clock;
  EXPECT_EQ(LogLevel, 4);
  EXPECT_EQ(LogBurst, 20);
  EXPECT_EQ(LogInterval, 5);
  LogInterval = 1;
  LogBurst = 1000;
  const std::chrono::nanoseconds interval = std::chrono::seconds(1);
  const auto endInterval = [&] { clock.Advance(interval + std::chrono::nanoseconds(1)); };
  endInterval();
  Warnings(1);
  clock.Advance(interval);
  LogBurst = 3;
  EXPECT_EQ(Warnings(19), "<ZIRK.warning>: 0\n<ZIRK.warning>: 1\n");
  endInterval();
  EXPECT_EQ(Warnings(2),
            "<ZIRK.warning>: 17 messages suppressed\n<ZIRK.warning>: 0\n<ZIRK.warning>: 1\n");
  LogBurst = -1;
  EXPECT_EQ(Warnings(2), "");
  endInterval();
  EXPECT_EQ(Warnings(1), "<ZIRK.warning>: 2 messages suppressed\n");
}

TEST(Log, NothingIsAllocated) {
  int allocated = -1;
  LoggedAt(4, [&] {
    const int before = support::Allocations();
    ZIRK_LOG_WARNING("%s %f", "text", 1.5);
    allocated = support::Allocations() - before;
  });
  EXPECT_EQ(allocated, 0);
}

TEST(Log, SanitizedAnyThreadMayCall) {
  LoggedAt(4, [] {
    LogInterval = 1000;
    std::thread other([] { ZIRK_LOG_WARNING("x"); });
    ZIRK_LOG_WARNING("y");
    other.join();
  });
}

TEST(Log, OnlyErrorsReachTheKernelLog) {
  std::string kernelLog(1 << 20, '\0');
  const auto read = [&] { return klogctl(3, kernelLog.data(), 1 << 20); };  // All there is.
  if (access("/dev/kmsg", W_OK) != 0 || read() < 0) GTEST_SKIP() << "No access to the kernel log";
  const std::string test = "kernel log test " + std::to_string(getpid());
  LoggedAt(4, [&] {
    ZIRK_LOG_WARNING("%s", test.c_str());
    ZIRK_LOG_ERROR("%s", test.c_str());
  });
  read();
  EXPECT_NE(kernelLog.find("<ZIRK.error>: " + test), std::string::npos);
  EXPECT_EQ(kernelLog.find("<ZIRK.warning>: " + test), std::string::npos);
}

}  // namespace
}  // namespace ZIRK
