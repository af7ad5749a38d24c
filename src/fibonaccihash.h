#pragma once

#include <cstddef>
#include <cstdint>

namespace ZIRK {

/// A place in a table of 2^`bits` slots, `bits` from 1 to 64. Keys that follow each other are
/// spread over the whole table.
///
/// Fibonacci hashing: the key is multiplied by 2^64 divided by the golden ratio, and the highest
/// bits are taken. See D. E. Knuth, The Art of Computer Programming, vol. 3, section 6.4.
constexpr size_t FibonacciHash(uint64_t key, int bits) {
  return static_cast<size_t>(key * 0x9E3779B97F4A7C15u >> (64 - bits));
}

}  // namespace ZIRK
