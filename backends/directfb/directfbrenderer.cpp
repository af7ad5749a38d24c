#include "directfb/directfbrenderer.h"

#include <zirk/impl/log.h>

#include <algorithm>
#include <mutex>
#include <utility>

#include "directfb/directfbbitmap.h"
#include "directfb/directfbscreen.h"
#include "geometry/hairline.h"
#include "geometry/pixelmath.h"
#include "software/pixeltransfer.h"
#include "software/softwarerenderer.h"
#include "surface/ownsurface.h"

namespace ZIRK::backends {

namespace {

/// The renderer of a surface of this plug-in; null for any other surface.
DirectFbRenderer* FindRenderer(VuBitmapImpl& surface) {
  if (auto* const bitmap = AsOwn<DirectFbBitmap>(&surface)) return &bitmap->Drawing();
  if (auto* const screen = AsOwn<DirectFbScreen>(&surface)) return &screen->Drawing();
  return nullptr;
}

DFBRectangle ToDirectFb(const Box& box) {
  return {box.x0, box.y0, box.Width(), box.Height()};
}

}  // namespace

DirectFbRenderer::DirectFbRenderer(const SurfaceState& state, DirectFbSurfacePtr surface,
                                   std::shared_ptr<GlyphAtlasAllocator> atlases, Buffers buffers)
    : state_(state),
      surface_(std::move(surface)),
      atlases_(std::move(atlases)),
      buffers_(buffers),
      pixels_(surface_.get(), state.width, state.height, state.format),
      painter_(pixels_.Buffer(), state),
      revision_(state) {}

bool DirectFbRenderer::Begin() {
  {
    const std::lock_guard lock(DirectFbMutex());
    const DirectFbLock own(&pixels_);
    if (!own) return false;
  }
  return Clear(VuColor{0});
}

// --- The surface's state ------------------------------------------------------------------------

/// Applies the surface's state to DirectFB. Returns whether DirectFB may draw.
bool DirectFbRenderer::Refresh() {
  if (HasDirectFbEnded()) return false;
  if (revision_.CatchUp()) {
    blend_ = FindBlend(state_);
    clip_ = Intersection(ToBox(state_.clip), pixels_.Bounds());
    const DFBRegion region = {clip_.x0, clip_.y0, clip_.x1 - 1, clip_.y1 - 1};
    if (!clip_.IsEmpty()) surface_->SetClip(surface_.get(), &region);
  }
  return !pixels_.IsLocked() && blend_;
}

/// For operations that ignore the clipping rectangle. Returns whether DirectFB may draw.
bool DirectFbRenderer::SetWholeClip() {
  if (pixels_.IsLocked() || HasDirectFbEnded()) return false;
  revision_.Forget();
  return surface_->SetClip(surface_.get(), nullptr) == DFB_OK;
}

void DirectFbRenderer::SetColor(uint32_t color) {
  const auto channel = [color](int shift) { return static_cast<uint8_t>(color >> shift); };
  surface_->SetColor(surface_.get(), channel(16), channel(8), channel(0), channel(24));
}

// --- By DirectFB --------------------------------------------------------------------------------

// Each returns whether it has drawn; if not, the painter draws.

bool DirectFbRenderer::FillBoxes(const DFBRectangle* boxes, unsigned count, uint32_t color) {
  const DFBSurfaceDrawingFlags flags = FindFill(*blend_, color);
  surface_->SetDrawingFlags(surface_.get(), flags);
  if (flags != DSDRAW_NOFX) {
    surface_->SetSrcBlendFunction(surface_.get(), blend_->source);
    surface_->SetDstBlendFunction(surface_.get(), blend_->destination);
  }
  SetColor(color);
  return surface_->FillRectangles(surface_.get(), boxes, count) == DFB_OK;
}

bool DirectFbRenderer::Fill(const Box& box, uint32_t color) {
  if (!Refresh()) return false;
  const Box visible = Intersection(box, clip_);
  if (visible.IsEmpty()) return true;
  painter_.Touch(visible);
  const DFBRectangle rectangle = ToDirectFb(visible);
  return FillBoxes(&rectangle, 1, color);
}

/// Draws a line run by run: DirectFB's own lines have other ends and other steps.
bool DirectFbRenderer::FillLine(const Hairline& line, uint32_t color) {
  if (!Refresh()) return false;
  const Box visible = Intersection(line.Bounds(), clip_);
  if (visible.IsEmpty()) return true;
  painter_.Touch(visible);
  // There is one run per row, or per column in a steep line.
  if (!runs_.Reserve(static_cast<size_t>(std::min(visible.Width(), visible.Height())))) return true;
  unsigned count = 0;
  WalkRuns(line, clip_, [&](const Box& run) { runs_.Data()[count++] = ToDirectFb(run); });
  return count == 0 || FillBoxes(runs_.Data(), count, color);
}

/// Draws the whole `part` of `source`, which is another surface, into `box`.
bool DirectFbRenderer::Blit(DirectFbRenderer& source, const VuRect& part, const Box& box,
                            uint32_t color) {
  if (!Refresh() || source.pixels_.IsLocked() || source.buffers_ == Buffers::Two) return false;
  if (!TakesRightPixels(part.width, part.height, source.state_.scaleMode, box, clip_)) return false;
  const std::optional<BlitRule> rule =
      FindBlit(*blend_, source.state_.format, state_.format, color);
  if (!rule) return false;
  const Box visible = Intersection(box, clip_);
  if (visible.IsEmpty()) return true;
  painter_.Touch(visible);
  surface_->SetBlittingFlags(surface_.get(), rule->flags);
  surface_->SetSrcBlendFunction(surface_.get(), rule->blend.source);
  surface_->SetDstBlendFunction(surface_.get(), rule->blend.destination);
  SetColor(color);
  const DFBRectangle from = {part.x, part.y, part.width, part.height};
  const DFBRectangle to = ToDirectFb(box);
  IDirectFBSurface* const read = source.surface_.get();
  const DFBResult result = from.w == to.w && from.h == to.h
                               ? surface_->Blit(surface_.get(), read, &from, to.x, to.y)
                               : surface_->StretchBlit(surface_.get(), read, &from, &to);
  return result == DFB_OK;
}

/// Copies pixels without blending or clipping.
bool DirectFbRenderer::CopyBox(DirectFbRenderer& source, const CopyPlan& plan) {
  const std::optional<BlitRule> rule =
      FindBlit({DSBF_ONE, DSBF_ZERO}, source.state_.format, state_.format, 0xFFFFFFFFu);
  const bool other =
      &source != this && !source.pixels_.IsLocked() && source.buffers_ == Buffers::One;
  if (!other || !rule || rule->flags != DSBLIT_NOFX || !SetWholeClip()) return false;
  surface_->SetBlittingFlags(surface_.get(), DSBLIT_NOFX);
  const DFBRectangle from = {plan.srcX, plan.srcY, plan.box.Width(), plan.box.Height()};
  return surface_->Blit(surface_.get(), source.surface_.get(), &from, plan.box.x0, plan.box.y0) ==
         DFB_OK;
}

// --- By the painter -----------------------------------------------------------------------------

/// Calls `draw(source, mask)` with the painter's form of the source and the mask, while all pixels
/// are locked.
template <typename F>
void DirectFbRenderer::Paint(const Source* source, const Mask* mask, F&& draw) {
  const DirectFbLock own(&pixels_), read(source ? source->pixels : nullptr),
      masked(mask ? mask->source.pixels : nullptr);
  if (!own || !read || !masked) return;
  const auto inMemory = [](const Source& s) {
    return Painter::Source{&s.pixels->Buffer(), s.scaleMode};
  };
  Painter::Mask through{};
  if (mask) through = {inMemory(mask->source), mask->coords, mask->primitive};
  draw(source ? inMemory(*source) : Painter::Source{}, mask ? &through : nullptr);
}

bool DirectFbRenderer::Resolve(VuBitmapImpl& surface, RectD* rect, Source& source,
                               SourceCopy& copy) {
  DirectFbRenderer* const other = FindRenderer(surface);
  if (!other) return RefuseSource();
  source = {&other->pixels_, surface.GetScaleMode()};
  if (other != this) return true;
  const Box part = TakePart(rect, pixels_.Bounds());
  const std::lock_guard lock(DirectFbMutex());
  const DirectFbLock own(&pixels_);
  if (!own) return false;
  if (std::optional<PixelBuffer> copied = CopyOf(pixels_.Buffer(), part)) {
    copy.emplace(std::move(*copied));
    source.pixels = &*copy;
  }
  return copy.has_value();
}

// --- Primitives ---------------------------------------------------------------------------------

bool DirectFbRenderer::FillBox(const VuRect& rect, VuColor color) {
  if (!IsInRange(rect)) return false;
  const std::lock_guard lock(DirectFbMutex());
  return Fill(ToBox(rect), Premultiply(color));
}

void DirectFbRenderer::DrawRect(const RectD& rect, VuColor color, const MatrixF& m,
                                const Mask* mask) {
  const std::optional<MappedQuad> quad = MapRect(rect, m, Edges::OnWholePixels);
  if (!quad) return;
  const std::lock_guard lock(DirectFbMutex());
  if (!mask && quad->hardEdged && Fill(quad->box, Premultiply(color))) return;
  Paint(nullptr, mask,
        [&](const auto&, const auto* through) { painter_.DrawRect(rect, color, m, through); });
}

void DirectFbRenderer::DrawPoint(VuPoint p, float size, VuColor color, const MatrixF& m,
                                 const Mask* mask) {
  if (!mask) return DrawRect(ToRectD(p, size), color, m, nullptr);
  const std::lock_guard lock(DirectFbMutex());
  Paint(nullptr, mask,
        [&](const auto&, const auto* through) { painter_.DrawPoint(p, size, color, m, through); });
}

void DirectFbRenderer::DrawLine(VuPoint from, VuPoint to, VuColor color, const MatrixF& m,
                                const Mask* mask) {
  const std::optional<Hairline> line = MapLine(from, to, m);
  if (!line) return;
  const std::lock_guard lock(DirectFbMutex());
  if (!mask && FillLine(*line, Premultiply(color))) return;
  Paint(nullptr, mask,
        [&](const auto&, const auto* through) { painter_.DrawLine(from, to, color, m, through); });
}

bool DirectFbRenderer::BlitBox(const VuRect& dst, VuBitmapImpl& src, const VuRect& srcRect,
                               const MatrixF& m, VuColor color) {
  DirectFbRenderer* const source = FindRenderer(src);
  if (!source || source == this || srcRect.width <= 0 || srcRect.height <= 0) return false;
  const std::optional<Box> box = MapUpright(ToRectD(dst), m);
  if (!box || !source->pixels_.Bounds().Contains(ToBox(srcRect))) return false;
  const std::lock_guard lock(DirectFbMutex());
  return Blit(*source, srcRect, *box, Premultiply(color));
}

void DirectFbRenderer::DrawObject(const RectD& dst, const Source& src, const RectD& srcRect,
                                  Edges edges, const MatrixF& m, VuColor color, const Mask* mask) {
  const std::lock_guard lock(DirectFbMutex());
  Paint(&src, mask, [&](const Painter::Source& source, const auto* through) {
    painter_.DrawObject(dst, source, srcRect, edges, m, color, through);
  });
}

// --- Text ---------------------------------------------------------------------------------------

bool DirectFbRenderer::DrawGlyph(const TextLayout::Glyph& glyph,
                                 const LineStyle<DirectFbPixels>& style) {
  // Atlases are made of bitmaps.
  DirectFbRenderer& atlas = static_cast<DirectFbBitmap*>(glyph.atlas)->Drawing();
  const std::lock_guard lock(DirectFbMutex());
  if (style.move && IsInRange(glyph.destination)) {
    const Box to = ToBox(glyph.destination);
    const VuPoint move = *style.move;
    const Box box = {to.x0 + move.x, to.y0 + move.y, to.x1 + move.x, to.y1 + move.y};
    if (Blit(atlas, glyph.source, box, style.premultiplied)) return true;
  }
  const Source source = {&atlas.pixels_, VuScaleMode::Bilinear};
  Paint(&source, style.mask, [&](const Painter::Source& read, const Painter::Mask* through) {
    painter_.DrawObject(ToRectD(glyph.destination), read, ToRectD(glyph.source),
                        Edges::OnWholePixels, style.matrix, style.color, through);
  });
  return true;
}

template class TextDrawing<DirectFbRenderer, DirectFbPixels>;

// --- Pixels -------------------------------------------------------------------------------------

bool DirectFbRenderer::Clear(VuColor color) {
  const std::lock_guard lock(DirectFbMutex());
  painter_.Touch(pixels_.Bounds());
  if (SetWholeClip()) {
    surface_->SetDrawingFlags(surface_.get(), DSDRAW_NOFX);
    SetColor(Premultiply(color));
    if (surface_->FillRectangle(surface_.get(), 0, 0, state_.width, state_.height) == DFB_OK)
      return true;
  }
  const DirectFbLock own(&pixels_);
  if (own) ClearPixels(pixels_.Buffer(), color);
  return bool(own);
}

bool DirectFbRenderer::Read(const Box& box, void* dst) {
  const std::lock_guard lock(DirectFbMutex());
  const DirectFbLock own(&pixels_);
  if (own) ReadPixels(pixels_.Buffer(), box, dst);
  return bool(own);
}

bool DirectFbRenderer::Write(const Box& box, const void* src, unsigned pitch) {
  const std::lock_guard lock(DirectFbMutex());
  const DirectFbLock own(&pixels_);
  painter_.Touch(box);
  if (own) WritePixels(pixels_.Buffer(), box, src, pitch);
  return bool(own);
}

bool DirectFbRenderer::Copy(VuPoint at, VuBitmapImpl& src, const VuRect& srcRect) {
  DirectFbRenderer* const source = FindRenderer(src);
  if (!source) return RefuseSource();
  const CopyPlan plan = PlanCopy(at.x, at.y, pixels_.Bounds(), srcRect, source->pixels_.Bounds());
  if (plan.box.IsEmpty()) return true;
  const std::lock_guard lock(DirectFbMutex());
  painter_.Touch(plan.box);
  if (CopyBox(*source, plan)) return true;
  const DirectFbLock own(&pixels_), read(&source->pixels_);
  if (own && read) CopyRect(pixels_.Buffer(), at, source->pixels_.Buffer(), srcRect);
  return own && read;
}

bool DirectFbRenderer::Lock(bool) {
  const std::lock_guard lock(DirectFbMutex());
  return pixels_.Lock();
}

bool DirectFbRenderer::Unlock(bool written) {
  const std::lock_guard lock(DirectFbMutex());
  if (written && !HasDirectFbEnded()) {
    pixels_.Buffer().RestoreOpaqueBits(pixels_.Bounds());
    painter_.Touch(pixels_.Bounds());
  }
  pixels_.Unlock();
  return true;
}

void DirectFbRenderer::Finish() {
  WaitForDirectFb();
}

void DirectFbRenderer::Flip() {
  const std::lock_guard lock(DirectFbMutex());
  if (HasDirectFbEnded()) return;
  if (pixels_.IsLocked()) {
    ZIRK_LOG_ERROR("the screen is locked, so it is not shown");
    return;
  }
  const bool two = buffers_ == Buffers::Two;
  const DFBResult result =
      surface_->Flip(surface_.get(), nullptr, two ? DSFLIP_WAITFORSYNC : DSFLIP_NONE);
  if (!IsGood(result, "show a frame")) return;
  const Box changed = painter_.TakeTouched();
  if (!two || changed.IsEmpty() || !SetWholeClip()) return;
  // With two buffers DirectFB reads the visible one, so this copies it to the other.
  surface_->SetBlittingFlags(surface_.get(), DSBLIT_NOFX);
  const DFBRectangle part = ToDirectFb(changed);
  surface_->Blit(surface_.get(), surface_.get(), &part, part.x, part.y);
}

}  // namespace ZIRK::backends
