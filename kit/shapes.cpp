#include <zirk/kit/shapes.h>
#include <zirk/vusyslog.h>

#include <algorithm>
#include <cmath>
#include <new>

#include "shapepainter.h"

namespace ZIRK::kit {

namespace {

constexpr float kFarthest = 1e6f;
constexpr float kMostBlur = 256;
/// The side in pixels of the cached glow, which is stretched to the requested size.
constexpr int kGlowSide = 128;
/// The longest side of a shape that is cached divided.
constexpr int kMostDivided = 256;

/// Whether a length can be drawn.
bool IsLength(float length) {
  return length > 0 && length <= kFarthest;
}

bool IsNear(Point p) {
  return std::fabs(p.x()) <= kFarthest && std::fabs(p.y()) <= kFarthest;
}

bool IsNear(const Points& points) {
  return points.count > 0 && points.count < 1'000'000 &&
         std::all_of(points.data, points.data + points.count, [](Point p) { return IsNear(p); });
}

bool IsDrawable(const VuRect& rect) {
  constexpr auto kMost = static_cast<int>(kFarthest);
  return rect.width > 0 && rect.height > 0 && rect.width <= kMost && rect.height <= kMost &&
         std::abs(int64_t{rect.x}) <= kMost && std::abs(int64_t{rect.y}) <= kMost;
}

/// The radii, reduced to fit into a rectangle and rounded down to units of a recipe.
Corners Fitted(const Corners& radii, const VuRect& rect) {
  const auto least = [](float r) { return r > 0 ? std::min(r, kFarthest) : 0.0f; };
  const Corners r{least(radii.topLeft), least(radii.topRight), least(radii.bottomRight),
                  least(radii.bottomLeft)};
  const auto width = static_cast<float>(rect.width), height = static_cast<float>(rect.height);
  float scale = 1;
  const auto fit = [&](float side, float a, float b) {
    if (a + b > side) scale = std::min(scale, side / (a + b));
  };
  fit(width, r.topLeft, r.topRight);
  fit(width, r.bottomLeft, r.bottomRight);
  fit(height, r.topLeft, r.bottomLeft);
  fit(height, r.topRight, r.bottomRight);
  const auto whole = [=](float radius) {
    return static_cast<float>(static_cast<int>(radius * scale * kUnitsPerPixel)) / kUnitsPerPixel;
  };
  return {whole(r.topLeft), whole(r.topRight), whole(r.bottomRight), whole(r.bottomLeft)};
}

/// Rounds up a length that is not negative. std::ceil() may be a library call, too slow for code
/// that runs on every call.
int Ceiling(float length) {
  const auto whole = static_cast<int>(length);
  return static_cast<float>(whole) < length ? whole + 1 : whole;
}

/// Divides a side with fixed ends `before` and `behind` that is constant between them.
Division Divide(int side, float before, float behind) {
  const int first = Ceiling(before), last = Ceiling(behind);
  if (first + last < side) return {first, 1, last};
  return {side, 0, 0};
}

/// Divides a rectangle whose corners have the radii `r` plus `more`, but at least `least`.
Window Divided(const VuRect& rect, const Corners& r, float more, float least) {
  const auto most = [=](float a, float b) { return std::max({a + more, b + more, least}); };
  return {0, 0, Divide(rect.width, most(r.topLeft, r.bottomLeft), most(r.topRight, r.bottomRight)),
          Divide(rect.height, most(r.topLeft, r.topRight), most(r.bottomLeft, r.bottomRight))};
}

/// Whether a shape is cached divided: if it is small or can be stretched.
bool IsKept(const Window& window) {
  return std::max(window.Width(), window.Height()) <= kMostDivided;
}

/// The smallest rectangle of whole pixels that reaches from `min` to `max`.
VuRect Around(Point min, Point max) {
  const auto x = static_cast<int>(std::floor(min.x())), y = static_cast<int>(std::floor(min.y()));
  return {x, y, static_cast<int>(std::ceil(max.x())) - x, static_cast<int>(std::ceil(max.y())) - y};
}

/// The smallest such rectangle around all points, with a margin of `more` on each side.
VuRect Around(const Points& points, float more) {
  Point min = points.data[0], max = min;
  for (const Point *p = points.data, *end = p + points.count; p < end; ++p) {
    min = {std::min(min.x(), p->x()), std::min(min.y(), p->y())};
    max = {std::max(max.x(), p->x()), std::max(max.y(), p->y())};
  }
  return Around(min - Point(more, more), max + Point(more, more));
}

void LogNoMemory(const char* what) {
  if (LogLevel >= 3) _vuSysLog(3, "error", "ZIRK", "no memory for %s", what);
}

/// Rounds to 1/4 pixel.
Point Snapped(Point p) {
  return {std::round(p.x() * 4) / 4, std::round(p.y() * 4) / 4};
}

}  // namespace

class Shapes::State {
 public:
  State(VuGraphics& graphics, uint32_t limit) : cache(graphics, limit) {}

