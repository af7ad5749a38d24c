#pragma once

#include "kernels.h"
#include "vectors.h"

/// Rows of pixels read from an image: nearest or bilinear. Part of kernels.cpp, and built with it.

namespace ZIRK::backends {

namespace {

ZIRK_INLINE int Clamp(int v, int low, int high) {
  return v < low ? low : v > high ? high : v;
}
ZIRK_INLINE Integers Clamp(Integers v, int low, int high) {
  const Integers raised = v < low ? Integers{} + low : v;
  return raised > high ? Integers{} + high : raised;
}

/// Nearest pixels along one axis of the image. Positions are unsigned: they may wrap around.
ZIRK_INLINE void SampleAlong(const uint32_t* pixels, ptrdiff_t pitch, int32_t first, int32_t step,
                             int32_t rest, int min, int max, uint32_t* out, int count) {
  uint32_t position = static_cast<uint32_t>(first);
  int32_t rests = 0;  // all `rest` so far, which is too small to be added to a position
  for (int i = 0; i < count; ++i) {
    const uint32_t exact = position + static_cast<uint32_t>(rests >> 16);
    out[i] = pixels[Clamp(static_cast<int32_t>(exact) >> 16, min, max) * pitch];
    position += static_cast<uint32_t>(step);
    rests += rest;
  }
}

void SampleNearest(const SampleRow& s, uint32_t* out, int count) {
  if (s.stepY == 0 && s.stepFractionY == 0) {
    const uint32_t* const row = s.pixels + Clamp(s.y >> 16, s.minY, s.maxY) * s.pitch;
    return SampleAlong(row, 1, s.x, s.stepX, s.stepFractionX, s.minX, s.maxX, out, count);
  }
  if (s.stepX == 0 && s.stepFractionX == 0) {
    const uint32_t* const column = s.pixels + Clamp(s.x >> 16, s.minX, s.maxX);
    return SampleAlong(column, s.pitch, s.y, s.stepY, s.stepFractionY, s.minY, s.maxY, out, count);
  }
  uint32_t x = static_cast<uint32_t>(s.x);
  uint32_t y = static_cast<uint32_t>(s.y);
  for (int i = 0; i < count; ++i) {
    const int px = Clamp(static_cast<int32_t>(x) >> 16, s.minX, s.maxX);
    const int py = Clamp(static_cast<int32_t>(y) >> 16, s.minY, s.maxY);
    out[i] = s.pixels[py * s.pitch + px];
    x += static_cast<uint32_t>(s.stepX);
    y += static_cast<uint32_t>(s.stepY);
  }
}

/// a + (b - a) * w / 256 in each channel of a pair; `w` has the weight in both halves.
ZIRK_INLINE Pixels InterpolatePairs(Pixels a, Pixels b, Pixels w) {
  // The product may be negative, but what it is added to has the sum fit into 16 bits again.
  const Channels product = ((Channels)b - (Channels)a) * (Channels)w;
  return (Pixels)((((Channels)a << 8) + product + 128) >> 8);
}

ZIRK_INLINE Pixels Interpolate(Pixels a, Pixels b, Pixels w) {
  return JoinPairs(InterpolatePairs(LowPair(a), LowPair(b), w),
                   InterpolatePairs(HighPair(a), HighPair(b), w));
}

/// Groups of four neighbouring pixels.
struct Neighbours {
  Pixels topLeft, topRight, bottomLeft, bottomRight;
};

ZIRK_INLINE Pixels Interpolate(const Neighbours& n, Pixels wx, Pixels wy) {
  const Pixels low =
      InterpolatePairs(InterpolatePairs(LowPair(n.topLeft), LowPair(n.topRight), wx),
                       InterpolatePairs(LowPair(n.bottomLeft), LowPair(n.bottomRight), wx), wy);
  const Pixels high =
      InterpolatePairs(InterpolatePairs(HighPair(n.topLeft), HighPair(n.topRight), wx),
                       InterpolatePairs(HighPair(n.bottomLeft), HighPair(n.bottomRight), wx), wy);
  return JoinPairs(low, high);
}

/// Positions along a row, 16.16 fixed point.
struct Positions {
  uint32_t start;
  uint32_t step;

