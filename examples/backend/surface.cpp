#include "surface.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <new>

#include "graphics.h"

namespace ZIRK::plain {

namespace {

using Channels = std::array<double, 4>;

Channels Unpack(uint32_t argb) {
  return {(argb & 255) / 255.0, (argb >> 8 & 255) / 255.0, (argb >> 16 & 255) / 255.0,
          (argb >> 24) / 255.0};
}

uint32_t Pack(const Channels& channels) {
  uint32_t argb = 0;
  for (size_t c = 4; c-- > 0;)
    argb = argb << 8 | static_cast<uint32_t>(std::lround(std::clamp(channels[c], 0.0, 1.0) * 255));
  return argb;
}

Channels Premultiplied(VuColor color) {
  Channels channels = Unpack(color.argb);
  for (size_t c = 0; c < 3; ++c) channels[c] *= channels[3];
  return channels;
}

uint32_t AlphaOnly(uint32_t argb) {
  return (argb >> 24) * 0x01010101u;
}

Point Map(const Matrix& m, double x, double y) {
  const float* const e = m.get();
  return {x * double(e[0]) + y * double(e[3]) + double(e[6]),
          x * double(e[1]) + y * double(e[4]) + double(e[7])};
}

Point Rounded(Point p) {
  return {std::floor(p.x + 0.5), std::floor(p.y + 0.5)};
}

Box ToBox(const VuRect& r) {
  return {double(r.x), double(r.y), double(r.width), double(r.height)};
}
Box ToBox(const VuTRect2D<float>& r) {
  return {double(r.x()), double(r.y()), double(r.width()), double(r.height())};
}

/// Clamps `v` to the range; a NaN becomes its beginning.
double Nearest(double v, double first, double last) {
  return v > first ? std::min(v, last) : first;
}

/// The intersection of two boxes, which may be empty.
Box Intersection(const Box& a, const Box& b) {
  const double x = std::max(a.x, b.x), y = std::max(a.y, b.y);
  return {x, y, std::min(a.x + a.width, b.x + b.width) - x,
          std::min(a.y + a.height, b.y + b.height) - y};
}

/// `at` is (0, 0) at the first corner and (1, 1) at the third.
Point Between(const std::array<Point, 4>& corners, Point at) {
  const double weights[4] = {(1 - at.x) * (1 - at.y), at.x * (1 - at.y), at.x * at.y,
                             (1 - at.x) * at.y};
  Point p{0, 0};
  for (size_t i = 0; i < 4; ++i) {
    p.x += corners[i].x * weights[i];
    p.y += corners[i].y * weights[i];
  }
  return p;
}

/// The place of a mapped box: its first corner, and the two edges from there.
struct Place {
  Point origin, across, down;
  double area;
  bool upright;  ///< On whole pixels: a part of it consists of the pixels whose centres are inside.

  Place(const Operation& op) {
    const Box& b = op.box;
    Point p0 = Map(op.matrix, b.x, b.y), p1 = Map(op.matrix, b.x + b.width, b.y);
    Point p3 = Map(op.matrix, b.x, b.y + b.height);
    const auto near = [](double u, double v) { return std::abs(u - v) < 1.0 / 512; };
    upright = op.wholePixels &&
              ((near(p0.y, p1.y) && near(p0.x, p3.x)) || (near(p0.x, p1.x) && near(p0.y, p3.y)));
    if (upright)
      for (Point* p : {&p0, &p1, &p3}) *p = Rounded(*p);
    origin = p0;
    across = {p1.x - p0.x, p1.y - p0.y};
    down = {p3.x - p0.x, p3.y - p0.y};
    area = across.x * down.y - across.y * down.x;
  }

  Point ToUnit(double x, double y) const {
    const double dx = x - origin.x, dy = y - origin.y;
    return {(dx * down.y - dy * down.x) / area, (dy * across.x - dx * across.y) / area};
  }

