#pragma once

#include <zirk/impl/log.h>
#include <zirk/impl/vuscreenimpl.h>

#include <cstdint>
#include <memory>
#include <new>
#include <optional>
#include <typeinfo>
#include <utility>
#include <vector>

#include "common/bitmapbase.h"
#include "common/drawtimer.h"
#include "common/surfaceformat.h"
#include "opengles2/canvas.h"
#include "opengles2/textdrawing.h"

namespace ZIRK::backends {

/// A surface drawn by OpenGL. `Base` is VuBitmapImpl or VuScreenImpl.
///
/// Sources and masks are other surfaces of this kind, also those of other contexts of this plug-in;
/// anything else draws nothing, with an error line.
template <class Base>
class GlSurface : public BitmapBase<Base> {
 public:
  using State = BitmapBase<Base>;
  using State::DrawLine;
  using State::DrawObject;
  using State::DrawPoint;
  using State::DrawRect;
  using State::DrawText;

  /// `atlases` makes the atlases of fonts that are first drawn with here.
  GlSurface(std::unique_ptr<SurfaceLedger::Entry> entry, std::shared_ptr<GlDevice> device,
            int width, int height, VuPixelFormat format, std::shared_ptr<AtlasGraphics> atlases)
      : State(std::move(entry), width, height, format),
        canvas_(std::move(device), this->state_),
        atlases_(std::move(atlases)) {}

  GlCanvas& Canvas() { return canvas_; }
  const GlCanvas& Canvas() const { return canvas_; }

  void SetName(const char* name) final {
    State::SetName(name);
    if (canvas_.Texture()) canvas_.Texture()->SetName(name);
  }

  void Clear() final { Clear(VuColor{0}); }
  void Clear(VuColor color) final {
    Do([&] { return canvas_.Clear(color); });
  }

  VuBitmapInfo GetInfo() const final {
    auto* const pixels = const_cast<uint8_t*>(locked_.data());
    return {this->state_.width, this->state_.height, this->state_.format, Pitch(),
            lock_ == Locked::No ? nullptr : pixels};
  }
  uint32_t GetSize() const final {
    return SurfaceBytes(this->state_.width, this->state_.height, this->state_.format);
  }

  void DrawPoint(VuPoint p, float size, VuColor color, VuTMatrix2D<float> m, VuBitmapImpl* mask,
                 VuTVector2D<float> maskCoord) final {
    Draw(nullptr, {}, mask, &maskCoord, [&](const Source&, const GlMask* masked) {
      canvas_.DrawPoint(p, size, color, m, masked);
    });
  }
  void DrawLine(VuPoint from, VuPoint to, VuColor color, VuTMatrix2D<float> m, VuBitmapImpl* mask,
                VuTVector2D<float>* maskCoords) final {
    Draw(nullptr, {}, mask, maskCoords, [&](const Source&, const GlMask* masked) {
      canvas_.DrawLine(from, to, color, m, masked);
    });
  }
  void DrawRect(VuRect rect, VuColor color, VuTMatrix2D<float> m, VuBitmapImpl* mask,
                VuTVector2D<float>* maskCoords) final {
    if (!mask && m.isIdentity() && Do([&] { return canvas_.FillBox(rect, color); })) return;
    Draw(nullptr, {}, mask, maskCoords, [&](const Source&, const GlMask* masked) {
      canvas_.DrawRect(ToExtent(rect), color, m, masked);
    });
  }
  void DrawObject(VuRect dst, VuBitmapImpl* src, VuRect srcRect, VuTMatrix2D<float> m,
                  VuColor color, VuBitmapImpl* mask, VuTVector2D<float>* maskCoords) final {
    if (!mask && BlitBox(dst, src, srcRect, m, color)) return;
    DrawObject(ToExtent(dst), src, ToExtent(srcRect), Edges::OnWholePixels, m, color, mask,
               maskCoords);
  }
  void DrawObject(VuTRect2D<float> dst, VuBitmapImpl* src, VuTRect2D<float> srcRect,
                  VuTMatrix2D<float> m, VuColor color, VuBitmapImpl* mask,
                  VuTVector2D<float>* maskCoords) final {
    DrawObject(ToExtent(dst), src, ToExtent(srcRect), Edges::SubPixel, m, color, mask, maskCoords);
  }

