#pragma once

#include <zirk/impl/log.h>
#include <zirk/impl/vuscreenimpl.h>

#include <memory>
#include <new>
#include <optional>
#include <typeinfo>
#include <utility>

#include "common/bitmapbase.h"
#include "common/drawtimer.h"
#include "common/surfaceformat.h"
#include "common/textlayout.h"
#include "images/atlasgraphics.h"
#include "software/painter.h"
#include "software/pixeltransfer.h"
#include "software/textdrawing.h"

namespace ZIRK::backends {

/// A surface in memory, drawn by the processor. `Base` is VuBitmapImpl or VuScreenImpl.
///
/// Sources and masks are other surfaces of this kind; anything else draws nothing, with an error
/// line.
template <class Base>
class SoftwareSurface : public BitmapBase<Base> {
 public:
  using State = BitmapBase<Base>;
  using State::DrawLine;
  using State::DrawObject;
  using State::DrawPoint;
  using State::DrawRect;
  using State::DrawText;

  /// `atlases` makes the atlases of fonts that are first drawn with here. Throws std::bad_alloc.
  SoftwareSurface(std::unique_ptr<SurfaceLedger::Entry> entry, int width, int height,
                  VuPixelFormat format, std::shared_ptr<AtlasGraphics> atlases,
                  PixelBuffer::Contents contents = PixelBuffer::Contents::Clear)
      : State(std::move(entry), width, height, format),
        pixels_(width, height, format, contents),
        painter_(pixels_, this->state_),
        atlases_(std::move(atlases)) {}

  PixelBuffer& Pixels() { return pixels_; }
  const PixelBuffer& Pixels() const { return pixels_; }
  Operand AsOperand() const { return {&pixels_, this->state_.scaleMode}; }

  void Clear() final { Clear(VuColor{0}); }
  void Clear(VuColor color) final {
    const DrawTimer timer = DrawTimer::Drawing();
    ClearPixels(pixels_, color);
    painter_.Touch(pixels_.Bounds());
  }

  VuBitmapInfo GetInfo() const final {
    uint8_t* const pixels = const_cast<PixelBuffer&>(pixels_).Row(0);
    return {pixels_.Width(), pixels_.Height(), pixels_.Format(), pixels_.Pitch(),
            lock_ == Locked::No ? nullptr : pixels};
  }
  uint32_t GetSize() const final {
    return SurfaceBytes(pixels_.Width(), pixels_.Height(), pixels_.Format());
  }

  void DrawPoint(VuPoint p, float size, VuColor color, VuTMatrix2D<float> m, VuBitmapImpl* mask,
                 VuTVector2D<float> maskCoord) final {
    Draw(nullptr, {}, mask, &maskCoord,
         [&](const Source&, const auto& masked) { painter_.DrawPoint(p, size, color, m, masked); });
  }
  void DrawLine(VuPoint from, VuPoint to, VuColor color, VuTMatrix2D<float> m, VuBitmapImpl* mask,
                VuTVector2D<float>* maskCoords) final {
    Draw(nullptr, {}, mask, maskCoords,
         [&](const Source&, const auto& masked) { painter_.DrawLine(from, to, color, m, masked); });
  }
  void DrawRect(VuRect rect, VuColor color, VuTMatrix2D<float> m, VuBitmapImpl* mask,
                VuTVector2D<float>* maskCoords) final {
    Draw(nullptr, {}, mask, maskCoords, [&](const Source&, const auto& masked) {
      painter_.DrawRect(ToExtent(rect), color, m, masked);
    });
  }
  void DrawObject(VuRect dst, VuBitmapImpl* src, VuRect srcRect, VuTMatrix2D<float> m,
                  VuColor color, VuBitmapImpl* mask, VuTVector2D<float>* maskCoords) final {
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
    Draw(nullptr, {}, mask, maskCoords, [&](const Source&, const auto& masked) {
      TextLayout line(font, atlases_.get(), text, pos, rect);
      backends::DrawText(painter_, *atlases_, line, color, m, masked);
    });
  }

  bool Lock(bool write) final {
    if (lock_ != Locked::No) return false;
    lock_ = write ? Locked::ForWriting : Locked::ForReading;
    return true;
  }
  bool Unlock() final {
    if (lock_ == Locked::No) return false;
    if (lock_ == Locked::ForWriting) {
      pixels_.RestoreOpaqueBits(pixels_.Bounds());
      painter_.Touch(pixels_.Bounds());
    }
    lock_ = Locked::No;
    return true;
  }

  void Finish() override {}
  void Flush() override {}

  bool GetPixels(VuRect rect, void* dst) final { return backends::GetPixels(pixels_, rect, dst); }
  bool SetPixels(VuRect rect, const void* src, unsigned int n) final {
    if (!backends::SetPixels(pixels_, rect, src, n)) return false;
    painter_.Touch(ToBox(rect));
    return true;
  }
  bool CopyPixels(VuPoint dst, VuBitmapImpl* src, VuRect srcRect) final {
    const std::optional<Operand> operand = ToOperand(src);
    if (!operand) return false;
    painter_.Touch(backends::CopyPixels(pixels_, dst, *operand->pixels, srcRect));
    return true;
  }

