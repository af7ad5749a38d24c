#include "figurerenderer.h"

#include <algorithm>
#include <cmath>

#include "strokepainter.h"

namespace ZIRK::kit {

namespace {

/// The corner points of a rounded rectangle, clockwise from the left end of the top edge.
void AppendRounded(std::vector<Point>& points, float x0, float y0, float x1, float y1,
                   const Corners& r) {
  const auto corner = [&](float x, float y, float dx, float dy, float radius, float from) {
    if (radius > 0)
      AppendArc(points, {x + dx * radius, y + dy * radius}, radius, from, -kPi / 2);
    else
      points.emplace_back(x, y);
  };
  corner(x0, y0, 1, 1, r.topLeft, kPi);
  corner(x1, y0, -1, 1, r.topRight, kPi / 2);
  corner(x1, y1, -1, -1, r.bottomRight, 0);
  corner(x0, y1, 1, -1, r.bottomLeft, -kPi / 2);
}

Corners Smaller(const Corners& r, float by) {
  const auto smaller = [=](float radius) { return std::max(radius - by, 0.0f); };
  return {smaller(r.topLeft), smaller(r.topRight), smaller(r.bottomRight), smaller(r.bottomLeft)};
}

}  // namespace

void AppendArc(std::vector<Point>& points, Point middle, float radius, float from, float sweep) {
  // The chord of an angle a is at most r * (1 - cos(a / 2)), about r * a * a / 8, inside the arc.
  const float angle = std::sqrt(8 * 0.005f / std::max(radius, 0.05f));
  const int steps = std::clamp(static_cast<int>(std::fabs(sweep) / angle) + 1, 1, 4096);
  for (int i = 0; i <= steps; ++i) {
    const float a = from + sweep * static_cast<float>(i) / static_cast<float>(steps);
    points.push_back(middle + Point(std::cos(a), -std::sin(a)) * radius);
  }
}

void FigureRenderer::Render(const Recipe& recipe, const VuRect& window, uint8_t* coverage) {
  RecipeReader in(recipe);
  raster_.Begin(window);
  switch (static_cast<Figure>(in.Number())) {
    case Figure::RoundedRect:
      AddRoundedRect(in);
      break;
    case Figure::Arc:
      AddArc(in);
      break;
    case Figure::Polyline:
      AddPolyline(in);
      break;
    default:
      AddPolygon(in);
  }
  raster_.Write(coverage);
}

void FigureRenderer::AddRoundedRect(RecipeReader& in) {
  const auto width = static_cast<float>(in.Number()), height = static_cast<float>(in.Number());
  const float line = in.Pixels();
  const Corners radii = in.Radii();
  corners_.clear();
  AppendRounded(corners_, 0, 0, width, height, radii);
  raster_.Add(corners_.data(), corners_.size());
  if (line == 0 || 2 * line >= std::min(width, height)) return;
  corners_.clear();
  AppendRounded(corners_, line, line, width - line, height - line, Smaller(radii, line));
  raster_.Cut(corners_.data(), corners_.size());
}

void FigureRenderer::AddArc(RecipeReader& in) {
  const Point middle = in.Place();
  const float outer = in.Pixels(), inner = in.Pixels();
  const float kRadians = kPi / (180 * kUnitsPerDegree);
  const float from = static_cast<float>(in.Number()) * kRadians;
  const float sweep = static_cast<float>(in.Number()) * kRadians;
  const bool whole = std::fabs(sweep) > 2 * kPi - kRadians / 2;
  corners_.clear();
  AppendArc(corners_, middle, outer, from, sweep);
  if (whole) {
    raster_.Add(corners_.data(), corners_.size());
    corners_.clear();
  }
  AppendArc(corners_, middle, inner, from + sweep, -sweep);
  if (whole) return raster_.Cut(corners_.data(), corners_.size());
  raster_.Add(corners_.data(), corners_.size());

  const Cap cap{in.Number()};
  StrokePainter caps(raster_, corners_, {outer - inner, Join::Bevel, cap});
  const Point start(std::cos(from), -std::sin(from));
  const Point end(std::cos(from + sweep), -std::sin(from + sweep));
  const float turn = sweep < 0 ? -1.0f : 1.0f, radius = (outer + inner) / 2;
  caps.AddCap(middle + start * radius, Point(-start.y(), start.x()) * turn);
  caps.AddCap(middle + end * radius, Point(end.y(), -end.x()) * turn);
}

void FigureRenderer::ReadPoints(RecipeReader& in) {
  points_.clear();
  for (int32_t left = in.Number(); left > 0; --left) {
    const Point p = in.Place();
    if (points_.empty() || p != points_.back()) points_.push_back(p);
  }
}

void FigureRenderer::AddPolygon(RecipeReader& in) {
  ReadPoints(in);
  raster_.Add(points_.data(), points_.size());
}

void FigureRenderer::AddPolyline(RecipeReader& in) {
  const float width = in.Pixels();
  const Join join{in.Number()};
  const Cap cap{in.Number()};
  const bool closed = in.Number() != 0;
  ReadPoints(in);
  while (closed && points_.size() > 1 && points_.back() == points_.front()) points_.pop_back();
  StrokePainter(raster_, corners_, {width, join, cap}).Add(points_, closed);
}

}  // namespace ZIRK::kit
