#include "operations.h"

#include <benchmark/benchmark.h>

#include <string>

#include "measure.h"

namespace ZIRK::bench {

namespace {

constexpr VuColor kOpaque{0xFF336699};
constexpr VuColor kHalf{0x80CC6633};

/// The least that filling the surface can cost.
void MeasureMemset(benchmark::State& state) {
  std::vector<uint32_t> surface(size_t{kWidth} * kHeight);
  Measure(state, 1, [&] {
    std::memset(surface.data(), 0x99, surface.size() * sizeof surface[0]);
    benchmark::ClobberMemory();
  });
}

/// The least that an upload can cost.
void MeasureMemcpy(benchmark::State& state) {
  const Picture picture = MakePictures()[Opaque64];
  const Batch batch = MakeBatch(200, picture.width, picture.height);
  std::vector<uint32_t> surface(size_t{kWidth} * kHeight);
  const auto width = static_cast<size_t>(picture.width);
  Measure(state, 200, [&] {
    for (const VuRect& r : batch.places)
      for (int y = 0; y < r.height; ++y)
        std::memcpy(&surface[static_cast<size_t>((r.y + y) * kWidth + r.x)],
                    &picture.pixels[static_cast<size_t>(y) * width], width * 4);
    benchmark::ClobberMemory();
  });
}

/// A screen of widgets, one at each place: a translucent panel with a picture, two icons and a line
/// below.
bool DrawFrame(Peer& peer, const Batch& widgets) {
  const auto within = [&](int x, int y, int width, int height) {
    Rects places;
    for (const VuRect& r : widgets.places) places.push_back({r.x + x, r.y + y, width, height});
    return places;
  };
  Rects icons = within(76, 8, 16, 16);
  for (const VuRect& r : within(76, 32, 16, 16)) icons.push_back(r);
  return peer.Fill({{0, 0, kWidth, kHeight}}, kOpaque) && peer.Fill(widgets.places, kHalf) &&
         peer.Blit(within(4, 4, 64, 64), Alpha64) && peer.Blit(icons, Alpha16) &&
         peer.Fill(within(76, 66, 170, 2), kOpaque);
}

/// What an opaque blit of a gradient's size costs.
void MeasureBlit(benchmark::State& state, Peer& peer) {
  const Batch batch = MakeBatch(50, 200, 200);
  Measure(state, 50, [&] { peer.Blit(batch.places, Opaque200); });
}

}  // namespace

const std::vector<Operation> kOperations = {
    {"FillOpaque", 1, kWidth, kHeight,
     [](Peer& p, const Batch& b) { return p.Fill(b.places, kOpaque); }, 1, 0},
    {"FillRect200Half", 50, 200, 200,
     [](Peer& p, const Batch& b) { return p.Fill(b.places, kHalf); }, 1, 2},
    {"FillRect8", 2000, 8, 8, [](Peer& p, const Batch& b) { return p.Fill(b.places, kOpaque); }, 1,
     0},
    {"FillRect8Half", 2000, 8, 8, [](Peer& p, const Batch& b) { return p.Fill(b.places, kHalf); },
     1, 2},
    {"BlitOpaque64", 200, 64, 64,
     [](Peer& p, const Batch& b) { return p.Blit(b.places, Opaque64); }, 1, 0},
    {"BlitAlpha64", 200, 64, 64, [](Peer& p, const Batch& b) { return p.Blit(b.places, Alpha64); },
     1, 2},
    {"BlitAlpha16", 1000, 16, 16, [](Peer& p, const Batch& b) { return p.Blit(b.places, Alpha16); },
     1, 2},
    {"BlitTinted64", 200, 64, 64,
     [](Peer& p, const Batch& b) { return p.BlitTinted(b.places, Alpha64, b.colors); }, 1, 2},
    {"Mask", 50, 200, 200,
     [](Peer& p, const Batch& b) { return p.FillMasked(b.places, kOpaque, Mask200); }, 1, 2},
    {"MaskBlit", 200, 64, 64,
     [](Peer& p, const Batch& b) { return p.BlitMasked(b.places, Alpha64, Mask64); }, 1, 2},
    {"ScaleBilinear", 50, 200, 200,
     [](Peer& p, const Batch& b) { return p.BlitScaled(b.places, Alpha128, true); }, 1, 3},
    {"ScaleTwice", 100, 128, 128,
     [](Peer& p, const Batch& b) { return p.BlitScaled(b.places, Opaque64, false); }, 1, 0},
    {"Rotate128", 50, 180, 180,
     [](Peer& p, const Batch& b) { return p.BlitRotated(b.places, Alpha128, 30); }, 1, 4},
    {"Upload", 200, 64, 64, [](Peer& p, const Batch& b) { return p.Upload(b.places, Alpha64); }, 1,
     0},
    {"UploadOpaque", 200, 64, 64,
     [](Peer& p, const Batch& b) { return p.Upload(b.places, Opaque64); }, 1, 0},
    {"OpaqueOn565", 200, 64, 64,
     [](Peer& p, const Batch& b) { return p.BlitOn565(b.places, Opaque64); }, 1, 0},
    {"AlphaOn565", 200, 64, 64,
     [](Peer& p, const Batch& b) { return p.BlitOn565(b.places, Alpha64); }, 1, 0},
    {"UiFrame", 40, 250, 72, DrawFrame, 1, 2},
    // How finely an edge is divided differs. So few rectangles stay in the processor's cache; 200
    // would measure the memory as much as the drawing.
    {"RoundedRect", 50, 120, 40,
     [](Peer& p, const Batch& b) { return p.FillRounded(b.places, 8, kOpaque); }, 1, 2},
    {"Disc32", 500, 32, 32, [](Peer& p, const Batch& b) { return p.FillDiscs(b.places, kOpaque); },
     1, 2},
    {"Gradient200", 50, 200, 200,
     [](Peer& p, const Batch& b) { return p.FillGradient(b.places, kOpaque, white); }, 1, 2},
    // Each library chooses for itself which pixels make a line.
    {"Line100", 500, 201, 201,
     [](Peer& p, const Batch& b) { return p.DrawLines(b.lines, kOpaque); }, 8, 4},
};

void RegisterOperations(const Peers& peers) {
  for (const Operation& operation : kOperations) {
    const Batch batch = operation.MakeItems();
    for (const std::unique_ptr<Peer>& peer : peers) {
      if (!operation.draw(*peer, batch)) continue;
      const std::string name = std::string(operation.name) + "/" + peer->Name();
      benchmark::RegisterBenchmark(name.c_str(), [&](benchmark::State& state) {
        const Batch items = operation.MakeItems();
        Measure(state, operation.count, [&] { operation.draw(*peer, items); });
      })->Unit(benchmark::kMicrosecond);
    }
  }
  benchmark::RegisterBenchmark("FillOpaque/memset", MeasureMemset)->Unit(benchmark::kMicrosecond);
  benchmark::RegisterBenchmark("Gradient200/blit", [&](benchmark::State& state) {
    MeasureBlit(state, *peers.front());
  })->Unit(benchmark::kMicrosecond);
  for (const char* const name : {"Upload/memcpy", "UploadOpaque/memcpy"})
    benchmark::RegisterBenchmark(name, MeasureMemcpy)->Unit(benchmark::kMicrosecond);
}

}  // namespace ZIRK::bench
