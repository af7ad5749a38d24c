#include "surface/surfaceledger.h"
#include "helpers/logged.h"

#include <sstream>
#include <thread>

namespace ZIRK::tests {
namespace {

using backends::SurfaceLedger;
using helpers::LogsOneError;

TEST(SurfaceLedger, GrantsUpToItsLimitAndTakesBack) {
  const auto ledger = SurfaceLedger::Create(992);
  auto first = ledger->Enter(8, 20, VuPixelFormat::ARGB8888);  // 640 bytes.
  EXPECT_TRUE(LogsOneError("384 bytes asked, 352 left",
                           [&] { EXPECT_FALSE(ledger->Enter(8, 12, VuPixelFormat::ARGB8888)); }));
  EXPECT_TRUE(LogsOneError("no memory for a.png: 8 x 12 pixels, 352 bytes left", [&] {
    EXPECT_FALSE(ledger->Enter(8, 12, VuPixelFormat::ARGB8888, "a.png"));
  }));
  EXPECT_TRUE(first->Change(8, 31, VuPixelFormat::ARGB8888));
  EXPECT_EQ(ledger->Available(), 0u);
  EXPECT_TRUE(LogsOneError("1024 bytes asked, 992 left",
                           [&] { EXPECT_FALSE(first->Change(8, 32, VuPixelFormat::ARGB8888)); }));
  EXPECT_TRUE(first->Change(16, 20, VuPixelFormat::RGB565));
  const auto second = ledger->Enter(17, 11, VuPixelFormat::A8);  // Eleven rows of 32.
  EXPECT_EQ(ledger->Available(), 0u);
  first.reset();
  EXPECT_EQ(ledger->Available(), 640u);
  // A limit beyond 32 bits is cut to them.
  const auto large = SurfaceLedger::Create(uint64_t{5} << 32);
  const auto third = large->Enter(8, 20, VuPixelFormat::ARGB8888);
  EXPECT_EQ(large->Available(), 0xFFFFFFFFu - 640);
}

TEST(SurfaceLedger, RefusesWhatNoSurfaceCanBe) {
  const struct {
    int width, height, format;
  } cases[] = {{0, 1, 0}, {1, -1, 0}, {16385, 1, 0}, {1, 1, 6}};
  for (const auto& c : cases)
    EXPECT_TRUE(LogsOneError("cannot create a surface of " + std::to_string(c.width), [&] {
      const auto format = static_cast<VuPixelFormat>(c.format);
      EXPECT_FALSE(SurfaceLedger::Create()->Enter(c.width, c.height, format));
    }));
}

TEST(SurfaceLedger, KeepsItsBooksAcrossThreads) {
  const auto ledger = SurfaceLedger::Create();
  const auto before = ledger->Available();
  const auto use = [&] {
    for (int i = 1; i <= 200; ++i) {
      const auto entry = ledger->Enter(i, i, VuPixelFormat::ARGB8888);
      entry->Rename("busy");
      std::ostringstream list;
      ledger->Print(0, list);
    }
  };
  std::thread first(use), second(use);
  first.join();
  second.join();
  EXPECT_EQ(ledger->Available(), before);
}

}  // namespace
}  // namespace ZIRK::tests