  void Begin(Figure figure) { recipe = {static_cast<int32_t>(figure)}; }
  void Write(int32_t number) { recipe.push_back(number); }
  void WriteLength(float length) { Write(ToUnits(length)); }
  void WritePlace(Point p) {
    WriteLength(p.x());
    WriteLength(p.y());
  }
  void WriteRadii(const Corners& r) {
    for (const float radius : {r.topLeft, r.topRight, r.bottomRight, r.bottomLeft})
      WriteLength(radius);
  }
  void WritePoints(const Points& points, const VuRect& bounds) {
    Write(static_cast<int32_t>(points.count));
    const Point corner(static_cast<float>(bounds.x), static_cast<float>(bounds.y));
    for (size_t i = 0; i < points.count; ++i) WritePlace(points.data[i] - corner);
  }

  ShapePainter On(VuBitmap& target, const Paint& paint, const VuRect& bounds) {
    return {cache, gradient, target, paint, bounds};
  }

  /// Begins the recipe of a figure that is cached divided. Its size is that of the bounds less
  /// `reach` on each side.
  void BeginDivided(Figure figure, const VuRect& bounds, const Window& window, int reach);
  /// Draws that figure once its recipe is complete.
  void DrawDivided(VuBitmap& target, const VuRect& bounds, const Window& window,
                   const Paint& paint);
  void DrawRoundedRect(VuBitmap& target, const VuRect& rect, const Corners& radii, float thickness,
                       const Paint& paint);
  void DrawArc(VuBitmap& target, Point middle, float outer, float inner, float from, float sweep,
               Cap cap, const Paint& paint);

