#include "scenes/model.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace ZIRK::model {

namespace {

Pixel Decode(const Layout& layout, const uint8_t* p) {
  uint32_t word = 0;
  for (size_t i = 0; i < layout.bytes; ++i) word |= uint32_t{p[i]} << 8 * i;
  Pixel pixel;
  for (size_t c = 0; c < 4; ++c) {
    const uint32_t most = (1u << layout.bits[c]) - 1;
    pixel[c] = most ? double(word >> layout.shift[c] & most) / most : 1;
  }
  return pixel;
}

struct Vec {
  double x, y;
};

Pixel Premultiplied(VuColor c) {
  const double a = (c.argb >> 24) / 255.0;
  return {(c.argb >> 16 & 255) / 255.0 * a, (c.argb >> 8 & 255) / 255.0 * a,
          (c.argb & 255) / 255.0 * a, a};
}

Vec Mapped(const Operation& op, double x, double y) {
  double m[9];
  // The sine of half a turn is not quite zero.
  std::transform(op.matrix.get(), op.matrix.get() + 9, m,
                 [](float e) { return std::abs(e) < 1e-6f ? 0 : double(e); });
  return {x * m[0] + y * m[3] + m[6], x * m[1] + y * m[4] + m[7]};
}

Vec NearestPixel(Vec v) {
  return {std::floor(v.x + 0.5), std::floor(v.y + 0.5)};
}

/// Where the unit square of the operation lies: corner 0, and the ways to corners 1 and 3.
struct Shape {
  Vec origin, across, down;
  bool hard;

  explicit Shape(const Operation& op) {
    Vec c0 = Mapped(op, op.x, op.y), c1 = Mapped(op, op.x + op.width, op.y);
    Vec c3 = Mapped(op, op.x, op.y + op.height);
    const auto near = [](double a, double b) { return std::abs(a - b) < 0.002; };
    const bool aligned =
        (near(c0.y, c1.y) && near(c0.x, c3.x)) || (near(c0.x, c1.x) && near(c0.y, c3.y));
    hard = aligned && !op.subPixel;
    for (Vec* c : {&c0, &c1, &c3})
      if (hard) *c = NearestPixel(*c);
    origin = c0;
    across = {c1.x - c0.x, c1.y - c0.y};
    down = {c3.x - c0.x, c3.y - c0.y};
  }

  Vec Unit(double x, double y) const {
    const double det = across.x * down.y - across.y * down.x;
    const double dx = x - origin.x, dy = y - origin.y;
    return {(dx * down.y - dy * down.x) / det, (dy * across.x - dx * across.y) / det};
  }
};

/// The part of the unit square for which there is any source.
struct Part {
  double u0 = 0, v0 = 0, u1 = 1, v1 = 1;

  explicit Part(const Operation& op) {
    if (!op.source.picture) return;
    u0 = std::max(u0, -op.srcX / op.srcWidth);
    v0 = std::max(v0, -op.srcY / op.srcHeight);
    u1 = std::min(u1, (op.source.picture->width - op.srcX) / op.srcWidth);
    v1 = std::min(v1, (op.source.picture->height - op.srcY) / op.srcHeight);
  }