  Box Bounds() const {
    const double right = std::max(across.x, 0.0) + std::max(down.x, 0.0);
    const double bottom = std::max(across.y, 0.0) + std::max(down.y, 0.0);
    const double left = std::min(across.x, 0.0) + std::min(down.x, 0.0);
    const double top = std::min(across.y, 0.0) + std::min(down.y, 0.0);
    return {origin.x + left, origin.y + top, right - left, bottom - top};
  }

  /// The share of a pixel that lies in `part` of the unit square, counted at 64 points.
  double Coverage(int x, int y, const Box& part) const {
    const int side = upright ? 1 : 8;
    int inside = 0;
    for (int i = 0; i < side * side; ++i) {
      const Point p = ToUnit(x + (i % side + 0.5) / side, y + (i / side + 0.5) / side);
      inside +=
          p.x >= part.x && p.y >= part.y && p.x < part.x + part.width && p.y < part.y + part.height;
    }
    return double(inside) / (side * side);
  }
};

double Factor(VuBlendingFactor f, size_t c, const Channels& s, const Channels& d,
              const Channels& k) {
  const double values[] = {0,
                           1,
                           s[c],
                           1 - s[c],
                           s[3],
                           1 - s[3],
                           d[3],
                           1 - d[3],
                           d[c],
                           1 - d[c],
                           c == 3 ? 1 : std::min(s[3], 1 - d[3]),
                           k[c],
                           1 - k[c],
                           k[3],
                           1 - k[3]};
  const auto index = static_cast<uint32_t>(f);
  return index < std::size(values) ? values[index] : 0;
}

/// Makes the bitmaps of glyph atlases. A font keeps a pointer to the maker of its atlas, and may
/// outlive the context that it was first drawn in. The maker is therefore never destroyed: a
/// plug-in has no static objects with destructors.
Graphics& AtlasMaker() {
  alignas(Graphics) static unsigned char room[sizeof(Graphics)];
  static Graphics* const maker = new (room) Graphics;
  return *maker;
}

/// Adds the time of its scope, in microseconds, while statistics are asked for.
class Timer {
 public:
  explicit Timer(uint32_t& total) : total_(total) {}
  ~Timer() {
    const auto spent = std::chrono::steady_clock::now() - start_;
    if (LogPerf)
      total_ += uint32_t(std::chrono::duration_cast<std::chrono::microseconds>(spent).count());
  }

