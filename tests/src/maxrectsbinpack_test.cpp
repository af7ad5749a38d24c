#include <gtest/gtest.h>
#include <zirk/maxrectsbinpack.h>

#include <climits>
#include <cstdint>
#include <random>
#include <utility>
#include <vector>

#include "helpers/logged.h"
#include "helpers/rows.h"

namespace ZIRK {
namespace {

using helpers::LoggedAt;
/// A sum over all places, recorded when each step had been compared with the definition of the
/// algorithm.
struct Record {
  const char* name;
  int rule;
  bool rotate;
  uint32_t sum;
};
class Placement : public helpers::Rows<Record> {};

struct Sum {
  uint32_t sum = 0;

  void Add(const std::vector<BinRect>& rects) {
    for (const BinRect& r : rects)
      for (const int part : {r.x, r.y, r.width, r.height})
        sum = (sum ^ static_cast<uint32_t>(part)) * 16777619;
  }
};

TEST_P(Placement, IsAsOnRecord) {
  std::mt19937 random(1);
  const auto from = [&](int least, unsigned n) { return least + static_cast<int>(random() % n); };
  Sum placed;
  for (int run = 0; run < 50; ++run) {
    const int height = from(-5, 70), width = from(-5, 70);
    MaxRectsBinPack packer(width, height);
    packer.rule = GetParam().rule;
    packer.allowRotation = GetParam().rotate;
    for (int step = 0; step < 150; ++step) {
      const int least = run % 7 ? 1 : -3, w = from(least, 20), h = from(least, 20);
      if (step % 50 == 20) {
        std::vector<BinSize> sizes{{9, 9}, {w * w + 1, 5}, {5, h * h + 1}, {2, 9}};
        std::vector<BinRect> dst(3);
        packer.Insert(sizes, dst);
        placed.Add({{0, 0, int(sizes.size()), int(dst.size())}});
      } else if (step % 50 == 40) {
        packer.Resize(packer.binWidth + w - 5, packer.binHeight + h - 5);
      } else {
        placed.Add({packer.Insert(w, h)});
      }
    }
    placed.Add(packer.freeRects);
    placed.Add(packer.usedRects);
  }
  EXPECT_EQ(placed.sum, GetParam().sum);
}

ROWS(Placement,  //
     {.name = "short_side", .rule = 0, .rotate = false, .sum = 0xC2357A28},
     {.name = "long_side", .rule = 1, .rotate = false, .sum = 0xFE6B8FB5},
     {.name = "area", .rule = 2, .rotate = false, .sum = 0x8DD0D679},
     {.name = "bottom_left", .rule = 3, .rotate = false, .sum = 0x83C1C273},
     {.name = "contact", .rule = 4, .rotate = false, .sum = 0x1CFA1E9B},
     {.name = "short_side_turned", .rule = 0, .rotate = true, .sum = 0x0813ABEB},
     {.name = "long_side_turned", .rule = 1, .rotate = true, .sum = 0x11F46E04},
     {.name = "area_turned", .rule = 2, .rotate = true, .sum = 0x3CAAE41E},
     {.name = "bottom_left_turned", .rule = 3, .rotate = true, .sum = 0xA7E1E4CC},
     {.name = "contact_turned", .rule = 4, .rotate = true, .sum = 0x709A0BB4});

TEST(MaxRectsBinPack, RulesAndSizesAtTheLimits) {
  const int top = INT_MAX;
  const int cases[][4] = {{9, 5, 9, 0}, {9, -1, 9, 0}, {50000, 2, 700, 700}, {top, 4, top, top}};
  for (const auto& [bin, rule, side, placed] : cases) {
    MaxRectsBinPack packer(bin, bin);
    packer.rule = rule;
    EXPECT_EQ(packer.Insert(side, side), (BinRect{0, 0, placed, placed})) << rule;
  }
}

TEST(MaxRectsBinPack, GrowsAndLogs) {
  MaxRectsBinPack packer(-5, 100);
  EXPECT_EQ(packer.GetUsedSize(), std::pair(0, 0));
  EXPECT_EQ(LoggedAt(7, [&] { packer.Resize(INT_MAX, 9); }),
            "<ZIRK.debug>: Resize: resizing from -5x100 to 2147483647x9\n");
  EXPECT_EQ(LoggedAt(7, [&] { packer.Insert(8, 50); }), "<ZIRK.debug>: Insert: -5,0 8x50\n");
  EXPECT_EQ(packer.GetUsedSize(), std::pair(3, 50));
  packer.usedRects = {{4, 0, 3, 2}, {0, 0, 4, 50}, {0, 0, 1, 1}};
  EXPECT_EQ(packer.GetUsedSize(), std::pair(7, 50));
}

}  // namespace
}  // namespace ZIRK