  /// Whether one of its edges runs through the middle of the pixel at `unit`.
  bool CutsThrough(Vec unit, const Shape& shape) const {
    const double sizeU = std::hypot(shape.across.x, shape.across.y);
    const double sizeV = std::hypot(shape.down.x, shape.down.y);
    return std::abs(unit.x - u0) * sizeU < 0.01 || std::abs(unit.x - u1) * sizeU < 0.01 ||
           std::abs(unit.y - v0) * sizeV < 0.01 || std::abs(unit.y - v1) * sizeV < 0.01;
  }
};

struct Coverage {
  double share;  ///< Of the pixel, what lies in the part.
  bool near;     ///< An edge of the part is less than 0.75 pixels away from its middle.
};

/// Cuts `from`..`to` of a way from `a` to `b`, which are 0 and 1, to where `low` and `high` are
/// kept.
void CutWay(double a, double b, double low, double high, double& from, double& to) {
  if (std::abs(b - a) < 1e-12) {
    if (a <= low || a >= high) to = from;
    return;
  }
  const auto [enter, leave] = std::minmax({(low - a) / (b - a), (high - a) / (b - a)});
  from = std::max(from, enter);
  to = std::min(to, leave);
}

Coverage CoverageOf(const Shape& shape, const Part& part, int x, int y) {
  const Vec unit = shape.Unit(x + 0.5, y + 0.5);
  const double depthU = std::min(unit.x - part.u0, part.u1 - unit.x);
  const double depthV = std::min(unit.y - part.v0, part.v1 - unit.y);
  const double det = std::abs(shape.across.x * shape.down.y - shape.across.y * shape.down.x);
  if (det == 0 || part.u0 >= part.u1 || part.v0 >= part.v1) return {0, false};
  const double reachU = shape.hard ? 0 : 0.75 * std::hypot(shape.down.x, shape.down.y) / det;
  const double reachV = shape.hard ? 0 : 0.75 * std::hypot(shape.across.x, shape.across.y) / det;
  if (depthU <= -reachU || depthV <= -reachV) return {0, false};
  if (depthU > reachU && depthV > reachV) return {1, false};
  constexpr int kRows = 64;
  double share = 0;
  for (int i = 0; i < kRows; ++i) {
    const double row = y + (i + 0.5) / kRows;
    const Vec left = shape.Unit(x, row), right = shape.Unit(x + 1, row);
    double from = 0, to = 1;
    CutWay(left.x, right.x, part.u0, part.u1, from, to);
    CutWay(left.y, right.y, part.v0, part.v1, from, to);
    share += std::max(to - from, 0.0) / kRows;
  }
  return {share, true};
}

struct Limits {
  int x0, y0, x1, y1;
};

/// `v`, off the border of two texels to the side that reading goes to; 0 if it may be either.
double OffBorder(double v, double forward, bool& ambiguous) {
  const double distance = std::abs(v - std::round(v));
  if (distance < 1e-9 && forward != 0) return v + std::copysign(0.01, forward);
  ambiguous = ambiguous || distance < 0.01;
  return v;
}

Pixel Sample(const Operand& o, Vec at, Vec forward, const Limits& limits, bool& ambiguous) {
  const auto pixel = [&](int x, int y) {
    return o.picture->At(std::clamp(x, limits.x0, limits.x1 - 1),
                         std::clamp(y, limits.y0, limits.y1 - 1));
  };
  if (!o.bilinear) {
    const double x = OffBorder(at.x, forward.x, ambiguous);
    const double y = OffBorder(at.y, forward.y, ambiguous);
    return pixel(static_cast<int>(std::floor(x)), static_cast<int>(std::floor(y)));
  }
  const double fx = at.x - 0.5, fy = at.y - 0.5;
  const int ix = static_cast<int>(std::floor(fx)), iy = static_cast<int>(std::floor(fy));
  const double wx = fx - ix, wy = fy - iy;
  Pixel result{};
  for (size_t c = 0; c < 4; ++c)
    result[c] = (pixel(ix, iy)[c] * (1 - wx) + pixel(ix + 1, iy)[c] * wx) * (1 - wy) +
                (pixel(ix, iy + 1)[c] * (1 - wx) + pixel(ix + 1, iy + 1)[c] * wx) * wy;
  return result;
}

Pixel SourceColor(const Operation& op, Vec unit, Vec forward, bool& ambiguous) {
  Pixel color = Premultiplied(op.color);
  if (!op.source.picture) return color;
  const Picture& p = *op.source.picture;
  const Limits limits = {std::max(0, static_cast<int>(std::floor(op.srcX))),
                         std::max(0, static_cast<int>(std::floor(op.srcY))),
                         std::min(p.width, static_cast<int>(std::ceil(op.srcX + op.srcWidth))),
                         std::min(p.height, static_cast<int>(std::ceil(op.srcY + op.srcHeight)))};
  const Vec at = {op.srcX + unit.x * op.srcWidth, op.srcY + unit.y * op.srcHeight};
  const Pixel sample = Sample(op.source, at, forward, limits, ambiguous);
  for (size_t c = 0; c < 4; ++c) color[c] *= sample[c];
  return color;
}

double MaskAlpha(const Operation& op, Vec at, Vec forward, bool& ambiguous) {
  const Limits all = {0, 0, op.mask.picture->width, op.mask.picture->height};
  return Sample(op.mask, at, forward, all, ambiguous)[3];
}

/// Where the mask is read at `unit`.
Vec PlaceInMask(const Operation& op, Vec unit) {
  const double w = op.mask.picture->width, h = op.mask.picture->height;
  Vec corner[4] = {{0, 0}, {w, 0}, {w, h}, {0, h}};
  for (int i = 0; op.maskCoords && i < 4; ++i)
    corner[i] = {double(op.maskCoords[i].x()), double(op.maskCoords[i].y())};
  const double weight[4] = {(1 - unit.x) * (1 - unit.y), unit.x * (1 - unit.y), unit.x * unit.y,
                            (1 - unit.x) * unit.y};
  Vec at = {0, 0};
  for (int i = 0; i < 4; ++i) {
    at.x += corner[i].x * weight[i];
    at.y += corner[i].y * weight[i];
  }
  return at;
}

/// Where the mask is read at `step` of a line, which is 0 at its start and 1 at its end. Without
/// coordinates it lies over the line's pixels as they are before the matrix.
Vec PlaceInMaskOfLine(const Operation& op, double step) {
  const auto along = [&](double start, double extent, int side) {
    const double first = start - std::min(start, start + extent) + 0.5;
    return (first + step * extent) / (std::abs(extent) + 1) * side;
  };
  if (!op.maskCoords)
    return {along(op.x, op.width, op.mask.picture->width),
            along(op.y, op.height, op.mask.picture->height)};
  const auto between = [step](float a, float b) { return double(a) + step * double(b - a); };
  return {between(op.maskCoords[0].x(), op.maskCoords[1].x()),
          between(op.maskCoords[0].y(), op.maskCoords[1].y())};
}

double FactorValue(VuBlendingFactor f, const Pixel& s, const Pixel& d, const Pixel& k, size_t c) {
  constexpr auto kSaturate = VuBlendingFactor::SrcAlphaSaturate;
  if (f == kSaturate) return c == 3 ? 1 : std::min(s[3], 1 - d[3]);
  // The others come in pairs: a value, and what it lacks of one.
  const double values[] = {0, s[c], s[3], d[3], d[c], k[c], k[3]};
  const size_t i = static_cast<size_t>(f) - (f > kSaturate ? 1 : 0);
  return i % 2 ? 1 - values[i / 2] : values[i / 2];
}

Pixel Blend(const Operation& op, const Pixel& s, const Pixel& d) {
  if (!op.blend) return s;
  const Pixel k = Premultiplied(op.blendColor);
  Pixel result{};
  for (size_t c = 0; c < 4; ++c) {
    const double sf = FactorValue(c == 3 ? op.factors.srcAlpha : op.factors.srcColor, s, d, k, c);
    const double df = FactorValue(c == 3 ? op.factors.dstAlpha : op.factors.dstColor, s, d, k, c);
    result[c] = std::min(1.0, s[c] * sf + d[c] * df);
  }
  return result;
}

}  // namespace

