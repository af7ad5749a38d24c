#include <gmock/gmock.h>
#include <zirk/vuperfcounter.h>

#include <thread>

#include "helpers/calls.h"
#include "helpers/logged.h"

namespace ZIRK {
namespace {

using helpers::LoggedAt;
using namespace std::chrono_literals;

TEST(PerfCounter, CountsEveryInterval) {
  helpers::StoppedClock clock;
  VuPerfCounter counter;
  const auto run = [&] {
    counter.Start();
    clock.Advance(10ms);
    counter.Start();
    clock.Advance(20ms);
    counter.Stop();
    counter.Stop();
  };
  EXPECT_EQ(LoggedAt(6, run),
            "<ZIRK.info>: void ZIRK::VuPerfCounterImpl::Start(): restarting\n"
            "<ZIRK.info>: void ZIRK::VuPerfCounterImpl::Stop(): not started\n");
  EXPECT_EQ(counter.Count(), 2u);
  EXPECT_EQ(counter.Elapsed(), 30000u);
}

TEST(PerfCounter, ResetAlsoStops) {
  VuPerfCounter counter;
  { const VuScopedCounter scope(counter); }
  EXPECT_EQ(counter.Count(), 1u);
  counter.Start();
  counter.Reset();
  EXPECT_EQ(LoggedAt(4, [&] { counter.Stop(); }), "");
  EXPECT_EQ(counter.Count(), 0u);
  EXPECT_EQ(counter.Elapsed(), 0u);
}

// ShowFPS keeps its statistics per thread, so each of these has a thread of its own.

TEST(ShowFps, ReportsAtOnceThenAveragesOncePerSecond) {
  const helpers::Tunables restored;
  helpers::StoppedClock clock;
  LogPerf = true;
  const auto run = [&] {
    EXPECT_THAT(LoggedAt(4, ShowFPS), testing::HasSubstr("fps in 1.0 secs\n"));
    draw_time = 30015;
    swap_time = 90000;
    for (int i = 0; i < 9; ++i) {
      clock.Advance(111'111us);
      EXPECT_EQ(LoggedAt(4, ShowFPS), "");
    }
    clock.Advance(1us);
    EXPECT_EQ(LoggedAt(4, ShowFPS),
              "<ZIRK.warning>: Average frame time 100.00 ms 10 fps in 1.0 secs\n"
              "<ZIRK.warning>: Average draw time 3.00 ms swap time 9.00 ms\n");
  };
  std::thread(run).join();
}

TEST(ShowFps, ClearsTheDrawingTimesSilently) {
  const helpers::Tunables restored;
  for (const bool perf : {true, false}) {
    LogPerf = perf;
    draw_time = swap_time = 1;
    std::thread([] { EXPECT_EQ(LoggedAt(3, ShowFPS), ""); }).join();
    EXPECT_EQ(draw_time, perf ? 0u : 1u);
    EXPECT_EQ(swap_time, perf ? 0u : 1u);
  }
}

}  // namespace
}  // namespace ZIRK
