#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>
#include <zirk/impl/log.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "support/allocations.h"
#include "support/logged.h"

namespace ZIRK {
namespace {

using support::LoggedAt;
using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

class Log : public testing::Test {
 protected:
  /// Waits until the limiter's interval has run out.
  static void EndInterval() { std::this_thread::sleep_for(std::chrono::milliseconds(1001)); }

  /// Begins an interval of a second with one message.
  static void BeginInterval() {
    LogLevel = 7;
    LogInterval = 1;
    LogBurst = 1000;
    EndInterval();
    CaptureStderr();
    ZIRK_LOG_DEBUG("interval begins");
    GetCapturedStderr();
  }

 private:
  support::Tunables restored_;
};

TEST_F(Log, LevelsAndTags) {
  const auto all = [] {
    ZIRK_LOG_ERROR("e%d", 1);
    ZIRK_LOG_WARNING("w%s", "2");
    ZIRK_LOG_INFO("i");
    ZIRK_LOG_DEBUG("d");
    _vuSysLog(4, "word", "tag", "%c", 'x');
  };
  EXPECT_EQ(LoggedAt(7, all),
            "<ZIRK.error>: e1\n<ZIRK.warning>: w2\n<ZIRK.info>: i\n<ZIRK.debug>: d\n"
            "<tag.word>: x\n");
  EXPECT_EQ(LoggedAt(4, all), "<ZIRK.error>: e1\n<ZIRK.warning>: w2\n<tag.word>: x\n");
  EXPECT_EQ(LoggedAt(3, all), "<ZIRK.error>: e1\n");
  EXPECT_EQ(LoggedAt(2, all), "");
}

TEST_F(Log, UnwantedArgumentsAreNotEvaluated) {
  int evaluated = 0;
  LoggedAt(4, [&] { ZIRK_LOG_INFO("%d", ++evaluated); });
  EXPECT_EQ(evaluated, 0);
}

TEST_F(Log, LongLinesAreCut) {
  const std::string prefix = "<ZIRK.warning>: ";
  struct Case {
    size_t characters;  ///< of prefix and message
    size_t written;     ///< of them, with the newline
    bool newline;
  };
  for (const Case test : {Case{1021, 1022, true}, Case{1022, 1023, true}, Case{1023, 1023, false},
                          Case{5000, 1023, false}}) {
    const std::string message(test.characters - prefix.size(), 'x');
    const std::string line = LoggedAt(4, [&] { ZIRK_LOG_WARNING("%s", message.c_str()); });
    EXPECT_EQ(line.size(), test.written) << test.characters;
    EXPECT_EQ(line.back() == '\n', test.newline) << test.characters;
  }
  const std::string tag(3000, 't');
  EXPECT_EQ(LoggedAt(4, [&] { _vuSysLog(4, "warning", tag.c_str(), "lost"); }).size(), 1023u);
}

TEST_F(Log, TheBurstIsLimitedAndReportedOnce) {
  BeginInterval();
  LogBurst = 3;
  CaptureStderr();
  for (int i = 0; i < 19; ++i) ZIRK_LOG_WARNING("%d", i);
  EXPECT_EQ(GetCapturedStderr(), "<ZIRK.warning>: 0\n<ZIRK.warning>: 1\n");
  EndInterval();
  CaptureStderr();
  ZIRK_LOG_INFO("next");
  ZIRK_LOG_INFO("after");
  EXPECT_EQ(GetCapturedStderr(),
            "<ZIRK.info>: 17 messages suppressed\n<ZIRK.info>: next\n<ZIRK.info>: after\n");
}

TEST_F(Log, AnEmptyBurstSuppressesAll) {
  BeginInterval();
  LogBurst = 0;
  CaptureStderr();
  ZIRK_LOG_WARNING("a");
  LogBurst = -1;
  ZIRK_LOG_WARNING("b");
  EXPECT_EQ(GetCapturedStderr(), "");
  EndInterval();
  CaptureStderr();
  ZIRK_LOG_WARNING("c");
  EXPECT_EQ(GetCapturedStderr(), "<ZIRK.warning>: 2 messages suppressed\n");
}

TEST_F(Log, DefaultsAllowTwenty) {
  EXPECT_EQ(LogLevel, 4);
  EXPECT_EQ(LogBurst, 20);
  EXPECT_EQ(LogInterval, 5);
}

TEST_F(Log, NothingIsAllocated) {
  const int before = support::Allocations();
  LogInterval = 0;
  LogLevel = 4;
  CaptureStderr();
  const int captured = support::Allocations();
  ZIRK_LOG_WARNING("%s %f", "text", 1.5);
  const int after = support::Allocations();
  GetCapturedStderr();
  EXPECT_EQ(after, captured);
  EXPECT_GE(captured, before);
}

TEST_F(Log, OnlyErrorsReachTheKernelLog) {
  const int kernel = open("/dev/kmsg", O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  const int writable = open("/dev/kmsg", O_WRONLY | O_CLOEXEC);
  if (writable >= 0) close(writable);
  if (kernel < 0 || writable < 0) {
    if (kernel >= 0) close(kernel);
    GTEST_SKIP() << "/dev/kmsg cannot be read and written here";
  }
  lseek(kernel, 0, SEEK_END);
  LoggedAt(4, [] {
    ZIRK_LOG_WARNING("kernel log test %d: warning", getpid());
    ZIRK_LOG_ERROR("kernel log test %d: error", getpid());
  });
  std::string found;
  char record[8192];
  for (ssize_t n = 0; (n = read(kernel, record, sizeof record)) > 0;) {
    const std::string text(record, static_cast<size_t>(n));
    if (text.find("kernel log test " + std::to_string(getpid())) != std::string::npos)
      found += text.substr(text.find(';') + 1);
  }
  close(kernel);
  EXPECT_EQ(found, "<ZIRK.error>: kernel log test " + std::to_string(getpid()) + ": error\n");
}

TEST_F(Log, ThreadsDoNotMixWithinALine) {
  constexpr int kThreads = 4;
  constexpr int kLines = 50;
  const std::string written = LoggedAt(4, [] {
    LogInterval = 1000;
    LogBurst = 100000;
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
      threads.emplace_back([] {
        for (int line = 0; line < kLines; ++line) ZIRK_LOG_WARNING("0123456789");
      });
    }
    for (std::thread& thread : threads) thread.join();
  });
  std::string expected;
  for (int i = 0; i < kThreads * kLines; ++i) expected += "<ZIRK.warning>: 0123456789\n";
  EXPECT_EQ(written, expected);
}

}  // namespace
}  // namespace ZIRK
