#pragma once

#include <atomic>
#include <thread>

namespace ZIRK::helpers {

/// Calls both again and again, each on a thread of its own, until both have been called often. The
/// counters order nothing between the threads, so that only what is called does.
template <typename F, typename G>
void Meanwhile(F first, G second) {
  constexpr int kOften = 30;
  std::atomic<int> firstCalls = 0, secondCalls = 0;
  const auto repeat = [](auto call, std::atomic<int>& own, const std::atomic<int>& others) {
    while (own.load(std::memory_order_relaxed) < kOften ||
           others.load(std::memory_order_relaxed) < kOften) {
      call();
      own.fetch_add(1, std::memory_order_relaxed);
    }
  };
  std::thread other([&] { repeat(first, firstCalls, secondCalls); });
  repeat(second, secondCalls, firstCalls);
  other.join();
}

/// In each round calls `prepare`, with the round's number, and then `use` on two threads at the
/// same time, with false and with true.
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