  CellCache cache;
  Recipe recipe, gradient;
};

Shapes::Shapes(VuGraphics& graphics, uint32_t cacheLimit)
    : state_(new (std::nothrow) State(graphics, cacheLimit)) {
  if (!state_) LogNoMemory("shapes");
}

Shapes::~Shapes() = default;

/// Calls `draw`. If memory runs out, logs an error and leaves the rest of the shape out.
template <typename F>
void Shapes::Run(F&& draw) {
  if (!state_) return;
  try {
    draw(*state_);
  } catch (const std::bad_alloc&) {
    LogNoMemory("a shape, which is left out");
  }
}

void Shapes::FillRect(VuBitmap& target, VuRect rect, const Paint& paint) {
  if (!IsDrawable(rect)) return;
  Run([&](State& state) { state.On(target, paint, rect).Fill(rect); });
}

void Shapes::State::BeginDivided(Figure figure, const VuRect& bounds, const Window& window,
                                 int reach) {
  Begin(figure);
  Write((IsKept(window) ? window.Width() : bounds.width) - 2 * reach);
  Write((IsKept(window) ? window.Height() : bounds.height) - 2 * reach);
}

void Shapes::State::DrawDivided(VuBitmap& target, const VuRect& bounds, const Window& window,
                                const Paint& paint) {
  ShapePainter painter(cache, gradient, target, paint, bounds);
  if (IsKept(window))
    painter.DrawStretched(recipe, window);
  else
    painter.Draw(recipe);
}

void Shapes::State::DrawRoundedRect(VuBitmap& target, const VuRect& rect, const Corners& radii,
                                    float thickness, const Paint& paint) {
  const Corners fitted = Fitted(radii, rect);
  const Window window = Divided(rect, fitted, 0, thickness);
  BeginDivided(Figure::RoundedRect, rect, window, 0);
  WriteLength(thickness);
  WriteRadii(fitted);
  DrawDivided(target, rect, window, paint);
}

void Shapes::FillRoundedRect(VuBitmap& target, VuRect rect, Corners radii, const Paint& paint) {
  if (!IsDrawable(rect)) return;
  Run([&](State& state) { state.DrawRoundedRect(target, rect, radii, 0, paint); });
}

void Shapes::DrawRoundedRect(VuBitmap& target, VuRect rect, Corners radii, float thickness,
                             const Paint& paint) {
  if (!IsDrawable(rect) || !IsLength(thickness)) return;
  const auto most = static_cast<float>(std::min(rect.width, rect.height));
  // A line of half the size or more fills the shape.
  const float line = 2 * thickness < most ? std::max(thickness, 1 / kUnitsPerPixel) : 0;
  Run([&](State& state) { state.DrawRoundedRect(target, rect, radii, line, paint); });
}

void Shapes::State::DrawArc(VuBitmap& target, Point middle, float outer, float inner, float from,
                            float sweep, Cap cap, const Paint& paint) {
  middle = Snapped(middle);
  // A square cap reaches farther than the ring.
  const float reach = outer + (cap == Cap::Butt ? 0 : (outer - inner) / 2);
  const VuRect bounds = Around(middle - Point(reach, reach), middle + Point(reach, reach));
  Begin(Figure::Arc);
  WritePlace(middle - Point(static_cast<float>(bounds.x), static_cast<float>(bounds.y)));
  WriteLength(outer);
  WriteLength(inner);
  Write(static_cast<int32_t>(std::lround(from * FigureRenderer::kUnitsPerDegree)));
  Write(static_cast<int32_t>(std::lround(sweep * FigureRenderer::kUnitsPerDegree)));
  Write(static_cast<int32_t>(cap));
  On(target, paint, bounds).Draw(recipe);
}

void Shapes::FillDisc(VuBitmap& target, Point middle, float radius, const Paint& paint) {
  if (!IsNear(middle) || !IsLength(radius)) return;
  Run([&](State& state) { state.DrawArc(target, middle, radius, 0, 0, 360, Cap::Butt, paint); });
}

void Shapes::DrawRing(VuBitmap& target, Point middle, float radius, float thickness,
                      const Paint& paint) {
  DrawArc(target, middle, radius, thickness, 0, 360, paint);
}

void Shapes::DrawArc(VuBitmap& target, Point middle, float radius, float thickness, float from,
                     float sweep, const Paint& paint, Cap cap) {
  if (!IsNear(middle) || !IsLength(radius) || !IsLength(thickness)) return;
  if (!std::isfinite(from) || !std::isfinite(sweep) || sweep == 0) return;
  const float inner = std::max(radius - thickness, 0.0f);
  const bool whole = std::fabs(sweep) >= 360;
  Run([&](State& state) {
    state.DrawArc(target, middle, radius, inner, whole ? 0 : std::remainder(from, 360.0f),
                  whole ? 360 : sweep, whole ? Cap::Butt : cap, paint);
  });
}

void Shapes::FillTriangle(VuBitmap& target, Point a, Point b, Point c, const Paint& paint) {
  FillPolygon(target, {a, b, c}, paint);
}

void Shapes::FillPolygon(VuBitmap& target, Points corners, const Paint& paint) {
  if (corners.count < 3 || !IsNear(corners)) return;
  Run([&](State& state) {
    const VuRect bounds = Around(corners, 0);
    state.Begin(Figure::Polygon);
    state.WritePoints(corners, bounds);
    state.On(target, paint, bounds).Draw(state.recipe);
  });
}

void Shapes::DrawLine(VuBitmap& target, Point from, Point to, Stroke stroke, const Paint& paint) {
  DrawPolyline(target, {from, to}, stroke, paint);
}

void Shapes::DrawPolyline(VuBitmap& target, Points points, Stroke stroke, const Paint& paint,
                          bool closed) {
  if (!IsNear(points) || !IsLength(stroke.width)) return;
  Run([&](State& state) {
    // A miter reaches two widths beyond its corner, everything else less than one.
    const bool miter = stroke.join == Join::Miter && points.count > 2;
    const VuRect bounds = Around(points, stroke.width * (miter ? 2.0f : 1.0f));
    state.Begin(Figure::Polyline);
    state.WriteLength(std::max(stroke.width, 1 / kUnitsPerPixel));
    state.Write(static_cast<int32_t>(stroke.join));
    state.Write(static_cast<int32_t>(stroke.cap));
    state.Write(closed);
    state.WritePoints(points, bounds);
    state.On(target, paint, bounds).Draw(state.recipe);
  });
}

void Shapes::DrawShadow(VuBitmap& target, VuRect rect, Corners radii, float blur, VuColor color) {
  if (!IsDrawable(rect)) return;
  if (!(blur >= 1)) return FillRoundedRect(target, rect, radii, color);
  Run([&](State& state) {
    const Corners fitted = Fitted(radii, rect);
    const auto reach = static_cast<int>(std::min(std::round(blur), kMostBlur));
    const VuRect bounds{rect.x - reach, rect.y - reach, rect.width + 2 * reach,
                        rect.height + 2 * reach};
    // The shadow of a corner extends as far inside the rectangle as outside.
    const Window window = Divided(bounds, fitted, static_cast<float>(2 * reach), 0);
    state.BeginDivided(Figure::Shadow, bounds, window, reach);
    state.Write(reach);
    state.WriteRadii(fitted);
    state.DrawDivided(target, bounds, window, color);
  });
}

void Shapes::DrawGlow(VuBitmap& target, Point middle, float radius, VuColor color) {
  if (!IsNear(middle) || !IsLength(radius)) return;
  Run([&](State& state) {
    state.Begin(Figure::Glow);
    state.Write(kGlowSide);
    const Cells* const cells = state.cache.Coverage(state.recipe, {0, 0, {kGlowSide}, {kGlowSide}});
    if (!cells) return;
    const Cell& glow = cells->front();
    glow.bitmap->SetScaleMode(VuScaleMode::Bilinear);
    const float scale = 2 * radius / kGlowSide;
    const auto scaled = [=](int length) { return static_cast<float>(length) * scale; };
    const VuTRect2D<float> place(middle.x() - radius + scaled(glow.place.x),
                                 middle.y() - radius + scaled(glow.place.y),
                                 scaled(glow.place.width), scaled(glow.place.height));
    target.DrawObject(place, *glow.bitmap, glow.bitmap->GetBounds(), VuTMatrix2D<float>(), color);
  });
}

uint32_t Shapes::GetCacheSize() const {
  return state_ ? state_->cache.Bytes() : 0;
}

void Shapes::ClearCache() {
  if (state_) state_->cache.Clear();
}

}  // namespace ZIRK::kit
