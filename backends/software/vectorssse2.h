#pragma once

#include <emmintrin.h>

#include "vectorfours.h"
#include "vectorhalves.h"

/// The operations of vectors.h by SSE2.

namespace ZIRK::backends {

namespace {

ZIRK_INLINE Channels DivideBy255(Channels t) {
  // 257 / 65536 is 1/256 + 1/65536, close enough to 1/255 for all products.
  return (Channels)_mm_mulhi_epu16((__m128i)(t + 128), _mm_set1_epi16(257));
}

ZIRK_INLINE Pixels AddClamped(Pixels a, Pixels b) {
  return (Pixels)_mm_adds_epu8((__m128i)a, (__m128i)b);
}

ZIRK_INLINE bool IsZero(Pixels v) {
  return _mm_movemask_epi8(_mm_cmpeq_epi8((__m128i)v, _mm_setzero_si128())) == 0xFFFF;
}
ZIRK_INLINE bool IsTranslucent(Pixels p) {
  return !IsZero(p);
}

ZIRK_INLINE Pixels Spread(Coverage c) {
  const __m128i bytes = _mm_cvtsi32_si128(static_cast<int>(c));
  const __m128i words = _mm_unpacklo_epi8(bytes, _mm_setzero_si128());
  return (Pixels)_mm_unpacklo_epi16(words, words);
}

template <int kCount>
ZIRK_INLINE Pixels Load(const uint32_t* p, Halves<kCount> halves) {
  return (Pixels)LoadHalves(p, halves);
}
template <int kCount>
ZIRK_INLINE void Store(uint32_t* p, const Pixels& v, Halves<kCount> halves) {
  StoreHalves(p, (__m128i)v, halves);
}

template <typename F>
ZIRK_INLINE void ForNarrow(const PixelSpan& s, F&& f) {
  ForHalves(s, f);
}

/// Loads two pixels each from `p` and from `q`.
ZIRK_INLINE __m128 LoadTwice(const uint32_t* p, const uint32_t* q) {
  const __m128 low = (__m128)_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p));
  return _mm_loadh_pi(low, reinterpret_cast<const __m64*>(q));
}

/// Separates the left and the right pixels of pairs.
ZIRK_INLINE void Separate(__m128 low, __m128 high, Pixels& left, Pixels& right) {
  left = (Pixels)_mm_shuffle_ps(low, high, _MM_SHUFFLE(2, 0, 2, 0));
  right = (Pixels)_mm_shuffle_ps(low, high, _MM_SHUFFLE(3, 1, 3, 1));
}

ZIRK_INLINE void LoadPairs(const uint32_t* p, Integers at, Pixels& left, Pixels& right) {
  Separate(LoadTwice(p + at[0], p + at[1]), LoadTwice(p + at[2], p + at[3]), left, right);
}

ZIRK_INLINE void LoadNearPairs(const uint32_t* p, int32_t first, int32_t step, Pixels, Pixels& left,
                               Pixels& right) {
  const auto at = [&](int i) ZIRK_INLINE_LAMBDA { return p + ((first + i * step) >> 16); };
  Separate(LoadTwice(at(0), at(1)), LoadTwice(at(2), at(3)), left, right);
}

}  // namespace

}  // namespace ZIRK::backends
