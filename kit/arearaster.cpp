#include "arearaster.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace ZIRK::kit {

namespace {

/// Twice the area, positive if the corners are in clockwise order on the screen.
double TwiceAreaOf(const Point* corners, size_t count) {
  double sum = 0;
  for (size_t i = 0; i < count; ++i) {
    const Point &a = corners[i], &b = corners[i + 1 < count ? i + 1 : 0];
    sum += double{a.x()} * b.y() - double{b.x()} * a.y();
  }
  return sum;
}

}  // namespace

void AreaRaster::Begin(const VuRect& window) {
  window_ = window;
  sums_.assign(static_cast<size_t>(window.width + 1) * static_cast<size_t>(window.height), 0);
}

void AreaRaster::Add(const Point* corners, size_t count, float sign) {
  // Downward edges must have the inside on their left.
  if (TwiceAreaOf(corners, count) > 0) sign = -sign;
  const Point corner(static_cast<float>(window_.x), static_cast<float>(window_.y));
  for (size_t i = 0; i < count; ++i)
    AddEdge(corners[i] - corner, corners[i + 1 < count ? i + 1 : 0] - corner, sign);
}

void AreaRaster::AddEdge(Point a, Point b, float sign) {
  if (a.y() > b.y()) {
    std::swap(a, b);
    sign = -sign;
  }
  const float top = std::max(a.y(), 0.0f);
  const float bottom = std::min(b.y(), static_cast<float>(window_.height));
  if (!(top < bottom)) return;
  const float slope = (b.x() - a.x()) / (b.y() - a.y());
  const auto xAt = [&](float y) { return y < b.y() ? a.x() + (y - a.y()) * slope : b.x(); };
  const auto stride = static_cast<size_t>(window_.width + 1);
  auto row = static_cast<int>(top);
  for (float y = top; y < bottom; ++row) {
    const float next = std::min(static_cast<float>(row + 1), bottom);
    AddToRow(&sums_[static_cast<size_t>(row) * stride], xAt(y), xAt(next), (next - y) * sign);
    y = next;
  }
}

void AreaRaster::AddToRow(float* row, float x0, float x1, float cover) const {
  const auto width = static_cast<float>(window_.width);
  float left = std::min(x0, x1), right = std::max(x0, x1);
  const float length = right - left;
  if (left < 0) {  // An edge left of the window changes the coverage of the whole row.
    const float outside = right > 0 ? cover * -left / length : cover;
    row[0] += outside;
    cover -= outside;
    left = 0;
  }
  if (right > width) {
    if (left >= width) return;
    cover *= (width - left) / (right - left);
    right = width;
  }
  if (cover == 0 || right < left) return;
  // The area to the right of the edge and to the left of x.
  const float span = right - left;
  const auto areaTo = [=](float x) {
    if (x >= right) return x - right + span / 2;
    return (x - left) * (x - left) / (2 * span);
  };
  const auto first = static_cast<int>(left);
  const int last = std::max(first, static_cast<int>(std::ceil(right)) - 1);
  float areaBefore = 0, shareBefore = 0;
  for (int x = first; x <= last; ++x) {
    const float area = areaTo(static_cast<float>(x + 1));
    const float share = area - areaBefore;
    row[x] += cover * (share - shareBefore);
    areaBefore = area;
    shareBefore = share;
  }
  if (last < window_.width) row[last + 1] += cover * (1 - shareBefore);
}

void AreaRaster::Write(uint8_t* coverage) const {
  const float* sums = sums_.data();
  for (int y = 0; y < window_.height; ++y, ++sums) {
    float sum = 0;
    for (int x = 0; x < window_.width; ++x) {
      sum += *sums++;
      *coverage++ = static_cast<uint8_t>(std::clamp(sum, 0.0f, 1.0f) * 255 + 0.5f);
    }
  }
}

}  // namespace ZIRK::kit