  ZIRK_INLINE int WholePart(int i) const {
    return static_cast<int32_t>(start + static_cast<uint32_t>(i) * step) >> 16;
  }
  /// A vector of them, from position `i` on.
  ZIRK_INLINE Pixels From(int i) const {
    return start + (Indices() + static_cast<uint32_t>(i)) * step;
  }
};

ZIRK_INLINE Integers WholeParts(Pixels positions) {
  return (Integers)positions >> 16;
}

/// The weights of positions, 8 bits of their fractions, each in both halves.
ZIRK_INLINE Pixels Weights(Pixels positions) {
  return BothHalves((positions >> 8) & 0xFF);
}

/// Some of the neighbours may lie beyond the limits.
ZIRK_INLINE void LoadClamped(const SampleRow& s, Integers x, Integers y, Neighbours& n) {
  const auto pitch = static_cast<int32_t>(s.pitch);
  const Integers left = Clamp(x, s.minX, s.maxX), right = Clamp(x + 1, s.minX, s.maxX);
  const Integers top = Clamp(y, s.minY, s.maxY) * pitch;
  const Integers bottom = Clamp(y + 1, s.minY, s.maxY) * pitch;
  n.topLeft = Gather(s.pixels, top + left);
  n.topRight = Gather(s.pixels, top + right);
  n.bottomLeft = Gather(s.pixels, bottom + left);
  n.bottomRight = Gather(s.pixels, bottom + right);
}

void SampleSlanted(const SampleRow& s, Positions px, Positions py, uint32_t* out, int count) {
  // A row is a straight line: if its ends have all their neighbours inside the limits, all have.
  // Unless it is so long that positions wrap around on the way.
  constexpr int32_t kShort = 1024 << 16;
  const bool straight =
      s.stepX < kShort && s.stepX > -kShort && s.stepY < kShort && s.stepY > -kShort;
  const auto inside = [&](int i) {
    const int x = px.WholePart(i), y = py.WholePart(i);
    return x >= s.minX && x < s.maxX && y >= s.minY && y < s.maxY;
  };
  for (int i = 0; i < count; i += kLanes) {
    const Pixels x = px.From(i), y = py.From(i);
    Neighbours n;
    if (straight && inside(i) && inside(i + kLanes - 1)) {
      const Integers at = WholeParts(y) * static_cast<int32_t>(s.pitch) + WholeParts(x);
      LoadPairs(s.pixels, at, n.topLeft, n.topRight);
      LoadPairs(s.pixels + s.pitch, at, n.bottomLeft, n.bottomRight);
    } else {
      LoadClamped(s, WholeParts(x), WholeParts(y), n);
    }
    StoreUpTo(out + i, Interpolate(n, Weights(x), Weights(y)), count - i);
  }
}

/// Source pixels that an enlarged row can need, and room for vectors that reach beyond on either
/// side.
constexpr int kEnlargedMargin = 2 * kLanes;
constexpr int kEnlargedColumns = kSampleLimit + 2 + 2 * kEnlargedMargin;

/// Columns `first` to `first + count` of two rows, mixed. Beyond the limits the last column goes
/// on.
ZIRK_INLINE void InterpolateRows(const SampleRow& s, int y, Pixels weight, int first, int count,
                                 uint32_t* out) {
  const uint32_t* top = s.pixels + Clamp(y, s.minY, s.maxY) * s.pitch;
  const uint32_t* bottom = s.pixels + Clamp(y + 1, s.minY, s.maxY) * s.pitch;
  // Columns inside the limits, or else the one that is nearest to them.
  const int begin = Clamp(s.minX - first, 0, count - 1);
  const int end = Clamp(s.maxX + 1 - first, begin + 1, count);
  const int column = Clamp(first + begin, s.minX, s.maxX) - begin;
  for (int i = begin; i < end; i += kLanes)
    StoreUpTo(out + i,
              Interpolate(LoadUpTo(top + column + i, end - i),
                          LoadUpTo(bottom + column + i, end - i), weight),
              end - i);
  for (int i = 0; i < begin; ++i) out[i] = out[begin];
  for (int i = end; i < count; ++i) out[i] = out[end - 1];
}

/// A row that runs along one of the image's, enlarged: the two rows are mixed once, and then
/// neighbours within.
void SampleEnlarged(const SampleRow& s, Positions px, uint32_t* out, int count) {
  uint32_t mixed[kEnlargedColumns];
  uint32_t* const columns = mixed + kEnlargedMargin;
  const int a = px.WholePart(0), b = px.WholePart(count - 1);
  const int first = a < b ? a : b, last = a < b ? b : a;
  InterpolateRows(s, s.y >> 16, BothHalves(Splat(static_cast<uint32_t>(s.y) >> 8 & 0xFF)), first,
                  last - first + 2, columns);
  for (int i = 0; i < count; i += kLanes) {
    const Pixels x = px.From(i);
    Pixels left, right;
    LoadNearPairs(columns, WholeParts(x) - first, left, right);
    StoreUpTo(out + i, Interpolate(left, right, Weights(x)), count - i);
  }
}

void SampleBilinear(const SampleRow& s, uint32_t* out, int count) {
  const Positions px = {static_cast<uint32_t>(s.x), static_cast<uint32_t>(s.stepX)};
  const Positions py = {static_cast<uint32_t>(s.y), static_cast<uint32_t>(s.stepY)};
  const bool enlarged = s.stepX <= 65536 && s.stepX >= -65536;
  if (s.stepY == 0 && enlarged && count <= kSampleLimit)
    SampleEnlarged(s, px, out, count);
  else
    SampleSlanted(s, px, py, out, count);
}

}  // namespace

}  // namespace ZIRK::backends
