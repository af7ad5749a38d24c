#include <gtest/gtest.h>
#include <zirk/maxrectsbinpack.h>

#include <algorithm>
#include <climits>
#include <random>
#include <utility>

#include "helpers/logged.h"

namespace ZIRK {
namespace {

using helpers::LoggedAt;
using Found = std::pair<std::pair<int, int>, BinRect>;

/// The algorithm step by step, with each comparison made, in the order in which it is defined.
struct Reference {
  int width, height, rule;
  bool rotate;
  std::vector<BinRect> free{{0, 0, width, height}}, used{};
  static int Right(const BinRect& r) { return r.x + r.width; }
  static int Bottom(const BinRect& r) { return r.y + r.height; }
  static int Common(int a1, int a2, int b1, int b2) {
    return a2 < b1 || b2 < a1 ? 0 : std::min(a2, b2) - std::max(a1, b1);
  }
  int Contact(const BinRect& r) const {
    int score = r.x == 0 || Right(r) == width ? r.height : 0;
    score += r.y == 0 || Bottom(r) == height ? r.width : 0;
    for (const BinRect& u : used) {
      if (u.x == Right(r) || Right(u) == r.x) score += Common(u.y, Bottom(u), r.y, Bottom(r));
      if (u.y == Bottom(r) || Bottom(u) == r.y) score += Common(u.x, Right(u), r.x, Right(r));
    }
    return score;
  }
  Found Find(int a, int b) const {
    Found best{{rule == 4 ? 1 : INT_MAX, INT_MAX}, {}};
    for (const BinRect& f : free)
      for (int turned = 0; turned <= rotate; ++turned) {
        const int w = turned ? b : a, h = turned ? a : b, area = f.width * f.height - w * h;
        if (f.width < w || f.height < h) continue;
        const BinRect r{f.x, f.y, w, h};
        const auto [least, most] = std::minmax({f.width - w, f.height - h});
        const std::pair<int, int> scores[] = {
            {least, most}, {most, least}, {area, least}, {f.y + h, f.x}, {-Contact(r), INT_MAX}};
        if (scores[rule] < best.first) best = {scores[rule], r};
      }
    return best;
  }
  bool Split(const BinRect f, const BinRect& u) {
    if (u.x >= Right(f) || Right(u) <= f.x || u.y >= Bottom(f) || Bottom(u) <= f.y) return false;
    if (u.y > f.y) free.push_back({f.x, f.y, f.width, u.y - f.y});
    if (Bottom(u) < Bottom(f)) free.push_back({f.x, Bottom(u), f.width, Bottom(f) - Bottom(u)});
    if (u.x > f.x) free.push_back({f.x, f.y, u.x - f.x, f.height});
    if (Right(u) < Right(f)) free.push_back({Right(u), f.y, Right(f) - Right(u), f.height});
    return true;
  }
  void Prune() {
    const auto inside = [](const BinRect& a, const BinRect& b) {
      return a.x >= b.x && a.y >= b.y && Right(a) <= Right(b) && Bottom(a) <= Bottom(b);
    };
    for (auto i = free.begin(); i != free.end(); ++i)
      for (auto j = i + 1; j != free.end();)
        j = inside(*i, *j) ? (i = free.erase(i)) + 1 : inside(*j, *i) ? free.erase(j) : j + 1;
  }
  BinRect Insert(int w, int h) {
    const BinRect node = Find(w, h).second;
    if (node.height == 0) return node;
    for (ptrdiff_t i = 0, n = free.end() - free.begin(); i < n;)
      Split(free.begin()[i], node) ? free.erase(free.begin() + i), --n : ++i;
    Prune();
    used.push_back(node);
    return node;
  }
  void Insert(std::vector<BinSize>& sizes) {
    const auto better = [this](const BinSize& a, const BinSize& b) {
      return Find(a.width, a.height).first < Find(b.width, b.height).first;
    };
    while (!sizes.empty()) {
      const auto best = std::min_element(sizes.begin(), sizes.end(), better);
      if (Insert(best->width, best->height).height == 0) return;
      sizes.erase(best);
    }
  }
  void Resize(int w, int h) {
    if (h > height) free.push_back({0, height, w, h - height}), height = h;
    if (w > width) free.push_back({width, 0, w - width, height}), width = w;
    Prune();
  }
};

TEST(MaxRectsBinPack, PlacesAsDefined) {
  std::mt19937 random(1);
  const auto from = [&](int least, unsigned n) { return least + static_cast<int>(random() % n); };
  for (int run = 0; run < 500; ++run) {
    Reference expected{from(-5, 70), from(-5, 70), run % 5, run % 10 > 4};
    MaxRectsBinPack packer(expected.width, expected.height);
    packer.rule = expected.rule;
    packer.allowRotation = expected.rotate;
    for (int step = 0; step < 150; ++step) {
      const int least = run % 7 ? 1 : -3, w = from(least, 20), h = from(least, 20);
      if (step % 50 == 20) {
        std::vector<BinSize> sizes{{9, 9}, {w * w + 1, 5}, {5, h * h + 1}, {2, 9}}, left = sizes;
        std::vector<BinRect> dst(3);
        packer.Insert(sizes, dst);
        expected.Insert(left);
        ASSERT_EQ(sizes.size() + dst.size(), left.size());
      } else if (step % 50 == 40) {
        packer.Resize(expected.width + w - 5, expected.height + h - 5);
        expected.Resize(expected.width + w - 5, expected.height + h - 5);
      } else {
        ASSERT_EQ(packer.Insert(w, h), expected.Insert(w, h)) << run << ' ' << step;
      }
    }
    ASSERT_EQ(packer.freeRects, expected.free) << run;
    ASSERT_EQ(packer.usedRects, expected.used) << run;
  }
}

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
}

}  // namespace
}  // namespace ZIRK
