#pragma once

#include "vectortypes.h"

/// Arithmetic on vectors of pixels, on top of what each instruction set does in its own way:
///
///   DivideBy255(t)       Each 16-bit lane, a product of two channels, divided and rounded.
///   AddClamped(a, b)     Sums of bytes, 255 at most.
///   Alphas(p)            Each pixel's alpha, in both its 16-bit halves.
///   IsZero(v)            Whether all of the vector is, or all coverage.
///   Coverage             As many bytes as a vector has pixels.
///   Spread(c)            Each byte of coverage, in both 16-bit halves of its pixel.
///
///   ForNarrow(span, f)   Calls f(x, y, pixels) for all of a span narrower than a vector.
///   Load(p, pixels), Store(p, v, pixels), LoadCoverage(p, pixels)
///                        `pixels` says which pixels a vector holds: Full, or else what `f` is
///                        called with.
///   kTwoRows             Up to this width ForTwoRows() takes two rows of coverage at a time, as
///                        glyphs often allow. 0 where there is no ForTwoRows().
///   ForTwoRows(span, f)  ForNarrow() for such a span, without source pixels.
///
///   Gather(p, at)        The pixels at some offsets.
///   LoadPairs(p, at, left, right)
///                        Those, and the ones to their right.
///   LoadNearPairs(p, at, left, right)
///                        The same where the first and the last offset are the least and the
///                        greatest, or the other way round, and less than a vector's width apart.
///                        As many pixels may be read from the least one on as a vector has, and
///                        one more.
#if defined(ZIRK_PORTABLE_KERNELS)
#include "vectorsgeneric.h"
#elif defined(__AVX512BW__)
#include "vectorsavx512.h"
#elif defined(__AVX2__)
#include "vectorsavx2.h"
#elif defined(__SSE2__)
#include "vectorssse2.h"
#else
#include "vectorsgeneric.h"
#endif

namespace ZIRK::backends {

namespace {

/// The low bytes of both 16-bit halves. `v ^ kLow` is 255 - v for each byte there.
constexpr uint32_t kLow = 0x00FF00FFu;

/// Red and blue, with 16 bits for either, so that products fit; or alpha and green.
ZIRK_INLINE Pixels LowPair(Pixels p) {
  return p & kLow;
}
ZIRK_INLINE Pixels HighPair(Pixels p) {
  return (Pixels)((Channels)p >> 8);
}
ZIRK_INLINE Pixels JoinPairs(Pixels low, Pixels high) {
  return low | (Pixels)((Channels)high << 8);
}

/// Both channels of each pair of `a` times those of `b`, divided by 255.
ZIRK_INLINE Pixels MultiplyPairs(Pixels a, Pixels b) {
  return (Pixels)DivideBy255((Channels)a * (Channels)b);
}

/// Both channels of each pair: a * u + b * v, divided by 255.
ZIRK_INLINE Pixels MixPairs(Pixels a, Pixels u, Pixels b, Pixels v) {
  return (Pixels)DivideBy255((Channels)a * (Channels)u + (Channels)b * (Channels)v);
}

/// Each channel of `p` times the 0 to 255 in `factor`, which has it in both 16-bit halves.
ZIRK_INLINE Pixels Scale(Pixels p, Pixels factor) {
  return JoinPairs(MultiplyPairs(LowPair(p), factor), MultiplyPairs(HighPair(p), factor));
}

/// Each channel of `p` times the same channel of `q`.
ZIRK_INLINE Pixels Multiply(Pixels p, Pixels q) {
  return JoinPairs(MultiplyPairs(LowPair(p), LowPair(q)), MultiplyPairs(HighPair(p), HighPair(q)));
}

ZIRK_INLINE Pixels BlendOver(Pixels s, Pixels d) {
  return AddClamped(s, Scale(d, Alphas(s) ^ kLow));
}

ZIRK_INLINE Coverage LoadCoverage(const uint8_t* p, Full) {
  Coverage c;
  __builtin_memcpy(&c, p, sizeof c);
  return c;
}

/// Of `n` pixels, the others 0; one of many vectors that are full.
ZIRK_INLINE Pixels LoadUpTo(const uint32_t* p, int n) {
  if (n >= kLanes) return Load(p, Full());
  uint32_t pixels[kLanes] = {};
  for (int i = 0; i < n; ++i) pixels[i] = p[i];
  return Load(pixels, Full());
}
ZIRK_INLINE void StoreUpTo(uint32_t* p, const Pixels& v, int n) {
  if (n >= kLanes) return Store(p, v, Full());
  uint32_t pixels[kLanes];
  Store(pixels, v, Full());
  for (int i = 0; i < n; ++i) p[i] = pixels[i];
}

}  // namespace

}  // namespace ZIRK::backends
