// How pixels are drawn on the target. The kernels draw on it directly if it has 32 bits per pixel
// and the operator is Source or Over.
//
//   Edges on whole pixels; source and mask, if any, unscaled, and the mask A8:
//     directly, with a 32-bit source, or A8 and no mask   all rows at once by the kernels
//     on RGB565, the same if there is a kernel            all rows at once by that kernel
//     not directly                                        all rows at once by Pixman
//   All else, and what Pixman does not support            row by row: PaintRows(), PaintSlanted()
//   Slanted or masked lines                               pixel by pixel: painterline.cpp

#include "software/painter.h"

#include <algorithm>

#include "geometry/pixelmath.h"
#include "geometry/surfaceformat.h"

namespace ZIRK::backends {

namespace {

/// Returns whether the kernels can read an aligned texture and mask, if any, in place. If so,
/// stores their addresses in `shading`.
bool AreInPlace(const Box& box, const SourceSampler* texture, const MaskSampler* mask,
                PixelSpan& shading) {
  if (mask) {
    shading.coverage = mask->Row(box.x0, box.y0, box.Width(), nullptr);
    shading.coveragePitch = mask->Pitch();
  }
  if (!texture) return true;
  const PixelBuffer& pixels = texture->Pixels();
  if (pixels.Is32Bit()) {
    shading.src = texture->Row(box.x0, box.y0, box.Width(), nullptr);
    shading.srcPitch = pixels.Pitch32();
    return true;
  }
  if (mask || pixels.Format() != VuPixelFormat::A8) return false;
  // White with an alpha, multiplied by a colour, is that colour with the alpha as coverage.
  shading.coverage = pixels.Row(texture->AlignedY(box.y0)) + texture->AlignedX(box.x0);
  shading.coveragePitch = pixels.Pitch();
  return true;
}

}  // namespace

Painter::Painter(PixelBuffer& target, const SurfaceState& state)
    : target_(target), state_(state), blender_(target), revision_(state) {}

void Painter::TakeState() {
  blender_.Update(state_);
  clip_ = Intersection(ToBox(state_.clip), target_.Bounds());
}

void Painter::DrawRect(const RectD& rect, VuColor color, const MatrixF& m, const Mask* mask) {
  Refresh();
  if (!mask)
    if (const std::optional<Box> box = MapUpright(rect, m))
      return PaintBox(*box, nullptr, Premultiply(color));
  const std::optional<MappedQuad> quad = MapRect(rect, m, Edges::OnWholePixels);
  if (quad) Paint(*quad, *quad, nullptr, Premultiply(color), mask);
}

void Painter::DrawPoint(VuPoint p, float size, VuColor color, const MatrixF& m, const Mask* mask) {
  Refresh();
  const std::optional<MappedQuad> quad = MapRect(ToRectD(p, size), m, Edges::OnWholePixels);
  if (!quad) return;
  uint32_t premultiplied = Premultiply(color);
  if (mask) {
    const Point at = ToPoint(*mask->coords);
    premultiplied = ScalePixel(premultiplied, MaskPoints(mask->source).AlphaAt(at));
  }
  Paint(*quad, *quad, nullptr, premultiplied, nullptr);
}

void Painter::DrawObject(const RectD& dst, const Source& src, const RectD& srcRect, Edges edges,
                         const MatrixF& m, VuColor color, const Mask* mask) {
  Refresh();
  if (edges == Edges::OnWholePixels && !mask && DrawUnscaled(dst, src, srcRect, m, color)) return;
  const std::optional<MappedQuad> whole = MapRect(dst, m, edges);
  if (!whole) return;
  const std::optional<MappedSource> source =
      MapSource(srcRect, src.pixels->Bounds(), *whole, src.scaleMode);
  if (!source) return;
  const Box visible = Visible(source->part.box);
  if (visible.IsEmpty()) return;
  const SourceSampler texture(*src.pixels, source->limits, src.scaleMode, source->toTexture,
                              visible);
  Paint(source->part, *whole, &texture, Premultiply(color), mask);
}

bool Painter::FillBox(const VuRect& r, VuColor color) {
  if (!IsInRange(r)) return false;
  Refresh();
  const Box box = Visible({r.x, r.y, r.x + r.width, r.y + r.height});
  if (box.IsEmpty()) return true;
  const uint32_t premultiplied = Premultiply(color);
  if (!blender_.IsDirect()) {
    PaintBox(box, nullptr, premultiplied);
    return true;
  }
  Touch(box);
  blender_.FillDirect(box, premultiplied, IsOpaque(premultiplied));
  return true;
}

bool Painter::BlitBox(const VuRect& dst, const Source& src, const VuRect& srcRect, const MatrixF& m,
                      VuColor color) {
  if (!m.isIdentity() || !IsInRange(dst) || dst.width != srcRect.width ||
      dst.height != srcRect.height || !IsInside(srcRect, src.pixels->Width(), src.pixels->Height()))
    return false;
  Refresh();
  const SourceSampler texture(*src.pixels, srcRect.x - dst.x, srcRect.y - dst.y);
  PaintBox({dst.x, dst.y, dst.x + dst.width, dst.y + dst.height}, &texture, Premultiply(color));
  return true;
}

/// Draws the source if it needs no resampling. Returns whether it did.
bool Painter::DrawUnscaled(const RectD& dst, const Source& src, const RectD& srcRect,
                           const MatrixF& m, VuColor color) {
  const std::optional<Box> box = MapUpright(dst, m);
  if (!box || box->Width() != srcRect.width || box->Height() != srcRect.height) return false;
  const bool inside = srcRect.x >= 0 && srcRect.y >= 0 &&
                      srcRect.x + srcRect.width <= src.pixels->Width() &&
                      srcRect.y + srcRect.height <= src.pixels->Height();
  if (!inside) return false;
  const SourceSampler texture(*src.pixels, static_cast<int>(srcRect.x) - box->x0,
                              static_cast<int>(srcRect.y) - box->y0);
  PaintBox(*box, &texture, Premultiply(color));
  return true;
}

void Painter::DrawCoverageIndirect(const Box& box, const PixelBuffer& src, int moveX, int moveY,
                                   uint32_t color) {
  const SourceSampler texture(src, moveX, moveY);
  if (!PaintAligned(box, &texture, color, nullptr, false))
    PaintRows(box, &texture, color, nullptr, false);
}

/// Draws whole pixels of one colour or of an aligned texture.
void Painter::PaintBox(const Box& whole, const SourceSampler* texture, uint32_t color) {
  const Box box = Visible(whole);
  if (box.IsEmpty()) return;
  Touch(box);
  if (!texture && blender_.IsDirect()) return blender_.FillDirect(box, color, IsOpaque(color));
  const bool opaque = IsOpaque(color) && (!texture || texture->Pixels().IsOpaque());
  if (PaintAligned(box, texture, color, nullptr, opaque)) return;
  PaintRows(box, texture, color, nullptr, opaque);
}

/// Draws `quad`, a part of `whole`. The mask covers `whole`.
void Painter::Paint(const MappedQuad& quad, const MappedQuad& whole, const SourceSampler* texture,
                    uint32_t color, const Mask* maskArgument) {
  const Box box = Visible(quad.box);
  if (box.IsEmpty()) return;
  const std::optional<MaskSampler> mask =
      maskArgument
          ? MaskSampler::Create(maskArgument->source, maskArgument->coords,
                                maskArgument->primitive ? *maskArgument->primitive : whole, box)
          : std::nullopt;
  if (maskArgument && !mask) return;
  Touch(box);
  const MaskSampler* const maskOrNull = mask ? &*mask : nullptr;
  if (!quad.hardEdged) return PaintSlanted(quad, box, texture, color, maskOrNull);
  const bool opaque = IsOpaque(color) && (!texture || texture->Pixels().IsOpaque()) && !mask;
  if (PaintAligned(box, texture, color, maskOrNull, opaque)) return;
  PaintRows(box, texture, color, maskOrNull, opaque);
}

/// Draws all rows at once if source and mask, if any, need no resampling. Returns whether it did.
bool Painter::PaintAligned(const Box& box, const SourceSampler* texture, uint32_t color,
                           const MaskSampler* mask, bool opaque) {
  if ((texture && !texture->IsAligned()) || (mask && !mask->IsInPlace())) return false;
  PixelSpan span = {};
  span.color = color;
  if (AreInPlace(box, texture, mask, span) && blender_.DrawDirect(box, span, opaque)) return true;
  if (blender_.IsDirect()) return false;
  Blender::PixmanSource source;
  source.color = color;
  if (texture) {
    source.source = &texture->Pixels();
    source.sourceX = texture->AlignedX(box.x0);
    source.sourceY = texture->AlignedY(box.y0);
  }
  if (mask) {
    source.mask = &mask->Texels().Pixels();
    source.maskX = mask->Texels().AlignedX(box.x0);
    source.maskY = mask->Texels().AlignedY(box.y0);
  }
  return blender_.DrawByPixman(box, source, opaque);
}

/// Draws whole pixels row by row; rows that are the same are drawn at once.
void Painter::PaintRows(const Box& box, const SourceSampler* texture, uint32_t color,
                        const MaskSampler* mask, bool opaque) {
  if (mask || !texture) {
    const QuadCoverage::Row row = {box.x0, box.x0, box.x1, box.x1};
    for (int y = box.y0; y < box.y1; ++y) PaintRow(row, y, box.y1, texture, color, mask, nullptr);
    return;
  }
  uint32_t scratch[kChunk];
  for (int y = box.y0, next; y < box.y1; y = next) {
    next = y + texture->SameRows(box.x0, y, box.y1);
    for (int x = box.x0; x < box.x1; x += kChunk) {
      const Box part = {x, y, std::min(x + kChunk, box.x1), next};
      PixelSpan span = {};
      span.src = texture->Row(x, y, part.Width(), scratch);
      span.color = color;
      span.rowsBelow = box.y1 - next;
      blender_.Draw(part, span, opaque);
    }
  }
}

void Painter::PaintSlanted(const MappedQuad& quad, const Box& box, const SourceSampler* texture,
                           uint32_t color, const MaskSampler* mask) {
  // In a short row, the solid part is drawn with the edges: one operation costs less than three.
  constexpr int kShort = 192;
  if (!scratch_.Reserve(box.Width())) return;
  QuadCoverage coverage(quad.corners, box, scratch_);
  for (int y = box.y0; y < box.y1; ++y) {
    QuadCoverage::Row row = coverage.Compute(y);
    if (row.solidEnd - row.solidBegin < kShort) row.solidBegin = row.solidEnd = row.end;
    PaintRow(row, y, box.y1, texture, color, mask, &coverage);
  }
}

/// Draws the pixels that a shape covers in the rows from `y` to `bottom`. Without `coverage`, all
/// of them are solid.
void Painter::PaintRow(const QuadCoverage::Row& row, int y, int bottom,
                       const SourceSampler* texture, uint32_t color, const MaskSampler* mask,
                       const QuadCoverage* coverage) {
  uint32_t scratch[kChunk];
  for (int x0 = row.begin; x0 < row.end; x0 += kChunk) {
    const int x1 = std::min(x0 + kChunk, row.end);
    const uint32_t* const pixels = texture ? texture->Row(x0, y, x1 - x0, scratch) : nullptr;
    const auto paint = [&](int begin, int end, bool solid) {
      begin = std::max(begin, x0);
      end = std::min(end, x1);
      if (begin >= end) return;
      PixelSpan shading = {};
      shading.src = pixels ? pixels + (begin - x0) : nullptr;
      shading.color = color;
      shading.coverage = solid ? nullptr : coverage->Alpha(begin);
      shading.rowsBelow = bottom - y - 1;
      PaintRun(begin, end, y, shading, mask);
    };
    paint(row.begin, row.solidBegin, false);
    paint(row.solidBegin, row.solidEnd, true);
    paint(row.solidEnd, row.end, false);
  }
}

/// Draws at most kChunk pixels, from `x0` to `x1` of row `y`. `shading` is as for Blender::Draw();
/// its coverage is the shape's.
void Painter::PaintRun(int x0, int x1, int y, PixelSpan& shading, const MaskSampler* mask) {
  // Pixels that are not covered at all keep their values even if blending is off.
  const uint8_t*& alpha = shading.coverage;
  while (alpha && x0 < x1 && *alpha == 0) {
    ++x0;
    ++alpha;
    if (shading.src) ++shading.src;
  }
  while (alpha && x0 < x1 && alpha[x1 - x0 - 1] == 0) --x1;
  if (x0 >= x1) return;
  uint8_t masked[kChunk];
  if (mask) {
    const uint8_t* row = mask->Row(x0, y, x1 - x0, masked);
    for (int i = 0; alpha && i < x1 - x0; ++i)
      masked[i] = static_cast<uint8_t>(MultiplyChannel(row[i], alpha[i]));
    alpha = alpha ? masked : row;
  }
  blender_.Draw({x0, y, x1, y + 1}, shading, false);
}

}  // namespace ZIRK::backends
