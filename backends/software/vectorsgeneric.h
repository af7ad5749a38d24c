#pragma once

#include "kernels.h"
#include "vectorfours.h"

/// The operations of vectors.h by the compiler's own vectors, for any processor.

namespace ZIRK::backends {

namespace {

ZIRK_INLINE Channels DivideBy255(Channels t) {
  // 1/256 + 1/65536 is close enough to 1/255 for all products.
  t += 128;
  return (t + (t >> 8)) >> 8;
}

ZIRK_INLINE Pixels AddClamped(Pixels a, Pixels b) {
  // A sum that is less than `a` has wrapped around; the comparison then gives all ones.
  const Bytes sum = (Bytes)a + (Bytes)b;
  return (Pixels)(sum | (Bytes)(sum < (Bytes)a));
}

ZIRK_INLINE bool IsZero(Pixels v) {
  const auto p = (PixelPairs)v;
  return (p[0] | p[1]) == 0;
}
ZIRK_INLINE bool IsTranslucent(Pixels p) {
  return !IsZero(p);
}

ZIRK_INLINE Pixels Spread(Coverage c) {
  return BothHalves(Pixels{c & 255, c >> 8 & 255, c >> 16 & 255, c >> 24});
}

/// Selects a number of pixels that is known at compile time, so that they are cheap to load and
/// store.
template <int kCount>
struct Piece {};

template <int kCount>
ZIRK_INLINE Pixels Load(const uint32_t* p, Piece<kCount>) {
  Pixels v = {};
  __builtin_memcpy(&v, p, kCount * sizeof *p);
  return v;
}
template <int kCount>
ZIRK_INLINE void Store(uint32_t* p, const Pixels& v, Piece<kCount>) {
  __builtin_memcpy(p, &v, kCount * sizeof *p);
}
template <int kCount>
ZIRK_INLINE Coverage LoadCoverage(const uint8_t* p, Piece<kCount>) {
  Coverage c = 0;
  __builtin_memcpy(&c, p, kCount);
  return c;
}

/// Uses pieces that add up to the width.
template <typename F>
ZIRK_INLINE void ForNarrow(const PixelSpan& s, F&& f) {
  for (int y = 0; y < s.height; ++y) {
    if (s.width & 2) f(0, y, Piece<2>());
    if (s.width & 1) f(s.width - 1, y, Piece<1>());
  }
}

ZIRK_INLINE void LoadPairs(const uint32_t* p, Integers at, Pixels& left, Pixels& right) {
  left = Pixels{p[at[0]], p[at[1]], p[at[2]], p[at[3]]};
  right = Pixels{p[at[0] + 1], p[at[1] + 1], p[at[2] + 1], p[at[3] + 1]};
}
ZIRK_INLINE void LoadNearPairs(const uint32_t* p, int32_t, int32_t, Pixels positions, Pixels& left,
                               Pixels& right) {
  LoadPairs(p, WholeParts(positions), left, right);
}

}  // namespace

}  // namespace ZIRK::backends
