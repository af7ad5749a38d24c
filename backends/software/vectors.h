#pragma once

#include "vectortypes.h"

/// Arithmetic on vectors of pixels, on top of what each instruction set does in its own way:
///
///   DivideBy255(t)       Each 16-bit lane, a product of two channels, divided and rounded.
///   AddClamped(a, b)     Sums of bytes, 255 at most.
///   Alphas(p)            Each pixel's alpha, in both its 16-bit halves.
///   Weights(p)           The second byte of each pixel, for InterpolatePairs().
///   InterpolatePairs(a, b, w)
///                        a + (b - a) * w / 256 in each 16-bit lane, rounded.
///   IsZero(v)            Whether all of the vector is, or all coverage.
///   IsFull(c)            Whether all coverage is 255.
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
///   LoadPairs(p, at, left, right)
///                        The pixels at some offsets, and the ones to their right.
///   LoadNearPairs(p, first, step, positions, left, right)
///                        The same at the whole parts of positions, `first` and those that follow
///                        by `step`, at most one pixel. From the least one on as many pixels may
///                        be read as a vector has, and one more.
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

/// Fewer pixels than a vector has, from the first on; the others are read as 0.
struct Some {
  int count;
};

ZIRK_INLINE Pixels Load(const uint32_t* p, Some some) {
  uint32_t pixels[kLanes] = {};
  for (int i = 0; i < some.count; ++i) pixels[i] = p[i];
  return Load(pixels, Full());
}
ZIRK_INLINE void Store(uint32_t* p, const Pixels& v, Some some) {
  uint32_t pixels[kLanes];
  Store(pixels, v, Full());
  for (int i = 0; i < some.count; ++i) p[i] = pixels[i];
}

}  // namespace

}  // namespace ZIRK::backends
