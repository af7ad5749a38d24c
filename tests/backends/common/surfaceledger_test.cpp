#include "common/surfaceledger.h"

#include <gtest/gtest.h>

#include <sstream>
#include <thread>
#include <vector>

#include "backends/common/oneerror.h"
#include "common/surfaceformat.h"

namespace ZIRK::tests {
namespace {

using backends::kMaxSide;
using backends::SurfaceLedger;

TEST(SurfaceLedger, GrantsUpToItsLimitAndTakesBack) {
  const auto ledger = SurfaceLedger::Create(1000);
  auto first = ledger->Enter(8, 20, VuPixelFormat::ARGB8888);  // 640 bytes.
  ASSERT_TRUE(first);
  EXPECT_EQ(ledger->Available(), 360u);
  EXPECT_TRUE(LogsOneError("384 bytes asked, 360 left",
                           [&] { EXPECT_FALSE(ledger->Enter(8, 12, VuPixelFormat::ARGB8888)); }));
  const auto exact = ledger->Enter(16, 22, VuPixelFormat::A8);
  ASSERT_TRUE(exact);
  EXPECT_EQ(ledger->Available(), 8u);
  first.reset();
  EXPECT_EQ(ledger->Available(), 648u);
  EXPECT_EQ(ledger->Total(), 1000u);
}

TEST(SurfaceLedger, RefusesWhatNoSurfaceCanBe) {
  struct {
    int width, height, format;
    const char* message;
  } const cases[] = {{0, 1, 0, "0 x 1 in format 0"},
                     {1, -1, 0, "1 x -1 in format 0"},
                     {kMaxSide + 1, 1, 0, "16385 x 1 in format 0"},
                     {1, 1, 6, "1 x 1 in format 6"},
                     {1, 1, -1, "1 x 1 in format -1"}};
  const auto ledger = SurfaceLedger::Create();
  for (const auto& c : cases) {
    EXPECT_TRUE(LogsOneError(c.message, [&] {
      EXPECT_FALSE(ledger->Enter(c.width, c.height, static_cast<VuPixelFormat>(c.format)));
    }));
  }
}

TEST(SurfaceLedger, CutsFiguresToThirtyTwoBits) {
  const auto ledger = SurfaceLedger::Create(uint64_t{5} << 32);
  EXPECT_EQ(ledger->Available(), 0xFFFFFFFFu);
  EXPECT_EQ(ledger->Total(), 0xFFFFFFFFu);
}

TEST(SurfaceLedger, ListsSurfacesByName) {
  const auto ledger = SurfaceLedger::Create();
  const auto named = ledger->Enter(3, 4, VuPixelFormat::RGB565);
  named->Rename("panel");
  const auto nameless = ledger->Enter(5, 6, VuPixelFormat::A8);
  nameless->Rename(nullptr);
  std::ostringstream plain, masked;
  ledger->Print(0, plain);
  ledger->Print(0x5A5A, masked);
  EXPECT_NE(plain.str().find("\"panel\" 3x4 format 2 64 bytes\n"), std::string::npos)
      << plain.str();
  EXPECT_NE(plain.str().find("\"\" 5x6 format 5 96 bytes\n"), std::string::npos) << plain.str();
  EXPECT_NE(plain.str(), masked.str());
}

TEST(SurfaceLedger, OutlivesItsContextInItsEntries) {
  auto ledger = SurfaceLedger::Create();
  const auto entry = ledger->Enter(1, 1, VuPixelFormat::A8);
  ledger.reset();
  entry->Rename("late");
}

TEST(SurfaceLedger, KeepsItsBooksAcrossThreads) {
  const auto ledger = SurfaceLedger::Create();
  const unsigned before = ledger->Available();
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&ledger, t] {
      for (int i = 0; i < 200; ++i) {
        const auto entry = ledger->Enter(1 + i, 1 + t, VuPixelFormat::ARGB8888);
        entry->Rename("busy");
        std::ostringstream list;
        ledger->Print(0, list);
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(ledger->Available(), before);
}

}  // namespace
}  // namespace ZIRK::tests
