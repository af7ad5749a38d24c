#pragma once

#include "vectortypes.h"

/// The operations of vectors.h that vectors of four pixels have in common, with SSE2 and without.

namespace ZIRK::backends {

namespace {

using Coverage = uint32_t;

ZIRK_INLINE bool IsZero(Coverage c) {
  return c == 0;
}
ZIRK_INLINE bool IsFull(Coverage c) {
  return c == ~Coverage{0};
}

/// Always returns false: testing four pixels gains nothing.
ZIRK_INLINE bool IsOpaque(Pixels) {
  return false;
}

ZIRK_INLINE Pixels Alphas(Pixels p) {
  return BothHalves(p >> 24);
}

ZIRK_INLINE Pixels Weights(Pixels p) {
  return BothHalves((p >> 8) & 0xFF);
}

ZIRK_INLINE Pixels InterpolatePairs(Pixels a, Pixels b, Pixels w) {
  // The product may wrap around, but the sum with `a` is in the range of 16 bits again.
  const Channels product = ((Channels)b - (Channels)a) * (Channels)w;
  return (Pixels)((((Channels)a << 8) + product + 128) >> 8);
}

constexpr int kTwoRows = 0;
constexpr int kTwoEnds = 0;

}  // namespace

}  // namespace ZIRK::backends