const Layout& LayoutOf(VuPixelFormat format) {
  static constexpr Layout kLayouts[] = {
      {4, {8, 8, 8, 8}, {16, 8, 0, 24}},  // ARGB8888
      {4, {8, 8, 8, 0}, {16, 8, 0, 24}},  // XRGB8888
      {2, {5, 6, 5, 0}, {11, 5, 0, 0}},   // RGB565
      {2, {4, 4, 4, 4}, {8, 4, 0, 12}},   // ARGB4444
      {2, {5, 5, 5, 1}, {10, 5, 0, 15}},  // ARGB1555
      {1, {8, 8, 8, 8}, {0, 0, 0, 0}},    // A8
  };
  return kLayouts[static_cast<size_t>(format)];
}

Picture::Picture(VuBitmap& bitmap) {
  const VuRect bounds = bitmap.GetBounds();
  width = bounds.width;
  height = bounds.height;
  format = bitmap.GetInfo().format;
  const Layout& layout = LayoutOf(format);
  std::vector<uint8_t> raw(static_cast<size_t>(width * height) * layout.bytes);
  bitmap.GetPixels(bounds, raw.data());
  for (size_t i = 0; i < static_cast<size_t>(width * height); ++i)
    pixels.push_back(Decode(layout, &raw[i * layout.bytes]));
}

