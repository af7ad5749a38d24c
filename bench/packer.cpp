// How long a font's atlas takes to fill: each rectangle is placed among all that went before it.

#include <benchmark/benchmark.h>
#include <zirk/maxrectsbinpack.h>

#include <random>
#include <vector>

namespace ZIRK::bench {

namespace {

constexpr int kSide = 2048;

/// As many sizes as a font with several scripts has glyphs; all fit.
std::vector<BinSize> GlyphSizes() {
  std::mt19937 random(1);
  const auto side = [&random] { return 6 + static_cast<int32_t>(random() % 35); };
  std::vector<BinSize> sizes(2000);
  for (BinSize& size : sizes) size = {side(), side()};
  return sizes;
}

void Pack(benchmark::State& state, int32_t rule, bool rotation) {
  const std::vector<BinSize> sizes = GlyphSizes();
  for (auto _ : state) {
    MaxRectsBinPack packer(kSide, kSide);
    packer.rule = rule;
    packer.allowRotation = rotation;
    for (const BinSize& size : sizes) {
      if (packer.Insert(size.width, size.height).height != 0) continue;
      state.SkipWithError("no room");
      return;
    }
  }
}

bool Enlist(const char* name, int32_t rule, bool rotation) {
  benchmark::RegisterBenchmark(name, [=](benchmark::State& state) {
    Pack(state, rule, rotation);
  })->Unit(benchmark::kMillisecond);
  return true;
}

[[maybe_unused]] const bool kRegistered[] = {
    Enlist("Packer/ShortSide", MaxRectsBinPack::BestShortSideFit, false),
    Enlist("Packer/ShortSideRotated", MaxRectsBinPack::BestShortSideFit, true),
    Enlist("Packer/LongSide", MaxRectsBinPack::BestLongSideFit, false),
    Enlist("Packer/Area", MaxRectsBinPack::BestAreaFit, false),
    Enlist("Packer/BottomLeft", MaxRectsBinPack::BottomLeft, false),
    Enlist("Packer/Contact", MaxRectsBinPack::ContactPoint, false),
};

}  // namespace

}  // namespace ZIRK::bench
