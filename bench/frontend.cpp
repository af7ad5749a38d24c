// What the front end adds to a drawing operation: the same operation of a surface that does
// nothing, called through its VuBitmap and called directly. Neither may allocate.

#include <benchmark/benchmark.h>
#include <zirk/impl/vubitmapimpl.h>
#include <zirk/vubitmap.h>

#include <string>

#include "idlesurface.h"
#include "support/allocations.h"

namespace ZIRK::bench {

namespace {

using Vector = VuTVector2D<float>;
using Matrix = VuTMatrix2D<float>;

/// A surface and its picture, each with its handle.
struct Pair {
  VuBitmapImpl* surface = MakeIdleSurface();
  VuBitmapImpl* picture = MakeIdleSurface();
  VuBitmap handle{surface};
  VuBitmap pictureHandle{picture};
};

template <typename Draw>
void Measure(benchmark::State& state, Draw draw) {
  Pair pair;
  const int before = support::Allocations();
  for (auto _ : state) draw(pair);
  if (support::Allocations() != before) state.SkipWithError("memory was allocated");
}

constexpr VuColor kColor{0xFF336699};
constexpr VuRect kRect{10, 20, 64, 64};
constexpr VuRect kPart{0, 0, 64, 64};
constexpr VuTransform kTransform(1, 2, 3, 4, 5);

template <typename Through, typename Direct>
bool Compare(const std::string& name, Through through, Direct direct) {
  const auto enlist = [&name](const char* way, auto draw) {
    benchmark::RegisterBenchmark(("FrontEnd" + name + "/" + way).c_str(),
                                 [draw](benchmark::State& state) { Measure(state, draw); });
  };
  enlist("VuBitmap", through);
  enlist("direct", direct);
  return true;
}

const Matrix kMatrix(kTransform);

[[maybe_unused]] const bool kRegistered[] = {
    Compare(
        "DrawRect", [](Pair& p) { p.handle.DrawRect(kRect, kColor); },
        [](Pair& p) { p.surface->DrawRect(kRect, kColor, VuTransform(), nullptr, nullptr); }),
    Compare(
        "DrawRectMatrix", [](Pair& p) { p.handle.DrawRect(kRect, kColor, kMatrix); },
        [](Pair& p) { p.surface->DrawRect(kRect, kColor, kMatrix, nullptr, nullptr); }),
    Compare(
        "DrawPoint",
        [](Pair& p) {
          p.handle.DrawPoint({1, 2}, 3, kColor);
        },
        [](Pair& p) {
          p.surface->DrawPoint({1, 2}, 3, kColor, VuTransform(), nullptr, Vector());
        }),
    Compare(
        "DrawLine",
        [](Pair& p) {
          p.handle.DrawLine({1, 2}, {3, 4}, kColor);
        },
        [](Pair& p) {
          p.surface->DrawLine({1, 2}, {3, 4}, kColor, VuTransform(), nullptr, nullptr);
        }),
    Compare(
        "DrawObject",
        [](Pair& p) { p.handle.DrawObject(kRect, p.pictureHandle, kPart, kTransform, kColor); },
        [](Pair& p) {
          p.surface->DrawObject(kRect, p.picture, kPart, kTransform, kColor, nullptr, nullptr);
        }),
    Compare(
        "DrawObjectMatrix",
        [](Pair& p) { p.handle.DrawObject(kRect, p.pictureHandle, kPart, kMatrix, kColor); },
        [](Pair& p) {
          p.surface->DrawObject(kRect, p.picture, kPart, kMatrix, kColor, nullptr, nullptr);
        }),
};

}  // namespace

}  // namespace ZIRK::bench
