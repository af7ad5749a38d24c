#include "operations.h"

#include <benchmark/benchmark.h>

#include <string>

#include "support/allocations.h"

namespace ZIRK::bench {

namespace {

constexpr VuColor kOpaque{0xFF336699};
constexpr VuColor kHalf{0x80CC6633};

void MeasureOperation(benchmark::State& state, Peer& peer, const Operation& operation) {
  const Batch batch = operation.MakeItems();
  operation.draw(peer, batch);
  const int before = support::Allocations();
  for (auto _ : state) operation.draw(peer, batch);
  const int after = support::Allocations();
  state.SetItemsProcessed(state.iterations() * operation.count);
  state.counters["allocations"] = benchmark::Counter(
      static_cast<double>(after - before) / operation.count, benchmark::Counter::kAvgIterations);
}

/// The least that filling the surface can cost.
void MeasureMemset(benchmark::State& state) {
  std::vector<uint32_t> surface(size_t{kWidth} * kHeight);
  for (auto _ : state) {
    std::memset(surface.data(), 0x99, surface.size() * sizeof surface[0]);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations());
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
     [](Peer& p, const Batch& b) { return p.BlitScaled(b.places, Alpha128); }, 1, 3},
    {"Rotate128", 50, 180, 180,
     [](Peer& p, const Batch& b) { return p.BlitRotated(b.places, Alpha128, 30); }, 1, 4},
    // Which pixels a line consists of is everybody's own choice.
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
        MeasureOperation(state, *peer, operation);
      })->Unit(benchmark::kMicrosecond);
    }
  }
  benchmark::RegisterBenchmark("FillOpaque/memset", MeasureMemset)->Unit(benchmark::kMicrosecond);
}

}  // namespace ZIRK::bench
