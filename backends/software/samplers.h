#pragma once

#include "kernels.h"
#include "vectors.h"

/// Reads rows of pixels from an image, nearest or bilinear. This header is part of kernels.cpp.

namespace ZIRK::backends {

namespace {

ZIRK_INLINE int Clamp(int v, int low, int high) {
  return v < low ? low : v > high ? high : v;
}

ZIRK_INLINE Integers Clamp(Integers v, int low, int high) {
  const Integers raised = v < low ? Integers{} + low : v;
  return raised > high ? Integers{} + high : raised;
}

/// Reads nearest pixels along one axis of the image. Positions are unsigned, since they may wrap
/// around.
ZIRK_INLINE void SampleClampedAlong(const uint32_t* pixels, ptrdiff_t pitch, int32_t first,
                                    int32_t step, int32_t rest, int min, int max, uint32_t* out,
                                    int count) {
  uint32_t position = static_cast<uint32_t>(first);
  int32_t rests = 0;  // The sum of `rest`, which is too small to add to a position.
  for (int i = 0; i < count; ++i) {
    const uint32_t exact = position + static_cast<uint32_t>(rests >> 16);
    out[i] = pixels[Clamp(static_cast<int32_t>(exact) >> 16, min, max) * pitch];
    position += static_cast<uint32_t>(step);
    rests += rest;
  }
}

/// Does the same in fewer steps if no position is outside the limits, the usual case.
ZIRK_INLINE void SampleAlong(const uint32_t* pixels, ptrdiff_t pitch, int32_t first, int32_t step,
                             int32_t rest, int min, int max, uint32_t* out, int count) {
  // 32.32 fixed point.
  int64_t position = int64_t{first} * 65536;
  const int64_t increment = int64_t{step} * 65536 + rest;
  const auto isInside = [=](int64_t p) { return p >> 32 >= min && p >> 32 <= max; };
  if (!isInside(position) || !isInside(position + (count - 1) * increment))
    return SampleClampedAlong(pixels, pitch, first, step, rest, min, max, out, count);
  for (int i = 0; i < count; ++i, position += increment)
    out[i] = pixels[static_cast<ptrdiff_t>(position >> 32) * pitch];
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
  Pixels ramp;  ///< The distances from the first position of a vector.

  ZIRK_INLINE Positions(int32_t first, int32_t increment)
      : start(static_cast<uint32_t>(first)),
        step(static_cast<uint32_t>(increment)),
        ramp(Indices() * step) {}

  ZIRK_INLINE uint32_t At(int i) const { return start + static_cast<uint32_t>(i) * step; }
  ZIRK_INLINE int WholePart(int i) const { return static_cast<int32_t>(At(i)) >> 16; }
  /// Returns a vector of positions from position `i` on.
  ZIRK_INLINE Pixels From(int i) const { return Splat(At(i)) + ramp; }
};

/// Calls `f(i, pixels)` for all vectors of a row from `begin` to `end`. The last one overlaps the
/// one before.
template <typename F>
ZIRK_INLINE void ForRow(int begin, int end, F&& f) {
  if (end - begin < kLanes) return f(begin, Some{end - begin});
  const int last = end - kLanes;
  for (int i = begin; i < end; i += kLanes) f(i < last ? i : last, Full());
}

/// Loads groups of neighbours that are all inside the limits. `x` and `y` are the top left ones.
ZIRK_INLINE Neighbours LoadInside(const SampleRow& s, Integers x, Integers y) {
  Neighbours n;
  const Integers at = y * static_cast<int32_t>(s.pitch) + x;
  LoadPairs(s.pixels, at, n.topLeft, n.topRight);
  LoadPairs(s.pixels + s.pitch, at, n.bottomLeft, n.bottomRight);
  return n;
}

/// Loads one row of neighbours. Outside the limits, the last pixel inside is repeated.
ZIRK_INLINE void LoadClamped(const SampleRow& s, Integers x, Integers row, Pixels& left,
                             Pixels& right) {
  if (s.minX == s.maxX) {
    for (int i = 0; i < kLanes; ++i) left[i] = s.pixels[row[i] + s.minX];
    right = left;
    return;
  }
  Pixels first, second;
  LoadPairs(s.pixels, row + Clamp(x, s.minX, s.maxX - 1), first, second);
  left = x < s.maxX ? first : second;
  right = x < s.minX ? first : second;
}

ZIRK_INLINE Neighbours LoadClamped(const SampleRow& s, Integers x, Integers y) {
  Neighbours n;
  const auto pitch = static_cast<int32_t>(s.pitch);
  LoadClamped(s, x, Clamp(y, s.minY, s.maxY) * pitch, n.topLeft, n.topRight);
  LoadClamped(s, x, Clamp(y + 1, s.minY, s.maxY) * pitch, n.bottomLeft, n.bottomRight);
  return n;
}

void SampleSlanted(const SampleRow& row, uint32_t* out, int count) {
  const SampleRow s = row;  // A copy: no store can change it.
  const Positions px(s.x, s.stepX), py(s.y, s.stepY);
  const auto clamped = [&](int i, auto pixels) ZIRK_INLINE_LAMBDA {
    const Pixels x = px.From(i), y = py.From(i);
    const Neighbours n = LoadClamped(s, WholeParts(x), WholeParts(y));
    Store(out + i, Interpolate(n, Weights(x), Weights(y)), pixels);
  };
  if (count < kLanes) return clamped(0, Some{count});

  // A row is a straight line: if two of its pixels have all their neighbours inside the limits, so
  // do all pixels between them, unless positions wrap around.
  const bool straight = s.stepX < kShortStep && s.stepX > -kShortStep && s.stepY < kShortStep &&
                        s.stepY > -kShortStep;
  const auto isInside = [&](int i) {
    const int x = px.WholePart(i), y = py.WholePart(i);
    return x >= s.minX && x < s.maxX && y >= s.minY && y < s.maxY;
  };
  int begin = 0, end = count;
  while (begin < end && !(straight && isInside(begin))) begin += kLanes;
  while (begin < end && !isInside(end - 1)) --end;
  if (end - begin < kLanes) begin = end = count;

  const int last = count - kLanes;
  const auto outside = [&](int from, int to) ZIRK_INLINE_LAMBDA {
    for (int i = from; i < to; i += kLanes) clamped(i < last ? i : last, Full());
  };
  outside(0, begin);
  Pixels x = px.From(begin), y = py.From(begin);
  for (; begin <= end - kLanes; begin += kLanes, x += px.step * kLanes, y += py.step * kLanes) {
    const Neighbours n = LoadInside(s, WholeParts(x), WholeParts(y));
    Store(out + begin, Interpolate(n, Weights(x), Weights(y)), Full());
  }
  outside(begin, count);
}

/// The source pixels that an enlarged row can need, with room for vectors that extend beyond them
/// on either side.
constexpr int kEnlargedMargin = 2 * kLanes;
constexpr int kEnlargedColumns = kSampleLimit + 2 + 2 * kEnlargedMargin;

/// Interpolates the columns `first` to `first + count` between two rows. Outside the limits, the
/// last column is repeated.
ZIRK_INLINE void InterpolateRows(const SampleRow& s, int first, int count, uint32_t* out) {
  const int y = s.y >> 16;
  const Pixels weight = Weights(Splat(static_cast<uint32_t>(s.y)));
  // The columns inside the limits, or the nearest one if there are none.
  const int begin = Clamp(s.minX - first, 0, count - 1);
  const int end = Clamp(s.maxX + 1 - first, begin + 1, count);
  const int column = Clamp(first + begin, s.minX, s.maxX) - begin;
  const uint32_t* const top = s.pixels + Clamp(y, s.minY, s.maxY) * s.pitch + column;
  const uint32_t* const bottom = s.pixels + Clamp(y + 1, s.minY, s.maxY) * s.pitch + column;
  ForRow(begin, end, [&](int i, auto pixels) ZIRK_INLINE_LAMBDA {
    Store(out + i, Interpolate(Load(top + i, pixels), Load(bottom + i, pixels), weight), pixels);
  });
  for (int i = 0; i < begin; ++i) out[i] = out[begin];
  for (int i = end; i < count; ++i) out[i] = out[end - 1];
}

/// Samples an enlarged row that is parallel to the image's rows: interpolates once between two
/// rows, and then between neighbours of the result.
void SampleEnlarged(const SampleRow& row, uint32_t* out, int count) {
  const SampleRow s = row;  // A copy: no store can change it.
  uint32_t mixed[kEnlargedColumns];
  const Positions px(s.x, s.stepX);
  const int a = px.WholePart(0), b = px.WholePart(count - 1);
  const int first = a < b ? a : b, last = a < b ? b : a;
  uint32_t* const columns = mixed + kEnlargedMargin;
  InterpolateRows(s, first, last - first + 2, columns);
  const Positions inColumns(s.x - (first << 16), s.stepX);
  ForRow(0, count, [&](int i, auto pixels) ZIRK_INLINE_LAMBDA {
    const Pixels x = inColumns.From(i);
    Pixels left, right;
    LoadNearPairs(columns, static_cast<int32_t>(inColumns.At(i)), s.stepX, x, left, right);
    Store(out + i, Interpolate(left, right, Weights(x)), pixels);
  });
}

void SampleBilinear(const SampleRow& s, uint32_t* out, int count) {
  const bool enlarged = s.stepX <= 65536 && s.stepX >= -65536;
  if (s.stepY == 0 && enlarged && count <= kSampleLimit)
    SampleEnlarged(s, out, count);
  else
    SampleSlanted(s, out, count);
}

}  // namespace

}  // namespace ZIRK::backends