 protected:
  /// What has changed since the last call.
  Box TakeDamage() { return painter_.TakeTouched(); }

 private:
  enum class Locked { No, ForReading, ForWriting };

  /// A source with the part that is drawn. Where the source is this surface, a copy of that part.
  struct Source {
    std::optional<Operand> operand;
    Extent rect{};
  };

  static Extent ToExtent(const VuRect& r) {
    return {double(r.x), double(r.y), double(r.width), double(r.height)};
  }
  static Extent ToExtent(const VuTRect2D<float>& r) {
    const double x = double(r.minPoint().x()), y = double(r.minPoint().y());
    return {x, y, double(r.maxPoint().x()) - x, double(r.maxPoint().y()) - y};
  }

  static std::optional<Operand> ToOperand(VuBitmapImpl* surface);

  void DrawObject(const Extent& dst, VuBitmapImpl* src, const Extent& srcRect, Edges edges,
                  const VuTMatrix2D<float>& m, VuColor color, VuBitmapImpl* mask,
                  const VuTVector2D<float>* maskCoords) {
    if (!src) return;
    Draw(src, srcRect, mask, maskCoords, [&](const Source& source, const auto& masked) {
      painter_.DrawObject(dst, *source.operand, source.rect, edges, m, color, masked);
    });
  }

  /// Resolves the surfaces that an operation reads, and draws.
  template <typename F>
  void Draw(VuBitmapImpl* src, const Extent& srcRect, VuBitmapImpl* mask,
            const VuTVector2D<float>* maskCoords, F&& draw) {
    const DrawTimer timer = DrawTimer::Drawing();
    try {
      if (!src && !mask) return draw(Source(), Painter::OptionalMask());
      Source source{std::nullopt, srcRect};
      Painter::OptionalMask masked;
      if (src && !(source.operand = ToOperand(src))) return;
      if (mask) {
        const std::optional<Operand> operand = ToOperand(mask);
        if (!operand) return;
        masked = Painter::MaskArgument{*operand, maskCoords};
      }
      std::optional<PixelBuffer> copy;
      if (ReadFromCopy(source, masked, copy)) draw(source, masked);
    } catch (const std::bad_alloc&) {
      ZIRK_LOG_ERROR("no memory to draw with");
    }
  }

  /// Makes an operation that reads the surface that it draws on read a copy instead. False if
  /// there is nothing to read.
  bool ReadFromCopy(Source& source, Painter::OptionalMask& masked,
                    std::optional<PixelBuffer>& copy) const {
    const bool ownSource = source.operand && source.operand->pixels == &pixels_;
    const bool ownMask = masked && masked->mask.pixels == &pixels_;
    if (!ownSource && !ownMask) return true;
    Box part = pixels_.Bounds();
    if (!ownMask) {
      const Extent visible = Cut(source.rect, part);
      if (!(visible.width > 0 && visible.height > 0)) return false;
      part = Around(visible);
    }
    copy.emplace(part.Width(), part.Height(), pixels_.Format());
    backends::CopyPixels(*copy, {0, 0}, pixels_, {part.x0, part.y0, part.Width(), part.Height()});
    if (ownMask) masked->mask.pixels = &*copy;
    if (ownSource) {
      source.operand->pixels = &*copy;
      source.rect.x -= part.x0;
      source.rect.y -= part.y0;
    }
    return true;
  }

  PixelBuffer pixels_;
  Painter painter_;
  const std::shared_ptr<AtlasGraphics> atlases_;
  Locked lock_ = Locked::No;
};

/// An off-screen bitmap.
class SoftwareBitmap final : public SoftwareSurface<VuBitmapImpl> {
 public:
  using SoftwareSurface::SoftwareSurface;
};

/// Makes the atlases' bitmaps.
class SoftwareAtlases final : public AtlasGraphics {
 public:
  using AtlasGraphics::AtlasGraphics;

 protected:
  std::unique_ptr<VuBitmapImpl> MakeBitmap(Entry entry, int width, int height,
                                           VuPixelFormat format) override {
    // Clearing it would take longer than packing the glyphs.
    return std::make_unique<SoftwareBitmap>(std::move(entry), width, height, format,
                                            shared_from_this(), PixelBuffer::Contents::Undefined);
  }
};

template <class Base>
std::optional<Operand> SoftwareSurface<Base>::ToOperand(VuBitmapImpl* surface) {
  // Nearly always a bitmap, whose type is settled by one comparison.
  if (surface && typeid(*surface) == typeid(SoftwareBitmap))
    return static_cast<SoftwareBitmap*>(surface)->AsOperand();
  if (const auto* screen = dynamic_cast<SoftwareSurface<VuScreenImpl>*>(surface))
    return screen->AsOperand();
  ZIRK_LOG_ERROR("a surface of another backend can be neither source nor mask");
  return std::nullopt;
}

}  // namespace ZIRK::backends
