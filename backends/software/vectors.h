#pragma once

#include "vectortypes.h"

/// Arithmetic on vectors of pixels. It builds on these operations, which each instruction set
/// defines:
///
///   DivideBy255(t)       Divides each 16-bit lane, a product of two channels, and rounds.
///   AddClamped(a, b)     Adds bytes, and clamps the sums to 255.
///   Alphas(p)            The alpha of each pixel, in both its 16-bit halves.
///   Weights(p)           The second byte of each pixel, for InterpolatePairs().
///   InterpolatePairs(a, b, w)
///                        a + (b - a) * w / 256 in each 16-bit lane, rounded.
///   IsZero(v)            Whether the whole vector, or all coverage, is 0.
///   IsTranslucent(p)     False if IsZero(p) or IsOpaque(p), true for most other pixels: one test
///                        in place of two.
///   IsOpaque(p)          Whether the alpha of all pixels is 255. Always false where this test
///                        gains nothing.
///   IsFull(c)            Whether all coverage is 255.
///   Coverage             A type of as many bytes as a vector has pixels.
///   Spread(c)            Each byte of coverage, in both 16-bit halves of its pixel.
///
///   ForNarrow(span, f)   Calls f(x, y, pixels) for all of a span that is narrower than a vector.
///   Load(p, pixels), Store(p, v, pixels), LoadCoverage(p, pixels)
///                        `pixels` selects the pixels of the vector: Full for all, or the value
///                        with which `f` is called.
///   kTwoRows             The largest width at which ForTwoRows() handles two rows of coverage at a
///                        time, as glyphs often allow. 0 if there is no ForTwoRows().
///   ForTwoRows(span, f)  The same as ForNarrow() for such a span, without source pixels.
///   kTwoEnds             The largest width of spans wider than a vector that ForTwoEnds() handles.
///                        0 if there is no ForTwoEnds().
///   ForTwoEnds(span, compute, store)
///                        Calls store(x, y, v, pixels) for all vectors of such a span, without
///                        source pixels, if compute(x, y, pixels, v) returns true.
///
///   LoadPairs(p, at, left, right)
///                        Loads the pixels at some offsets, and the ones to their right.
///   LoadNearPairs(p, first, step, positions, left, right)
///                        The same at the whole parts of positions that start at `first` and
///                        advance by `step`, at most one pixel. It may read as many pixels from the
///                        lowest position on as a vector has, and one more.
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

/// Masks the low bytes of both 16-bit halves. `v ^ kLow` is 255 - v for each of these bytes.
constexpr uint32_t kLow = 0x00FF00FFu;

/// Red and blue with 16 bits each, so that products fit. HighPair() does the same for alpha and
/// green.
ZIRK_INLINE Pixels LowPair(Pixels p) {
  return p & kLow;
}
ZIRK_INLINE Pixels HighPair(Pixels p) {
  return (Pixels)((Channels)p >> 8);
}
ZIRK_INLINE Pixels JoinPairs(Pixels low, Pixels high) {
  return low | (Pixels)((Channels)high << 8);
}

/// Multiplies both channels of each pair of `a` with those of `b`, and divides by 255.
ZIRK_INLINE Pixels MultiplyPairs(Pixels a, Pixels b) {
  return (Pixels)DivideBy255((Channels)a * (Channels)b);
}

/// (a * u + b * v) / 255 for both channels of each pair.
ZIRK_INLINE Pixels MixPairs(Pixels a, Pixels u, Pixels b, Pixels v) {
  return (Pixels)DivideBy255((Channels)a * (Channels)u + (Channels)b * (Channels)v);
}

/// Multiplies each channel of `p` with `factor`, 0 to 255 in both 16-bit halves of each pixel.
ZIRK_INLINE Pixels Scale(Pixels p, Pixels factor) {
  return JoinPairs(MultiplyPairs(LowPair(p), factor), MultiplyPairs(HighPair(p), factor));
}

/// Multiplies each channel of `p` with the same channel of `q`.
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

/// Selects the first pixels of a vector, fewer than it has. The others are read as 0.
struct Some {
  int count;
};

ZIRK_INLINE Pixels Load(const uint32_t* p, Some some) {
  uint32_t pixels[kLanes] = {};
  for (int i = 0; i < some.count; ++i) pixels[i] = p[i];
  return Load(pixels, Full());
}
ZIRK_INLINE Coverage LoadCoverage(const uint8_t* p, Some some) {
  uint8_t bytes[kLanes] = {};
  for (int i = 0; i < some.count; ++i) bytes[i] = p[i];
  return LoadCoverage(bytes, Full());
}
ZIRK_INLINE void Store(uint32_t* p, const Pixels& v, Some some) {
  uint32_t pixels[kLanes];
  Store(pixels, v, Full());
  for (int i = 0; i < some.count; ++i) p[i] = pixels[i];
}

}  // namespace

}  // namespace ZIRK::backends
