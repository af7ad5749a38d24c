#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zirk/vuperfcounter.h>

#include <chrono>
#include <string>
#include <thread>

#include "support/logged.h"

namespace ZIRK {
namespace {

using std::chrono::milliseconds;
using support::LoggedAt;

void Pause(int ms) {
  std::this_thread::sleep_for(milliseconds(ms));
}

TEST(PerfCounter, CountsEveryInterval) {
  VuPerfCounter counter;
  const auto log = LoggedAt(6, [&] {
    counter.Start();
    Pause(10);
    counter.Start();
    Pause(10);
    EXPECT_EQ(counter.Count(), 1u);
    counter.Stop();
  });
  EXPECT_EQ(log, "<ZIRK.info>: void ZIRK::VuPerfCounterImpl::Start(): restarting\n");
  EXPECT_EQ(counter.Count(), 2u);
  EXPECT_GE(counter.Elapsed(), 20000u);
  EXPECT_LT(counter.Elapsed(), 2000000u);
}

TEST(PerfCounter, StopWithoutStart) {
  VuPerfCounter counter;
  EXPECT_EQ(LoggedAt(6, [&] { counter.Stop(); }),
            "<ZIRK.info>: void ZIRK::VuPerfCounterImpl::Stop(): not started\n");
  EXPECT_EQ(LoggedAt(4, [&] { counter.Stop(); }), "");
  EXPECT_EQ(counter.Count(), 0u);
  EXPECT_EQ(counter.Elapsed(), 0u);
}

TEST(PerfCounter, ResetAlsoStops) {
  VuPerfCounter counter;
  counter.Start();
  counter.Stop();
  counter.Start();
  counter.Reset();
  EXPECT_EQ(counter.Count(), 0u);
  EXPECT_EQ(counter.Elapsed(), 0u);
  EXPECT_EQ(LoggedAt(6, [&] { counter.Stop(); }),
            "<ZIRK.info>: void ZIRK::VuPerfCounterImpl::Stop(): not started\n");
}

TEST(PerfCounter, ScopesCount) {
  VuPerfCounter counter;
  { const VuScopedCounter scope(counter); }
  { const VuScopedCounter scope(counter); }
  EXPECT_EQ(counter.Count(), 2u);
}

/// ShowFPS keeps its statistics per thread, so each test has a thread of its own.
template <typename F>
void OnNewThread(F run) {
  std::thread(run).join();
}

TEST(ShowFps, ReportsAtOnceThenOncePerSecond) {
  OnNewThread([] {
    const auto isReport = testing::MatchesRegex(
        "<ZIRK.warning>: Average frame time [0-9]+\\.[0-9][0-9] ms [0-9]+ fps in 1\\.0 secs\n");
    EXPECT_THAT(LoggedAt(4, [] { ShowFPS(); }), isReport);
    EXPECT_EQ(LoggedAt(4,
                       [] {
                         for (int i = 0; i < 9; ++i) ShowFPS();
                       }),
              "");
    Pause(1000);
    const std::string line = LoggedAt(4, [] { ShowFPS(); });
    EXPECT_THAT(line, isReport);
    EXPECT_THAT(line, testing::HasSubstr("Average frame time 10"));
  });
}

TEST(ShowFps, AveragesAndClearsTheDrawingTimes) {
  const support::Tunables restored;
  LogPerf = true;
  OnNewThread([] {
    LoggedAt(4, [] { ShowFPS(); });
    draw_time = 3001;
    swap_time = 9000;
    ShowFPS();
    EXPECT_EQ(draw_time, 3001u);
    Pause(1000);
    const std::string lines = LoggedAt(4, [] { ShowFPS(); });
    EXPECT_THAT(
        lines, testing::HasSubstr("<ZIRK.warning>: Average draw time 1.50 ms swap time 4.50 ms\n"));
    EXPECT_EQ(draw_time, 0u);
    EXPECT_EQ(swap_time, 0u);
  });
}

TEST(ShowFps, ClearsSilently) {
  const support::Tunables restored;
  for (const bool perf : {true, false}) {
    LogPerf = perf;
    draw_time = 1;
    swap_time = 1;
    OnNewThread([] { EXPECT_EQ(LoggedAt(3, [] { ShowFPS(); }), ""); });
    EXPECT_EQ(draw_time, perf ? 0u : 1u);
    EXPECT_EQ(swap_time, perf ? 0u : 1u);
  }
  draw_time = 0;
  swap_time = 0;
}

}  // namespace
}  // namespace ZIRK
