#include "surface/memorybudget.h"
#include "helpers/logged.h"

namespace ZIRK::tests {
namespace {

using backends::MemoryBudget;
using helpers::LogsOneError;

TEST(MemoryBudget, ReservesUpToItsLimitAndTakesBack) {
  const auto budget = MemoryBudget::Create(992);
  auto first = budget->Reserve(8, 20, VuPixelFormat::ARGB8888);  // 640 bytes.
  EXPECT_TRUE(LogsOneError("384 bytes requested, 352 left",
                           [&] { EXPECT_FALSE(budget->Reserve(8, 12, VuPixelFormat::ARGB8888)); }));
  EXPECT_TRUE(first->Resize(8, 31, VuPixelFormat::ARGB8888));
  EXPECT_EQ(budget->Available(), 0u);
  EXPECT_TRUE(LogsOneError("1024 bytes requested, 992 left",
                           [&] { EXPECT_FALSE(first->Resize(8, 32, VuPixelFormat::ARGB8888)); }));
  EXPECT_TRUE(first->Resize(16, 20, VuPixelFormat::RGB565));
  const auto second = budget->Reserve(17, 11, VuPixelFormat::A8);  // Eleven rows of 32.
  EXPECT_EQ(budget->Available(), 0u);
  first.reset();
  EXPECT_EQ(budget->Available(), 640u);
  // A larger limit is cut to 32 bits.
  const auto large = MemoryBudget::Create(uint64_t{5} << 32);
  const auto third = large->Reserve(8, 20, VuPixelFormat::ARGB8888);
  EXPECT_EQ(large->Available(), 0xFFFFFFFFu - 640);
}

TEST(MemoryBudget, RefusesWhatNoSurfaceCanBe) {
  const struct {
    int width, height, format;
  } cases[] = {{0, 1, 0}, {1, -1, 0}, {16385, 1, 0}, {1, 1, 6}};
  for (const auto& c : cases)
    EXPECT_TRUE(LogsOneError("cannot create a surface of " + std::to_string(c.width), [&] {
      const auto format = static_cast<VuPixelFormat>(c.format);
      EXPECT_FALSE(MemoryBudget::Create()->Reserve(c.width, c.height, format));
    }));
}

}  // namespace
}  // namespace ZIRK::tests