  void DrawText(VuFontImpl* font, const char* text, VuPoint pos, VuColor color,
                VuTMatrix2D<float> m, VuBitmapImpl* mask, VuTVector2D<float>* maskCoords,
                VuRect rect) final {
    Draw(nullptr, {}, mask, maskCoords, [&](const Source&, const GlMask* masked) {
      TextLayout line(font, atlases_.get(), text, pos, rect);
      backends::DrawText(canvas_, *atlases_, line, color, m, masked);
    });
  }

  /// The pixels are a copy while they are locked.
  bool Lock(bool write) final {
    if (lock_ != Locked::No) return false;
    const bool read = Do([&] {
      locked_.resize(static_cast<size_t>(Pitch()) * static_cast<size_t>(this->state_.height));
      return canvas_.Read(All(), locked_.data());
    });
    if (read) lock_ = write ? Locked::ForWriting : Locked::ForReading;
    return read;
  }
  bool Unlock() final {
    if (lock_ == Locked::No) return false;
    const bool write = lock_ == Locked::ForWriting;
    lock_ = Locked::No;
    const std::vector<uint8_t> pixels = std::move(locked_);
    locked_.clear();
    const auto pitch = static_cast<unsigned>(Pitch());
    return !write || Do([&] { return canvas_.Write(All(), pixels.data(), pitch); });
  }

  void Finish() override { EndFrame(&GlFunctions::Finish); }
  void Flush() override { EndFrame(&GlFunctions::Flush); }

  bool GetPixels(VuRect rect, void* dst) final {
    if (!dst || !IsInside(rect, this->state_.width, this->state_.height)) return false;
    return Do([&] { return canvas_.Read(ToBox(rect), dst); });
  }
  bool SetPixels(VuRect rect, const void* src, unsigned int n) final {
    if (!src || !IsInside(rect, this->state_.width, this->state_.height)) return false;
    return Do([&] { return canvas_.Write(ToBox(rect), src, n); });
  }
  bool CopyPixels(VuPoint dst, VuBitmapImpl* src, VuRect srcRect) final {
    return Do([&] {
      GlCanvas* const from = ToCanvas(src);
      if (!from) return false;
      const VuRect bounds = src->GetBounds();
      const CopyPlan plan = PlanCopy(dst.x, dst.y, All(), srcRect, ToBox(bounds));
      if (plan.box.IsEmpty()) return true;
      if (from != &canvas_ && from->Texture())
        return canvas_.Copy(plan.box, *from->Texture(), plan.srcX, plan.srcY);
      const auto copy = from->Snapshot(
          {plan.srcX, plan.srcY, plan.srcX + plan.box.Width(), plan.srcY + plan.box.Height()});
      return copy && canvas_.Copy(plan.box, *copy, 0, 0);
    });
  }

 protected:
  Box All() const { return {0, 0, this->state_.width, this->state_.height}; }

  /// Sends what has been drawn, and reports what went wrong with it.
  void EndFrame(PFNGLFLUSHPROC GlFunctions::*how) {
    const DrawTimer timer = DrawTimer::Drawing();
    GlDevice& device = canvas_.Device();
    device.Pending().Flush();
    const GlScope scope(device);
    if (!scope) return;
    (device.Gl().*how)();
    device.Check("drawing");
  }

 private:
  enum class Locked { No, ForReading, ForWriting };

  /// A source with the part that is drawn.
  struct Source {
    GlOperand operand{};
    Extent rect{};
  };

  static Extent ToExtent(const VuRect& r) {
    return {double(r.x), double(r.y), double(r.width), double(r.height)};
  }
  static Extent ToExtent(const VuTRect2D<float>& r) {
    const double x = double(r.minPoint().x()), y = double(r.minPoint().y());
    return {x, y, double(r.maxPoint().x()) - x, double(r.maxPoint().y()) - y};
  }
  int Pitch() const { return this->state_.width * BytesPerPixel(this->state_.format); }

  /// What `operation` says, or false and an error line if memory runs out.
  template <typename F>
  bool Do(F&& operation) {
    const DrawTimer timer = DrawTimer::Drawing();
    try {
      return operation();
    } catch (const std::bad_alloc&) {
      ZIRK_LOG_ERROR("no memory to draw with");
      return false;
    }
  }

