#include "opengles2/glcanvas.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "geometry/pixelmath.h"
#include "geometry/pixeltraits.h"
#include "geometry/surfaceformat.h"
#include "opengles2/glwindow.h"
#include "opengles2/polygon.h"
#include "surface/drawmemory.h"

namespace ZIRK::backends {

namespace {

// Below this step in texels per pixel, imprecise positions become visible, so shaders that limit
// reading are used.
constexpr double kSmallestStep = 1.0 / 64;

TexelFilter FilterOf(VuScaleMode mode) {
  return mode == VuScaleMode::Bilinear ? TexelFilter::Linear : TexelFilter::Nearest;
}

GlPoint ToGl(Point p) {
  return {static_cast<float>(p.x), static_cast<float>(p.y)};
}

constexpr GlPoint kNoTexel = {-1, -1};

/// Converts a position in a texture to one in the texture that stores its pixels.
GlPoint InStorage(const GlTexture& texture, Point p) {
  const GlPoint origin = texture.Origin();
  return ToGl({p.x + static_cast<double>(origin.x), p.y + static_cast<double>(origin.y)});
}

/// How a plain quadrilateral reads its texture.
struct Reading {
  TexelFilter filter;
  float bias;
};

/// The reading for `rect` of `src` that fills `box`; nothing if only a program that limits reading
/// will do.
std::optional<Reading> ReadingFor(const Box& box, const Source<GlTexture>& src,
                                  const VuRect& rect) {
  if (box.Width() == rect.width && box.Height() == rect.height)
    return Reading{TexelFilter::Exact, 0};
  const TexelFilter filter = FilterOf(src.scaleMode);
  const bool nearest = filter == TexelFilter::Nearest;
  const bool enlarged =
      kSmallestStep * box.Width() > rect.width || kSmallestStep * box.Height() > rect.height;
  const bool whole = ToBox(rect) == src.pixels->Bounds();
  if (nearest ? enlarged : !whole) return std::nullopt;
  return Reading{filter, nearest ? static_cast<float>(kTexelBias) : 0};
}

/// The texels for the `visible` part of `box`, which `rect` of a texture fills.
Texels CutTexels(const VuRect& rect, float bias, const Box& box, const Box& visible) {
  const float s = static_cast<float>(rect.x) + bias, t = static_cast<float>(rect.y) + bias;
  if (visible == box)
    return {s, t, s + static_cast<float>(rect.width), t + static_cast<float>(rect.height)};
  const double stepX = double(rect.width) / box.Width();
  const double stepY = double(rect.height) / box.Height();
  return {s + static_cast<float>((visible.x0 - box.x0) * stepX),
          t + static_cast<float>((visible.y0 - box.y0) * stepY),
          s + static_cast<float>((visible.x1 - box.x0) * stepX),
          t + static_cast<float>((visible.y1 - box.y0) * stepY)};
}

/// Whether OpenGL's copy operation, which needs no shader, pays for the flush that it causes.
bool IsLarge(const Box& box) {
  return box.Width() >= 128 && box.Height() >= 128;
}

}  // namespace

/// The outline of a shape, and the parallelogram that it is a part of.
struct GlCanvas::Shape {
  Polygon outline;
  Affine toSurface;
  bool hardEdged;
};

void GlCanvas::DrawOn(std::unique_ptr<GlTexture> texture) {
  texture_ = std::move(texture);
  window_ = nullptr;
  revision_.Forget();
}

void GlCanvas::DrawOn(GlWindow* window) {
  texture_ = nullptr;
  window_ = window;
  revision_.Forget();
}

const GlTarget* GlCanvas::Target() {
  if (texture_) return texture_->Target();
  return window_ ? window_->Target() : nullptr;
}

/// Whether there is anything to draw on.
bool GlCanvas::Refresh() {
  // The texture moves to a page when it is drawn from.
  if (revision_.CatchUp() || (texture_ && texture_->IsInPage())) {
    blend_ = GlBlend(state_);
    target_ = Target();
    clip_ = Intersection(ToBox(state_.clip), Bounds());
  }
  return target_ && !clip_.IsEmpty();
}

uint32_t GlCanvas::Shade(VuColor color) const {
  return target_->Channels(Premultiply(color));
}

void GlCanvas::DrawRect(const RectD& rect, VuColor color, const MatrixF& m, const Mask* mask) {
  if (!Refresh()) return;
  if (!mask)
    if (const std::optional<Box> box = MapUpright(rect, m)) return PaintBox(*box, Shade(color));
  const std::optional<MappedQuad> quad = MapRect(rect, m, Edges::OnWholePixels);
  if (!quad) return;
  const std::optional<PlacedMask> placed = mask ? PlaceOver(*quad, *mask) : std::nullopt;
  if (mask && !placed) return;
  Paint(*quad, Filling(), Shade(color), placed ? &*placed : nullptr);
}

bool GlCanvas::FillBox(VuRect r, VuColor color) {
  if (!IsInRange(r)) return false;
  if (Refresh()) PaintBox({r.x, r.y, r.x + r.width, r.y + r.height}, Shade(color));
  return true;
}

bool GlCanvas::BlitBox(VuRect dst, Source src, VuRect srcRect, const MatrixF& m, VuColor color) {
  if (!IsInside(srcRect, src.pixels->Width(), src.pixels->Height())) return false;
  Box box = {dst.x, dst.y, dst.x, dst.y};
  if (m.isIdentity() && IsInRange(dst)) {
    box.x1 += dst.width;
    box.y1 += dst.height;
  } else {
    const std::optional<Box> placed =
        MapUpright({double(dst.x), double(dst.y), double(dst.width), double(dst.height)}, m);
    if (!placed) return false;
    box = *placed;
  }
  if (srcRect.width == 0 || srcRect.height == 0 || !Refresh()) return true;
  const Box visible = Visible(box);
  if (visible.IsEmpty()) return true;

  const std::optional<Reading> reading = ReadingFor(box, src, srcRect);
  if (!reading) return false;
  device_->Batch().AddPlain(target_, blend_, src.pixels, reading->filter, visible,
                            CutTexels(srcRect, reading->bias, box, visible), Shade(color));
  return true;
}

void GlCanvas::DrawPoint(VuPoint p, float size, VuColor color, const MatrixF& m, const Mask* mask) {
  if (!Refresh()) return;
  const std::optional<MappedQuad> quad = MapRect(ToRectD(p, size), m, Edges::OnWholePixels);
  if (!quad) return;
  if (!mask) return Paint(*quad, Filling(), Shade(color), nullptr);
  const Point at = ToPoint(*mask->coords);
  const PlacedMask placed = PlaceAt(at, mask->source);
  const bool finite = IsFinite(at);
  Paint(*quad, Filling(), finite ? Shade(color) : 0, finite ? &placed : nullptr);
}

void GlCanvas::DrawLine(VuPoint from, VuPoint to, VuColor color, const MatrixF& m,
                        const Mask* mask) {
  if (!Refresh()) return;
  const std::optional<Hairline> line = MapLine(from, to, m);
  if (!line) return;
  const Box box = Visible(line->Bounds());
  if (box.IsEmpty()) return;
  const uint32_t premultiplied = Shade(color);
  if (mask) {
    const GlTexture& texture = *mask->source.pixels;
    const LineEnds ends =
        MaskEnds(mask->coords, texture.Width(), texture.Height(), from, to, *line);
    Walk(*line, clip_, [&](int x, int y, int step) {
      PaintMaskedPixel(x, y, premultiplied, mask->source, ends.At(*line, step));
    });
    return;
  }
  WalkRuns(*line, clip_, [&](const Box& run) { PaintBox(run, premultiplied); });
}

void GlCanvas::PaintMaskedPixel(int x, int y, uint32_t color, const Source& mask, Point at) {
  const Box pixel = {x, y, x + 1, y + 1};
  if (!IsFinite(at)) return PaintBox(pixel, 0);
  const PlacedMask placed = PlaceAt(at, mask);
  const Affine toSurface = {{double(x), double(y)}, {1, 0}, {0, 1}};
  PaintShape({Polygon(pixel), toSurface, true}, Filling(), color, &placed);
}

void GlCanvas::DrawObject(const RectD& dst, const Source& src, const RectD& srcRect, Edges edges,
                          const MatrixF& m, VuColor color, const Mask* mask) {
  if (!Refresh()) return;
  const std::optional<MappedQuad> whole = MapRect(dst, m, edges);
  if (!whole) return;
  const std::optional<MappedSource> source =
      MapSource(srcRect, src.pixels->Bounds(), *whole, src.scaleMode);
  if (!source) return;
  const std::optional<PlacedMask> placed =
      mask ? PlaceOver(mask->primitive ? *mask->primitive : *whole, *mask) : std::nullopt;
  if (mask && !placed) return;
  const Filling filling = {src.pixels, FilterOf(src.scaleMode), source->toTexture, source->limits};
  Paint(source->part, filling, Shade(color), placed ? &*placed : nullptr);
}

void GlCanvas::PaintBox(const Box& box, uint32_t color) {
  const Box visible = Visible(box);
  if (visible.IsEmpty()) return;
  device_->Batch().AddPlain(target_, blend_, nullptr, TexelFilter::Exact, visible, kNoTexels,
                            color);
}

std::optional<GlCanvas::PlacedMask> GlCanvas::PlaceOver(const MappedQuad& primitive,
                                                        const Mask& mask) {
  GlTexture* const texture = mask.source.pixels;
  const VuScaleMode mode = mask.source.scaleMode;
  const std::optional<MappedMask> place =
      MapMask(texture->Width(), texture->Height(), mask.coords, primitive, mode);
  return place ? std::optional(PlacedMask{texture, FilterOf(mode), *place}) : std::nullopt;
}

/// Maps the whole shape to one position in the mask.
GlCanvas::PlacedMask GlCanvas::PlaceAt(Point at, const Source& mask) {
  return {mask.pixels, FilterOf(mask.scaleMode), {{at, {0, 0}, {0, 0}}, {}, {0, 0}}};
}

void GlCanvas::Paint(const MappedQuad& quad, const Filling& filling, uint32_t color,
                     const PlacedMask* mask) {
  const Box box = Visible(quad.box);
  if (box.IsEmpty()) return;
  const Point* const c = quad.corners;
  Shape shape = {Polygon(box), {c[0], c[1] - c[0], c[3] - c[0]}, quad.hardEdged};
  if (!quad.hardEdged) shape.outline = Polygon::Around(shape.toSurface, box);
  PaintShape(shape, filling, color, mask);
}

DrawKey GlCanvas::KeyFor(const Shape& shape, const Filling& filling, const PlacedMask* mask) const {
  DrawKey key;
  key.target = target_;
  key.blend = blend_;
  key.texture = filling.texture;
  key.filter = filling.filter;
  if (mask) {
    key.program = GlProgram::Masked;
    key.mask = mask->texture;
    key.maskFilter = mask->filter == TexelFilter::Linear ? GL_LINEAR : GL_NEAREST;
  } else if (!shape.hardEdged || NeedsLimits(filling)) {
    key.program = GlProgram::Shaped;
  }
  return key;
}

/// The vertex data that all vertices of a shape share.
MaskedVertex GlCanvas::VertexOf(const Shape& shape, const Filling& filling, uint32_t color,
                                const PlacedMask* mask) {
  // The outline itself makes a hard edge, so the sides of the shape are moved outside it.
  Affine sides = shape.toSurface;
  if (shape.hardEdged) {
    const Box b = shape.outline.Bounds();
    sides = {{b.x0 - 2.0, b.y0 - 2.0}, {b.Width() + 4.0, 0}, {0, b.Height() + 4.0}};
  }
  MaskedVertex v{};
  v.shaped.color = color;
  v.shaped.first = v.shaped.last = kNoTexel;
  if (filling.texture) {
    const Box& l = filling.limits;
    v.shaped.first = InStorage(*filling.texture, {l.x0 + 0.5, l.y0 + 0.5});
    v.shaped.last = InStorage(*filling.texture, {l.x1 - 0.5, l.y1 - 0.5});
  }
  v.shaped.corner = ToGl(sides.origin);
  v.shaped.right = ToGl(sides.dx);
  v.shaped.down = ToGl(sides.dy);
  if (!mask) return v;
  const GlTexture& t = *mask->texture;
  v.crossTerm = ToGl(mask->place.crossTerm);
  v.maskFirst = InStorage(t, {0.5, 0.5});
  v.maskLast = InStorage(t, {t.Width() - 0.5, t.Height() - 0.5});
  return v;
}

void GlCanvas::PaintShape(const Shape& shape, const Filling& filling, uint32_t color,
                          const PlacedMask* mask) {
  const Polygon& outline = shape.outline;
  if (outline.count < 3) return;
  DrawKey key = KeyFor(shape, filling, mask);
  const int count = (outline.count - 1) / 2;
  const Box box = outline.Bounds();
  GlQuads& quads = device_->Batch().Join(key, count, box);
  const GlProgram program = quads.Key().program;
  std::byte* at = quads.Add(key, count, box);
  const auto put = [&at](const auto& vertex) {
    std::memcpy(at, &vertex, sizeof vertex);
    at += sizeof vertex;
  };
  MaskedVertex v{};
  if (program != GlProgram::Plain) v = VertexOf(shape, filling, color, mask);
  const auto putAt = [&](Point p) {
    const GlPoint texel =
        filling.texture ? InStorage(*filling.texture, filling.toTexture(p.x, p.y)) : kNoTexel;
    if (program == GlProgram::Plain)
      return put(PlainVertex{static_cast<uint16_t>(p.x), static_cast<uint16_t>(p.y), color, texel.x,
                             texel.y});
    v.shaped.position = ToGl(p);
    v.shaped.texel = texel;
    if (program == GlProgram::Shaped) return put(v.shaped);
    v.shaped.unit = ToGl(mask->place.toUnit(p.x, p.y));
    v.mask = InStorage(*mask->texture, mask->place.toMask(p.x, p.y));
    put(v);
  };
  for (int i = 0; i < count; ++i) {
    putAt(outline.points[0]);
    for (int j = 1; j <= 3; ++j)
      putAt(outline.points[static_cast<size_t>(std::min(2 * i + j, outline.count - 1))]);
  }
}

/// Whether a hard-edged filling might read texels outside its limits.
bool GlCanvas::NeedsLimits(const Filling& filling) {
  if (!filling.texture) return false;
  if (filling.filter == TexelFilter::Linear) return !(filling.limits == filling.texture->Bounds());
  const Affine& a = filling.toTexture;
  return std::abs(a.dx.x) + std::abs(a.dy.x) < kSmallestStep ||
         std::abs(a.dx.y) + std::abs(a.dy.y) < kSmallestStep;
}

bool GlCanvas::Clear(VuColor color) {
  const GlTarget* const target = Target();
  if (!target) return false;
  // Reduced to the bits of the format: OpenGL would round, but the other operations truncate.
  const uint32_t premultiplied = WithPixelTraits(state_.format, [&](auto traits) {
    using Traits = decltype(traits);
    const uint32_t held = Traits::Unpack(Traits::Pack(Premultiply(color)));
    return held;
  });
  return device_->Batch().Clear(*target, premultiplied);
}

bool GlCanvas::Read(const Box& box, void* dst) {
  const GlTarget* const target = Target();
  if (!target) return false;
  if (box.IsEmpty()) return true;
  device_->Batch().Flush();
  const GlScope scope(*device_, target->window);
  if (!scope) return false;
  device_->Batch().BindFramebuffer(target->framebuffer);
  if (!ReadFramebuffer(device_->Gl(), *target, box, state_.format, dst)) return false;
  return device_->Check("reading pixels");
}

bool GlCanvas::Write(const Box& box, const void* src, unsigned pitch) {
  if (texture_) return texture_->Upload(box, src, pitch);
  if (box.IsEmpty()) return true;
  const auto scratch = GlTexture::Create(device_, box.Width(), box.Height(), state_.format);
  return scratch && scratch->Upload(scratch->Bounds(), src, pitch) && CopyFrom(*scratch, 0, 0, box);
}

bool GlCanvas::CopyFrom(GlTexture& src, int srcX, int srcY, const Box& box) {
  static constexpr GlBlend kReplace{};
  const GlTarget* const target = Target();
  if (!target) return false;
  // A growing atlas is copied as a whole.
  const bool isWhole = box == src.Bounds() && !src.IsInPage();
  if (texture_ && texture_->Format() == src.Format() && (isWhole || IsLarge(box))) {
    const GlTarget* const from = src.Target();
    if (!from) return false;
    device_->Batch().BeforeReading(*from);
    device_->Batch().BeforeWriting(*texture_, box);
    const GlScope scope(*device_);
    if (!scope) return false;
    device_->Batch().BindFramebuffer(from->framebuffer);
    texture_->CopyFromFramebuffer({srcX, srcY, srcX + box.Width(), srcY + box.Height()}, box.x0,
                                  box.y0);
    return device_->Check("copying pixels");
  }
  const auto s = static_cast<float>(srcX), t = static_cast<float>(srcY);
  const Texels texels = {s, t, s + static_cast<float>(box.Width()),
                         t + static_cast<float>(box.Height())};
  device_->Batch().AddPlain(target, kReplace, &src, TexelFilter::Exact, box, texels, ~0u);
  return true;
}

std::unique_ptr<GlTexture> GlCanvas::Snapshot(const Box& box) {
  auto copy = GlTexture::Create(device_, box.Width(), box.Height(), state_.format);
  const GlTarget* const target = Target();
  if (!copy || !target) return nullptr;
  if (!target->IsWindow() && target->order == copy->Order()) {
    device_->Batch().Flush();
    const GlScope scope(*device_);
    if (!scope) return nullptr;
    device_->Batch().BindFramebuffer(target->framebuffer);
    copy->CopyFromFramebuffer(box, 0, 0);
    return copy;
  }
  // A window has another order of rows, and perhaps of channels.
  const int pitch = box.Width() * BytesPerPixel(state_.format);
  const auto pixels =
      AllocateToDraw<uint8_t>(static_cast<size_t>(pitch) * static_cast<size_t>(box.Height()));
  if (!pixels || !Read(box, pixels.get())) return nullptr;
  if (!copy->Upload(copy->Bounds(), pixels.get(), static_cast<unsigned>(pitch))) return nullptr;
  return copy;
}

}  // namespace ZIRK::backends
