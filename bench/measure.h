#pragma once

#include <benchmark/benchmark.h>

#include "counters.h"
#include "support/allocations.h"

namespace ZIRK::bench {

inline Counters& SharedCounters() {
  static Counters counters;
  return counters;
}

/// Measures `work`, which does `items` of them: time, allocations, and cycles and instructions
/// where they can be counted.
template <typename Work>
void Measure(benchmark::State& state, int items, Work work) {
  Counters& counters = SharedCounters();
  work();
  const int before = support::Allocations();
  counters.Start();
  for (auto _ : state) work();
  counters.Stop();
  const int after = support::Allocations();
  state.SetItemsProcessed(state.iterations() * items);
  const auto set = [&](const char* name, double total) {
    state.counters[name] = benchmark::Counter(total / items, benchmark::Counter::kAvgIterations);
  };
  set("allocations", after - before);
  if (!counters.Works()) return;
  set("cycles", static_cast<double>(counters.Cycles()));
  set("instructions", static_cast<double>(counters.Instructions()));
}

}  // namespace ZIRK::bench