  /// Whether the most usual operation will do, another bitmap drawn upright; then it has been done.
  bool BlitBox(const VuRect& dst, VuBitmapImpl* src, const VuRect& srcRect,
               const VuTMatrix2D<float>& m, VuColor color);

  /// Null after an error line.
  GlCanvas* ToCanvas(VuBitmapImpl* surface) const;

  void DrawObject(const Extent& dst, VuBitmapImpl* src, const Extent& srcRect, Edges edges,
                  const VuTMatrix2D<float>& m, VuColor color, VuBitmapImpl* mask,
                  const VuTVector2D<float>* maskCoords) {
    if (!src) return;
    Draw(src, srcRect, mask, maskCoords, [&](const Source& source, const GlMask* masked) {
      canvas_.DrawObject(dst, source.operand, source.rect, edges, m, color, masked);
    });
  }

  /// Resolves the surfaces that an operation reads, and draws.
  template <typename F>
  void Draw(VuBitmapImpl* src, const Extent& srcRect, VuBitmapImpl* mask,
            const VuTVector2D<float>* maskCoords, F&& draw) {
    Do([&] {
      std::unique_ptr<GlTexture> sourceCopy, maskCopy;
      Source source{{}, srcRect};
      GlMask masked{{}, maskCoords};
      if (src && !ToOperand(src, source.operand, &source.rect, sourceCopy)) return false;
      if (mask && !ToOperand(mask, masked.operand, nullptr, maskCopy)) return false;
      draw(source, mask ? &masked : nullptr);
      return true;
    });
  }

  /// What is drawn on, and what has no texture, is read from `copy`: of the part `rect`, which then
  /// goes by the copy, or of all.
  bool ToOperand(VuBitmapImpl* surface, GlOperand& operand, Extent* rect,
                 std::unique_ptr<GlTexture>& copy) const {
    GlCanvas* const canvas = ToCanvas(surface);
    if (!canvas) return false;
    operand = {canvas->Texture(), surface->GetScaleMode()};
    if (operand.texture && canvas != &canvas_) return true;
    Box part = ToBox(surface->GetBounds());
    if (rect) {
      const Extent visible = Cut(*rect, part);
      if (!(visible.width > 0 && visible.height > 0)) return false;
      part = Around(visible);
      rect->x -= part.x0;
      rect->y -= part.y0;
    }
    copy = canvas->Snapshot(part);
    operand.texture = copy.get();
    return copy != nullptr;
  }

  GlCanvas canvas_;
  const std::shared_ptr<AtlasGraphics> atlases_;
  std::vector<uint8_t> locked_;
  Locked lock_ = Locked::No;
};

/// An off-screen bitmap.
class GlBitmap final : public GlSurface<VuBitmapImpl> {
 public:
  using GlSurface::GlSurface;
};

template <class Base>
bool GlSurface<Base>::BlitBox(const VuRect& dst, VuBitmapImpl* src, const VuRect& srcRect,
                              const VuTMatrix2D<float>& m, VuColor color) {
  if (!src || typeid(*src) != typeid(GlBitmap)) return false;
  GlBitmap& bitmap = static_cast<GlBitmap&>(*src);
  const GlCanvas& from = bitmap.Canvas();
  if (&from == &canvas_ || &from.Device() != &canvas_.Device()) return false;
  const GlOperand operand = {from.Texture(), bitmap.GetScaleMode()};
  return Do([&] { return canvas_.BlitBox(dst, operand, srcRect, m, color); });
}

template <class Base>
GlCanvas* GlSurface<Base>::ToCanvas(VuBitmapImpl* surface) const {
  GlCanvas* canvas = nullptr;
  // Nearly always a bitmap, whose type is settled by one comparison.
  if (surface && typeid(*surface) == typeid(GlBitmap))
    canvas = &static_cast<GlBitmap*>(surface)->Canvas();
  else if (auto* screen = dynamic_cast<GlSurface<VuScreenImpl>*>(surface))
    canvas = &screen->Canvas();
  if (canvas && &canvas->Device() == &canvas_.Device()) return canvas;
  ZIRK_LOG_ERROR(canvas ? "a surface from before the context was lost cannot be drawn"
                        : "a surface of another backend can be neither source nor mask");
  return nullptr;
}

}  // namespace ZIRK::backends