namespace {

bool IsClipped(const VuRect& clip, int x, int y) {
  return x < clip.x || y < clip.y || x >= int64_t{clip.x} + clip.width ||
         y >= int64_t{clip.y} + clip.height;
}

Outcome DrawLine(const Operation& op, const Pixel& before, int x, int y) {
  Outcome outcome{before, 0, false, false};
  const Vec from = NearestPixel(Mapped(op, op.x, op.y));
  const Vec to = NearestPixel(Mapped(op, op.x + op.width, op.y + op.height));
  const Vec way = {to.x - from.x, to.y - from.y};
  const bool flat = std::abs(way.x) >= std::abs(way.y);
  const double steps = flat ? way.x : way.y;
  const double step = steps == 0 ? 0 : (flat ? x - from.x : y - from.y) / steps;
  const double off = flat ? y - from.y - step * way.y : x - from.x - step * way.x;
  // Halfway between two pixels it takes the one that lies further along the surface.
  if (step < 0 || step > 1 || off < -0.499999 || off > 0.500001) return outcome;
  outcome.share = 1;
  Pixel source = Premultiplied(op.color);
  if (op.mask.picture) {
    const double masked = MaskAlpha(op, PlaceInMaskOfLine(op, step), {0, 0}, outcome.ambiguous);
    for (double& channel : source) channel *= masked;
  }
  outcome.value = Blend(op, source, before);
  return outcome;
}

Outcome DrawShape(const Operation& op, const Shape& shape, const Part& part, const Pixel& before,
                  int x, int y) {
  const Vec unit = shape.Unit(x + 0.5, y + 0.5);
  const Coverage coverage = CoverageOf(shape, part, x, y);
  const bool ambiguous = shape.hard && part.CutsThrough(unit, shape);
  Outcome outcome{before, coverage.share, !shape.hard && coverage.near, ambiguous};
  if (coverage.share == 0) return outcome;
  const Vec next = shape.Unit(x + 1.5, y + 1.5);
  const Vec forward = shape.hard ? Vec{next.x - unit.x, next.y - unit.y} : Vec{0, 0};
  Pixel source = SourceColor(op, unit, forward, outcome.ambiguous);
  double masked = coverage.share;
  if (op.mask.picture)
    masked *= MaskAlpha(op, PlaceInMask(op, unit), op.maskCoords ? Vec{0, 0} : forward,
                        outcome.ambiguous);
  for (double& channel : source) channel *= masked;
  outcome.value = Blend(op, source, before);
  return outcome;
}

}  // namespace

std::vector<Outcome> Draw(const Operation& op, const Picture& target) {
  const Shape shape(op);
  const Part part(op);
  std::vector<Outcome> outcomes;
  for (int y = 0; y < target.height; ++y)
    for (int x = 0; x < target.width; ++x) {
      const Pixel& before = target.At(x, y);
      if (IsClipped(op.clip, x, y))
        outcomes.push_back({before, 0, false, false});
      else
        outcomes.push_back(op.line ? DrawLine(op, before, x, y)
                                   : DrawShape(op, shape, part, before, x, y));
    }
  return outcomes;
}

}  // namespace ZIRK::model