 private:
  uint32_t& total_;
  const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

/// Held while text is drawn: another thread that draws with the same font could move its glyphs.
std::mutex textMutex;

}  // namespace

// --- State ---------------------------------------------------------------------------------------

Surface::Surface(LiveSurfaces& live, int width, int height, VuPixelFormat format)
    : live_(live),
      width_(width),
      height_(height),
      format_(format),
      pixels_(static_cast<size_t>(width) * static_cast<size_t>(height)),
      clip_{0, 0, width, height} {
  SetBlendingFunc(VuBlendingFactor::One, VuBlendingFactor::OneMinusSrcAlpha);
  const std::lock_guard lock(live_.mutex);
  live_.surfaces.insert(this);
}

Surface::~Surface() {
  const std::lock_guard lock(live_.mutex);
  live_.surfaces.erase(this);
}

void Surface::SetName(const char* name) {
  const std::lock_guard lock(live_.mutex);
  name_ = name ? name : "";
}

void Surface::Print(unsigned key, std::ostream& os) const {
  os << "bitmap " << reinterpret_cast<const void*>(reinterpret_cast<uintptr_t>(this) ^ key) << " \""
     << name_ << "\" " << width_ << "x" << height_ << '\n';
}

VuBitmapInfo Surface::GetInfo() const {
  return {width_, height_, format_, format_ == VuPixelFormat::A8 ? width_ : width_ * 4, nullptr};
}

void Surface::GetBlendingFunc(VuBlendingFactor& src, VuBlendingFactor& dst) const {
  src = factors_[0];
  dst = factors_[1];
}

void Surface::SetBlendingFunc(VuBlendingFactor src, VuBlendingFactor dst) {
  factors_ = {src, dst, src, dst};
}

void Surface::SetBlendingFunc(VuBlendingFactor srcColor, VuBlendingFactor dstColor,
                              VuBlendingFactor srcAlpha, VuBlendingFactor dstAlpha) {
  factors_ = {srcColor, dstColor, srcAlpha, dstAlpha};
}

// --- Pixels --------------------------------------------------------------------------------------

uint32_t& Surface::At(int x, int y) {
  return pixels_[static_cast<size_t>(y) * static_cast<size_t>(width_) + static_cast<size_t>(x)];
}

void Surface::Clear(VuColor color) {
  const uint32_t pixel = Pack(Premultiplied(color));
  std::fill(pixels_.begin(), pixels_.end(),
            format_ == VuPixelFormat::A8 ? AlphaOnly(pixel) : pixel);
}

bool Surface::Contains(const VuRect& r) const {
  return r.x >= 0 && r.y >= 0 && r.width >= 0 && r.height >= 0 && r.x <= width_ && r.y <= height_ &&
         r.width <= width_ - r.x && r.height <= height_ - r.y;
}

bool Surface::GetPixels(VuRect rect, void* dst) {
  if (!dst || !Contains(rect)) return false;
  auto* out = static_cast<uint8_t*>(dst);
  for (int y = rect.y; y < rect.y + rect.height; ++y)
    for (int x = rect.x; x < rect.x + rect.width; ++x) {
      const uint32_t pixel = At(x, y);
      const size_t bytes = format_ == VuPixelFormat::A8 ? 1 : 4;
      std::memcpy(out, &pixel, bytes);  // The bytes of an A8 pixel are all alike.
      out += bytes;
    }
  return true;
}

bool Surface::SetPixels(VuRect rect, const void* src, unsigned int pitch) {
  if (!src || !Contains(rect)) return false;
  const auto* row = static_cast<const uint8_t*>(src);
  for (int y = rect.y; y < rect.y + rect.height; ++y, row += pitch)
    for (int i = 0; i < rect.width; ++i) {
      uint32_t& pixel = At(rect.x + i, y);
      if (format_ == VuPixelFormat::A8) pixel = row[i] * 0x01010101u;
      if (format_ != VuPixelFormat::A8) std::memcpy(&pixel, row + ptrdiff_t{4} * i, 4);
    }
  return true;
}

bool Surface::CopyPixels(VuPoint dst, VuBitmapImpl* src, VuRect srcRect) {
  auto* const from = dynamic_cast<Surface*>(src);
  if (!from) return false;
  const std::vector<uint32_t> before = from->pixels_;
  const double dx = double(dst.x) - srcRect.x, dy = double(dst.y) - srcRect.y;
  Box part = Intersection(ToBox(srcRect), ToBox(from->GetBounds()));
  part = Intersection(part, {-dx, -dy, double(width_), double(height_)});
  for (int y = 0; y < part.height; ++y)
    for (int x = 0; x < part.width; ++x) {
      const int fromX = int(part.x) + x, fromY = int(part.y) + y;
      const uint32_t pixel = before[static_cast<size_t>(fromY * from->width_ + fromX)];
      At(int(fromX + dx), int(fromY + dy)) =
          format_ == VuPixelFormat::A8 ? AlphaOnly(pixel) : pixel;
    }
  return true;
}

// --- Drawing -------------------------------------------------------------------------------------

Channels Texture::Sample(Point at, const Box& limits) const {
  const auto texel = [&](double x, double y) {
    x = Nearest(std::floor(x), limits.x, limits.x + limits.width - 1);
    y = Nearest(std::floor(y), limits.y, limits.y + limits.height - 1);
    return Unpack(pixels[static_cast<size_t>(y) * static_cast<size_t>(width) + size_t(x)]);
  };
  if (!smooth) return texel(at.x, at.y);
  const double x = std::floor(at.x - 0.5), y = std::floor(at.y - 0.5);
  const double right = at.x - 0.5 - x, below = at.y - 0.5 - y;
  const Channels t[] = {texel(x, y), texel(x + 1, y), texel(x, y + 1), texel(x + 1, y + 1)};
  Channels mixed{};
  for (size_t c = 0; c < 4; ++c)
    mixed[c] = (t[0][c] * (1 - right) + t[1][c] * right) * (1 - below) +
               (t[2][c] * (1 - right) + t[3][c] * right) * below;
  return mixed;
}

/// The pixels to read from `from`. If it is this surface itself, they are a copy.
Texture Surface::Read(const Surface& from, bool smooth, std::vector<uint32_t>& copy) const {
  if (&from == this) copy = pixels_;
  return {&from == this ? copy.data() : from.pixels_.data(), from.width_, from.height_, smooth};
}

/// Returns false for a mask of another backend. Null coordinates map the whole mask to the box.
bool Surface::SetMask(Operation& op, VuBitmapImpl* mask, const VuTVector2D<float>* coords) const {
  op.mask = dynamic_cast<Surface*>(mask);
  if (!mask) return true;
  if (!op.mask) return false;
  const double w = op.mask->width_, h = op.mask->height_;
  op.maskCorners = {Point{0, 0}, {w, 0}, {w, h}, {0, h}};
  for (size_t i = 0; coords && i < 4; ++i)
    op.maskCorners[i] = {double(coords[i].x()), double(coords[i].y())};
  return true;
}

void Surface::Draw(const Operation& op) {
  const Timer timer(draw_time);
  try {
    Paint(op);
  } catch (const std::bad_alloc&) {
    ZIRK_LOG_ERROR("Plain: no memory to draw with");
  }
}
//! [paint]
void Surface::Paint(const Operation& op) {
  const Place place(op);
  if (!(op.box.width > 0 && op.box.height > 0 && std::isnormal(place.area))) return;
  Box visible = Intersection(ToBox(clip_), ToBox(GetBounds()));
  visible = Intersection(visible, place.Bounds());
  if (!(visible.width > 0 && visible.height > 0)) return;

  std::vector<uint32_t> copy, maskCopy;
  Texture source{}, mask{};
  Box inside{0, 0, 1, 1}, limits{}, maskLimits{};
  if (op.source) {
    source = Read(*op.source, op.smooth, copy);
    limits = Intersection(op.part, ToBox(op.source->GetBounds()));
    if (!(limits.width > 0 && limits.height > 0)) return;
    inside = {(limits.x - op.part.x) / op.part.width, (limits.y - op.part.y) / op.part.height,
              limits.width / op.part.width, limits.height / op.part.height};
    // Filtering reads every pixel that the part touches.
    const double right = std::ceil(limits.x + limits.width);
    const double bottom = std::ceil(limits.y + limits.height);
    limits = {std::floor(limits.x), std::floor(limits.y), right - std::floor(limits.x),
              bottom - std::floor(limits.y)};
  }
  if (op.mask) {
    mask = Read(*op.mask, op.mask->scaleMode_ == VuScaleMode::Bilinear, maskCopy);
    maskLimits = ToBox(op.mask->GetBounds());
  }

  const Channels color = Premultiplied(op.color);
  for (int y = int(std::floor(visible.y)); y < visible.y + visible.height; ++y)
    for (int x = int(std::floor(visible.x)); x < visible.x + visible.width; ++x) {
      double coverage = place.Coverage(x, y, inside);
      if (coverage == 0) continue;
      Channels painted = color;
      const Point unit = place.ToUnit(x + 0.5, y + 0.5);
      if (op.source) {
        const Point at{op.part.x + unit.x * op.part.width, op.part.y + unit.y * op.part.height};
        const Channels sample = source.Sample(at, limits);
        for (size_t c = 0; c < 4; ++c) painted[c] *= sample[c];
      }
      if (op.mask) coverage *= mask.Sample(Between(op.maskCorners, unit), maskLimits)[3];
      for (double& channel : painted) channel *= coverage;
      Blend(At(x, y), painted);
    }
}
//! [paint]

void Surface::Blend(uint32_t& pixel, const Channels& source) const {
  Channels result = source;
  if (blend_) {
    const Channels before = Unpack(pixel), constant = Premultiplied(blendColor_);
    for (size_t c = 0; c < 4; ++c) {
      const size_t alpha = c == 3 ? 2 : 0;
      result[c] = source[c] * Factor(factors_[alpha], c, source, before, constant) +
                  before[c] * Factor(factors_[alpha + 1], c, source, before, constant);
    }
  }
  pixel = format_ == VuPixelFormat::A8 ? AlphaOnly(Pack(result)) : Pack(result);
}

void Surface::DrawPoint(VuPoint p, float size, VuColor color, Matrix m, VuBitmapImpl* mask,
                        VuTVector2D<float> at) {
  const double side = double(size);
  Operation op{{p.x + 0.5 - side / 2, p.y + 0.5 - side / 2, side, side}, m, color};
  const VuTVector2D<float> everywhere[4] = {at, at, at, at};
  if (SetMask(op, mask, everywhere)) Draw(op);
}

/// Draws pixel by pixel along the longer direction, always from top to bottom, so that a line has
/// the same pixels in both directions.
void Surface::DrawLine(VuPoint from, VuPoint to, VuColor color, Matrix m, VuBitmapImpl* mask,
                       VuTVector2D<float>* coords) {
  Point a = Rounded(Map(m, from.x, from.y)), b = Rounded(Map(m, to.x, to.y));
  const float* const e = m.get();
  const bool regular = std::isnormal(double(e[0]) * double(e[4]) - double(e[1]) * double(e[3]));
  if (!regular || !std::isfinite(a.x + a.y + b.x + b.y)) return;
  Operation op{{0, 0, 1, 1}, Matrix(), color};
  if (!SetMask(op, mask, nullptr)) return;

  Point maskFrom = op.maskCorners[0], maskTo = op.maskCorners[2];
  if (coords) {
    maskFrom = {double(coords[0].x()), double(coords[0].y())};
    maskTo = {double(coords[1].x()), double(coords[1].y())};
  }
  if (std::pair(a.y, a.x) > std::pair(b.y, b.x)) {
    std::swap(a, b);
    std::swap(maskFrom, maskTo);
  }
  const double dx = b.x - a.x, dy = b.y - a.y;
  const bool flat = std::abs(dx) >= std::abs(dy);
  const double start = flat ? a.x : a.y, length = flat ? dx : dy;
  for (int at = 0; at < (flat ? width_ : height_); ++at) {
    const double share = length != 0 ? (at - start) / length : at == start ? 0 : -1;
    if (share < 0 || share > 1) continue;
    const Point p = Rounded({flat ? at : a.x + dx * share, flat ? a.y + dy * share : at});
    op.box = {p.x, p.y, 1, 1};
    op.maskCorners.fill({maskFrom.x + (maskTo.x - maskFrom.x) * share,
                         maskFrom.y + (maskTo.y - maskFrom.y) * share});
    Draw(op);
  }
}

void Surface::DrawRect(VuRect rect, VuColor color, Matrix m, VuBitmapImpl* mask,
                       VuTVector2D<float>* coords) {
  Operation op{ToBox(rect), m, color};
  if (SetMask(op, mask, coords)) Draw(op);
}

void Surface::DrawObject(VuRect dst, VuBitmapImpl* src, VuRect srcRect, Matrix m, VuColor color,
                         VuBitmapImpl* mask, VuTVector2D<float>* coords) {
  auto* const source = dynamic_cast<Surface*>(src);
  if (!source) return;
  const bool smooth = source->scaleMode_ == VuScaleMode::Bilinear;
  Operation op{ToBox(dst), m, color, true, source, ToBox(srcRect), smooth};
  if (SetMask(op, mask, coords)) Draw(op);
}

void Surface::DrawObject(VuTRect2D<float> dst, VuBitmapImpl* src, VuTRect2D<float> srcRect,
                         Matrix m, VuColor color, VuBitmapImpl* mask, VuTVector2D<float>* coords) {
  auto* const source = dynamic_cast<Surface*>(src);
  if (!source) return;
  const bool smooth = source->scaleMode_ == VuScaleMode::Bilinear;
  Operation op{ToBox(dst), m, color, false, source, ToBox(srcRect), smooth};
  if (SetMask(op, mask, coords)) Draw(op);
}

// --- Text ----------------------------------------------------------------------------------------

//! [text]
/// The font walks along the line and renders each glyph into its atlas, which is one of this
/// backend's surfaces; a glyph is then a blit from the atlas. It is drawn before the next one is
/// requested, which may move the atlas to a larger surface.
void Surface::DrawText(VuFontImpl* font, const char* text, VuPoint pos, VuColor color, Matrix m,
                       VuBitmapImpl* mask, VuTVector2D<float>* coords, VuRect rect) try {
  const auto* const face = dynamic_cast<const VuFontAtlas*>(font);
  if (!face || !text) return;
  const Box line{double(pos.x), double(pos.y), double(face->GetOneLineWidth(text)),
                 double(face->GetOneLineHeight())};
  Operation op{{}, m, color};
  if (!SetMask(op, mask, coords) || (mask && line.width <= 0)) return;
  const std::array<Point, 4> lineCorners = op.maskCorners;
  const bool clips = rect.x != 0 || rect.y != 0 || rect.width != 0 || rect.height != 0;

  const std::lock_guard lock(textMutex);
  const std::shared_ptr<VuTextureAtlasImpl> atlas = face->GetAtlas(&AtlasMaker());
  if (!atlas) return;
  op.smooth = true;
  TextCursor cursor(text);
  while (const Glyph* const glyph = face->NextGlyph(cursor, true)) {
    op.source = dynamic_cast<Surface*>(atlas->GetBitmap().get());
    if (!glyph->inAtlas || !op.source) continue;
    const Box whole{line.x + double(cursor.pen) + glyph->left, line.y + glyph->top,
                    double(glyph->width), double(glyph->height)};
    op.box = clips ? Intersection(whole, ToBox(rect)) : whole;
    op.part = {glyph->x + op.box.x - whole.x, glyph->y + op.box.y - whole.y, op.box.width,
               op.box.height};
    // The mask lies over the line, and the glyph takes its part.
    const double left = (op.box.x - line.x) / line.width, top = (op.box.y - line.y) / line.height;
    const double right = left + op.box.width / line.width;
    const double bottom = top + op.box.height / line.height;
    const Point corners[] = {{left, top}, {right, top}, {right, bottom}, {left, bottom}};
    for (size_t i = 0; i < 4; ++i) op.maskCorners[i] = Between(lineCorners, corners[i]);
    Draw(op);
  }
} catch (const std::bad_alloc&) {
  ZIRK_LOG_ERROR("Plain: no memory to draw text with");
}
//! [text]

// --- Screens -------------------------------------------------------------------------------------

void Screen::SwapBuffers() {
  {
    const Timer timer(swap_time);
    Show();
  }
  if (LogFPS) ShowFPS();
}

void Screen::Show() const {
  const char* const path = std::getenv("PLAIN_SCREEN");
  if (!path) return;
  std::ofstream file(path, std::ios::binary);
  file << "P6 " << GetBounds().width << ' ' << GetBounds().height << " 255\n";
  for (const uint32_t pixel : Pixels())
    for (const int shift : {16, 8, 0}) file.put(static_cast<char>(pixel >> shift & 255));
  if (!file.flush()) ZIRK_LOG_ERROR("Plain: cannot write %s", path);
}

}  // namespace ZIRK::plain
