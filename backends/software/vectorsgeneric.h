#pragma once

#include "vectortypes.h"

/// The operations of vectors.h by what the compiler makes of vectors: SSE2, NEON, or plain C++.

namespace ZIRK::backends {

namespace {

ZIRK_INLINE Channels DivideBy255(Channels t) {
  // 1/256 + 1/65536: near enough to 1/255 for all products.
  t += 128;
  return (t + (t >> 8)) >> 8;
}

ZIRK_INLINE Pixels AddClamped(Pixels a, Pixels b) {
  // A sum that is less than what was added to has wrapped around; the comparison gives all ones.
  const Bytes sum = (Bytes)a + (Bytes)b;
  return (Pixels)(sum | (Bytes)(sum < (Bytes)a));
}

ZIRK_INLINE Pixels Alphas(Pixels p) {
  return BothHalves(p >> 24);
}

ZIRK_INLINE bool IsZero(Pixels v) {
  const auto p = (PixelPairs)v;
  return (p[0] | p[1] | p[2] | p[3]) == 0;
}

ZIRK_INLINE Pixels Spread(Coverage c) {
  using Words = uint16_t __attribute__((vector_size(16)));
  using Half = uint8_t __attribute__((vector_size(16)));
  Half b = {};
  __builtin_memcpy(&b, &c, sizeof c);
  // Bytes and zeros by turns are words; each of them twice is a pixel.
  const auto w = (Words)__builtin_shufflevector(b, Half{}, 0, 16, 1, 16, 2, 16, 3, 16, 4, 16, 5, 16,
                                                6, 16, 7, 16);
  const Words halves[] = {__builtin_shufflevector(w, w, 0, 0, 1, 1, 2, 2, 3, 3),
                          __builtin_shufflevector(w, w, 4, 4, 5, 5, 6, 6, 7, 7)};
  Pixels v;
  __builtin_memcpy(&v, halves, sizeof v);
  return v;
}

struct Tail {
  int count;

  ZIRK_INLINE explicit Tail(int n) : count(n) {}
};

ZIRK_INLINE Pixels Load(const uint32_t* p, const Tail& rest) {
  Pixels v = {};
  for (int i = 0; i < rest.count; ++i) v[i] = p[i];
  return v;
}
ZIRK_INLINE void Store(uint32_t* p, const Pixels& v, const Tail& rest) {
  for (int i = 0; i < rest.count; ++i) p[i] = v[i];
}

/// A number of pixels that is known beforehand, which makes them cheap to load and store.
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
ZIRK_INLINE Pixels LoadCoverage(const uint8_t* p, Piece<kCount>) {
  Coverage c = {};
  __builtin_memcpy(&c, p, kCount);
  return Spread(c);
}

/// In pieces that add up to it.
template <typename F>
ZIRK_INLINE void ForTail(int x, int y, const Tail& rest, F&& f) {
  if (rest.count & 4) {
    f(x, y, Piece<4>());
    x += 4;
  }
  if (rest.count & 2) {
    f(x, y, Piece<2>());
    x += 2;
  }
  if (rest.count & 1) f(x, y, Piece<1>());
}

constexpr int kNarrow = 0;

ZIRK_INLINE Pixels Gather(const uint32_t* p, Integers at) {
  Pixels v = {};
  for (int i = 0; i < kLanes; ++i) v[i] = p[at[i]];
  return v;
}

ZIRK_INLINE void Separate(const Pixels& a, const Pixels& b, Pixels& even, Pixels& odd) {
  even = __builtin_shufflevector(a, b, 0, 2, 4, 6, 8, 10, 12, 14);
  odd = __builtin_shufflevector(a, b, 1, 3, 5, 7, 9, 11, 13, 15);
}

ZIRK_INLINE void GatherPairs(const uint32_t* p, Integers at, PixelPairs& low, PixelPairs& high) {
  for (int i = 0; i < kLanes / 2; ++i) {
    uint64_t pair;
    __builtin_memcpy(&pair, p + at[i], sizeof pair);
    low[i] = pair;
    __builtin_memcpy(&pair, p + at[i + kLanes / 2], sizeof pair);
    high[i] = pair;
  }
}

}  // namespace

}  // namespace ZIRK::backends
