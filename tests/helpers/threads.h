#pragma once

#include <atomic>
#include <thread>

namespace ZIRK::helpers {

/// In each round calls `prepare`, with the round's number, and then `use` on two threads at the
/// same time, with false and with true. Nothing but what `use` calls orders one before the other,
/// so that a missing lock shows whoever comes first.
template <typename F, typename G>
void InRounds(int rounds, F prepare, G use) {
  std::atomic<int> arrived = 0;
  // Neither sleeps, so that both go on at once.
  const auto meet = [&](int times) {
    for (++arrived; arrived < 2 * times;) std::this_thread::yield();
  };
  const auto run = [&](bool isOther) {
    for (int round = 0; round < rounds; ++round) {
      if (!isOther) prepare(round);
      meet(2 * round + 1);
      use(isOther);
      meet(2 * round + 2);
    }
  };
  std::thread other(run, true);
  run(false);
  other.join();
}

}  // namespace ZIRK::helpers
