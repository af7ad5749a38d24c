#pragma once

#include <emmintrin.h>

#include "kernels.h"
#include "vectortypes.h"

/// Handles spans narrower than a vector for instruction sets that cannot skip lanes. Two pieces of
/// each row share a vector; they overlap if the row is narrower than both together.

namespace ZIRK::backends {

namespace {

/// Selects `kCount` pixels (1, 2 or 4) from the first on, and `kCount` pixels from `second` on.
template <int kCount>
struct Halves {
  ptrdiff_t second;
  ptrdiff_t secondCoverage;  ///< The offset of the coverage of the second piece.
};

/// Returns the pieces at both ends of a row.
template <int kCount>
ZIRK_INLINE Halves<kCount> HalvesOf(int width) {
  return {width - kCount, width - kCount};
}

ZIRK_INLINE __m128i LoadHalves(const uint32_t* p, Halves<2> halves) {
  return _mm_unpacklo_epi64(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)),
                            _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p + halves.second)));
}
ZIRK_INLINE void StoreHalves(uint32_t* p, __m128i v, Halves<2> halves) {
  _mm_storel_epi64(reinterpret_cast<__m128i*>(p), v);
  _mm_storel_epi64(reinterpret_cast<__m128i*>(p + halves.second), _mm_unpackhi_epi64(v, v));
}

/// For one pixel, both pieces are the same.
ZIRK_INLINE __m128i LoadHalves(const uint32_t* p, Halves<1>) {
  return _mm_cvtsi32_si128(static_cast<int>(*p));
}
ZIRK_INLINE void StoreHalves(uint32_t* p, __m128i v, Halves<1>) {
  *p = static_cast<uint32_t>(_mm_cvtsi128_si32(v));
}

ZIRK_INLINE uint32_t LoadCoverage(const uint8_t* p, Halves<2> halves) {
  uint16_t first, second;
  __builtin_memcpy(&first, p, sizeof first);
  __builtin_memcpy(&second, p + halves.secondCoverage, sizeof second);
  return first | uint32_t{second} << 16;
}
ZIRK_INLINE uint32_t LoadCoverage(const uint8_t* p, Halves<1>) {
  return *p;
}

template <typename Pieces, typename F>
ZIRK_INLINE void ForRows(int height, Pieces pieces, F&& f) {
  for (int y = 0; y < height; ++y) f(0, y, pieces);
}

/// Calls f(0, y, halves) for each row of a span at most 4 pixels wide.
template <typename F>
ZIRK_INLINE void ForHalves(const PixelSpan& s, F&& f) {
  if (s.width > 1) return ForRows(s.height, HalvesOf<2>(s.width), f);
  ForRows(s.height, HalvesOf<1>(1), f);
}

}  // namespace

}  // namespace ZIRK::backends
