#pragma once

#include <cstdint>

namespace ZIRK::bench {

/// Counts what the processor does for the calling thread between Start() and Stop(), the kernel's
/// work left out. Where the kernel or the machine refuses, as many virtual machines do, it counts
/// nothing.
class Counters {
 public:
  Counters();
  ~Counters();
  Counters(const Counters&) = delete;
  Counters& operator=(const Counters&) = delete;

  bool Works() const { return instructions_ >= 0; }
  void Start();
  void Stop();

  uint64_t Cycles() const { return counted_[0]; }
  uint64_t Instructions() const { return counted_[1]; }

 private:
  int cycles_;  ///< The leader of both; -1 where there is none.
  int instructions_ = -1;
  uint64_t counted_[2] = {};
};

}  // namespace ZIRK::bench
