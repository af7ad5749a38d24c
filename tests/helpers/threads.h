#pragma once

#include <atomic>
#include <chrono>
#include <thread>

namespace ZIRK::helpers {

/// In each round calls `prepare`, with the round's number, and then `use` on two threads at the
/// same time, with false and with true. Nothing but what `use` calls orders one before the other,
/// so a missing lock shows in any order.
template <typename F, typename G>
void InRounds(int rounds, F prepare, G use) {
  // Two counters, since a single one would order the calls between its increments.
  std::atomic<int> ready = 0, done = 0;
  // Without sleeping, so that both go on at once.
  const auto meet = [](std::atomic<int>& arrived, int round) {
    for (++arrived; arrived < 2 * round + 2;) std::this_thread::yield();
  };
  const auto run = [&](bool isOther) {
    for (int round = 0; round < rounds; ++round) {
      if (!isOther) prepare(round);
      meet(ready, round);
      // Some faults show only if one of the two comes first.
      if (round % 3 == 1 + isOther) std::this_thread::sleep_for(std::chrono::microseconds(200));
      use(isOther);
      meet(done, round);
    }
  };
  std::thread other(run, true);
  run(false);
  other.join();
}

}  // namespace ZIRK::helpers
