#pragma once

#include <cstddef>
#include <cstdint>

#include "inlining.h"

/// Vectors of pixels, and the operations that are the same for every instruction set.
///
/// This header and those that include it are compiled once per instruction set. The unnamed
/// namespaces keep the results apart.

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "vectors are taken apart as bytes");

namespace ZIRK::backends {

namespace {

/// The number of pixels in a vector, which fills a register.
#if defined(ZIRK_PORTABLE_KERNELS)
constexpr int kLanes = 4;
#elif defined(__AVX512BW__)
constexpr int kLanes = 16;
#elif defined(__AVX2__)
constexpr int kLanes = 8;
#else
constexpr int kLanes = 4;
#endif

using Pixels = uint32_t __attribute__((vector_size(4 * kLanes)));
using Integers = int32_t __attribute__((vector_size(4 * kLanes)));
/// Two channels of each pixel, red and blue or alpha and green, with 16 bits each.
using Channels = uint16_t __attribute__((vector_size(4 * kLanes)));
using Bytes = uint8_t __attribute__((vector_size(4 * kLanes)));
/// Pairs of adjacent pixels.
using PixelPairs = uint64_t __attribute__((vector_size(4 * kLanes)));

/// Selects all pixels of a vector; other types select some.
struct Full {};

ZIRK_INLINE Pixels Load(const uint32_t* p, Full) {
  Pixels v;
  __builtin_memcpy(&v, p, sizeof v);
  return v;
}
ZIRK_INLINE void Store(uint32_t* p, const Pixels& v, Full) {
  __builtin_memcpy(p, &v, sizeof v);
}

ZIRK_INLINE Pixels Splat(uint32_t c) {
  return Pixels{} + c;
}

/// Returns 0, 1, 2 and so on.
ZIRK_INLINE Pixels Indices() {
  Pixels index;
  for (uint32_t i = 0; i < kLanes; ++i) index[i] = i;
  return index;
}

/// Copies the low 16 bits of each lane to its high bits, which must be 0.
ZIRK_INLINE Pixels BothHalves(Pixels v) {
  return v | (v << 16);
}

/// Returns the whole parts of positions in 16.16 fixed point.
ZIRK_INLINE Integers WholeParts(Pixels positions) {
  return (Integers)positions >> 16;
}

}  // namespace

}  // namespace ZIRK::backends
