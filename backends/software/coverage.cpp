// A left edge covers everything to its right. In each pixel that it crosses, it adds the covered
// part to `area`; for all pixels after that, it adds its height to `carry` once. A right edge
// subtracts both. The coverage of a pixel is its `area` plus the sum of `carry` up to it.

#include "software/coverage.h"

#include <algorithm>

namespace ZIRK::backends {

namespace {

/// Returns the mean of max(column - x, 0) for x evenly distributed from `left` to `right`.
double MeanReach(double column, double left, double right) {
  if (column <= left) return 0;
  if (column >= right) return column - (left + right) / 2;
  return (column - left) * (column - left) / (2 * (right - left));
}

uint8_t ToAlpha(double coverage) {
  return static_cast<uint8_t>(std::clamp(coverage, 0.0, 1.0) * 255 + 0.5);
}

}  // namespace

QuadCoverage::QuadCoverage(const Point corners[4], const Box& limits, Scratch& scratch)
    : limits_(limits), scratch_(scratch) {
  std::fill_n(scratch.area.Data(), limits.Width() + 1, 0.0f);
  std::fill_n(scratch.carry.Data(), limits.Width() + 1, 0.0f);
  const Point side = corners[1] - corners[0], other = corners[3] - corners[0];
  const bool clockwise = side.x * other.y - side.y * other.x > 0;
  for (int i = 0; i < 4; ++i) {
    const Point a = corners[i], b = corners[(i + 1) % 4];
    if (a.y == b.y) continue;
    const Point top = a.y < b.y ? a : b, bottom = a.y < b.y ? b : a;
    edges_[static_cast<size_t>(edgeCount_++)] = {
        top.x, top.y, bottom.y, (bottom.x - top.x) / (bottom.y - top.y), (a.y > b.y) == clockwise};
  }
}

/// Adds the part of the edge between two heights in one row.
QuadCoverage::Columns QuadCoverage::AddEdge(const Edge& edge, double top, double bottom) {
  const double height = edge.leftSide ? bottom - top : top - bottom;
  const double x = edge.x0 - limits_.x0;
  const auto [left, right] =
      std::minmax({x + (top - edge.y0) * edge.slope, x + (bottom - edge.y0) * edge.slope});
  // Conversions truncate. That rounds down, since no value here is negative.
  const double width = limits_.Width();
  const int begin = static_cast<int>(std::clamp(left, 0.0, width));
  const double last = std::clamp(right, 0.0, width);
  const int end = static_cast<int>(last) + (static_cast<int>(last) < last);
  double reach = MeanReach(begin, left, right);
  for (int i = begin; i < end; ++i) {
    const double next = MeanReach(i + 1, left, right);
    scratch_.area.Data()[i] += static_cast<float>(height * (next - reach));
    reach = next;
  }
  scratch_.carry.Data()[end] += static_cast<float>(height);
  return {begin, end};
}

void QuadCoverage::Resolve(int begin, int end, double inherited) {
  for (int i = begin; i < end; ++i) {
    inherited += static_cast<double>(scratch_.carry.Data()[i]);
    scratch_.alpha.Data()[i] = ToAlpha(inherited + static_cast<double>(scratch_.area.Data()[i]));
  }
}

QuadCoverage::Row QuadCoverage::Compute(int y) {
  const int width = limits_.Width();
  int begin = width, end = 0, solidBegin = 0, solidEnd = width;
  double coveredHeight = 0;
  std::array<Columns, 4> used;
  size_t usedCount = 0;
  for (int i = 0; i < edgeCount_; ++i) {
    const Edge& edge = edges_[static_cast<size_t>(i)];
    const double top = std::max<double>(edge.y0, y), bottom = std::min<double>(edge.y1, y + 1);
    if (bottom <= top) continue;
    const Columns columns = AddEdge(edge, top, bottom);
    used[usedCount++] = columns;
    begin = std::min(begin, columns.begin);
    end = std::max(end, columns.end);
    if (edge.leftSide) {
      solidBegin = std::max(solidBegin, columns.end);
      coveredHeight += bottom - top;
    } else {
      solidEnd = std::min(solidEnd, columns.begin);
    }
  }
  begin = std::min(begin, end);
  if (coveredHeight < 0.999 || solidBegin >= solidEnd) {
    solidBegin = solidEnd = end;
    Resolve(begin, end, 0);
  } else {
    Resolve(begin, solidBegin, 0);
    std::fill_n(scratch_.alpha.Data() + solidBegin, solidEnd - solidBegin, uint8_t{255});
    Resolve(solidEnd, end, coveredHeight);
  }
  for (size_t i = 0; i < usedCount; ++i) Forget(used[i]);
  return {begin + limits_.x0, solidBegin + limits_.x0, solidEnd + limits_.x0, end + limits_.x0};
}

void QuadCoverage::Forget(const Columns& columns) {
  std::fill_n(scratch_.area.Data() + columns.begin, columns.end - columns.begin, 0.0f);
  scratch_.carry.Data()[columns.end] = 0;
}

}  // namespace ZIRK::backends
