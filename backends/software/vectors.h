#pragma once

#include "vectortypes.h"

/// Arithmetic on vectors of pixels, on top of what each instruction set does in its own way:
///
///   DivideBy255(t)       Each 16-bit lane, a product of two channels, divided and rounded.
///   AddClamped(a, b)     Sums of bytes, 255 at most.
///   Alphas(p)            Each pixel's alpha, in both its 16-bit halves.
///   IsZero(v)            Whether all of the vector is.
///   Spread(c)            Each byte of coverage, in both 16-bit halves of its pixel.
///
///   Tail(n)              The last pixels of a row, fewer than a vector has.
///   Load(p, pixels), Store(p, v, pixels), LoadCoverage(p, pixels)
///                        `pixels` says which lanes there are; the others are read as 0 and not
///                        written. It is a Full, or else what `f` is called with in the following.
///   ForTail(x, y, rest, f)
///                        Calls f(x, y, pixels) for all of `rest`, which is not empty.
///   kNarrow              Up to this width ForNarrow() takes two rows at a time, as glyphs often
///                        allow. 0 where there is no ForNarrow().
///   ForNarrow(span, f)   Calls f(x, y, pixels) for all of such a span.
///
///   Gather(p, at)        The pixels at some offsets.
///   GatherPairs(p, at, low, high)
///                        Each together with the one to its right: those of the first half of the
///                        offsets, and of the second.
///   Separate(a, b, even, odd)
///                        The lanes of both vectors with even numbers, and with odd ones.
#if defined(__AVX512BW__)
#include "vectorsavx512.h"
#elif defined(__AVX2__)
#include "vectorsavx2.h"
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

ZIRK_INLINE Pixels LoadCoverage(const uint8_t* p, Full) {
  Coverage c;
  __builtin_memcpy(&c, p, sizeof c);
  return Spread(c);
}

ZIRK_INLINE Pixels LoadUpTo(const uint32_t* p, int n) {
  return n < kLanes ? Load(p, Tail(n)) : Load(p, Full());
}
ZIRK_INLINE void StoreUpTo(uint32_t* p, const Pixels& v, int n) {
  return n < kLanes ? Store(p, v, Tail(n)) : Store(p, v, Full());
}

/// The pixels at some offsets, and those to their right.
ZIRK_INLINE void LoadPairs(const uint32_t* p, Integers at, Pixels& left, Pixels& right) {
  PixelPairs low, high;
  GatherPairs(p, at, low, high);
  Separate((Pixels)low, (Pixels)high, left, right);
}

}  // namespace

}  // namespace ZIRK::backends
