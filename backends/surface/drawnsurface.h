#pragma once

#include <memory>
#include <new>
#include <utility>

#include "geometry/placement.h"
#include "geometry/surfaceformat.h"
#include "surface/bitmapbase.h"
#include "surface/drawmemory.h"
#include "surface/drawtimer.h"
#include "surface/operands.h"
#include "surface/ownsurface.h"

namespace ZIRK::backends {

/// What all surfaces that are drawn on do alike, on top of `Base`, as with BitmapBase: arguments
/// are converted, the surfaces that an operation reads are found, locks are kept count of, the time
/// is taken, and memory that runs out is reported. `Renderer` does the rest. It has
///
/// - a constructor whose first argument is the surface's state;
/// - `Pixels`, the form in which it reads surfaces; `SourceCopy`, which may hold what is read in
/// place of
///   a surface;
/// - `bool Resolve(VuBitmapImpl& surface, Extent* part, Source<Pixels>&, SourceCopy&)`: what
/// `surface` is read
///   from: a copy if it is the one that is drawn on, or if there is no other way, and then only of
///   `part`, which from there on goes by the copy, unless that is null. False, after an error line
///   if there is something to be said, if there is nothing to read;
/// - the drawing operations, with a `const Mask*` that is null where there is none: DrawPoint,
///   DrawLine, DrawRect (an Extent), DrawObject (Extents), DrawText (a TextArguments);
/// - `bool FillBox(rect, color)` and `bool BlitBox(dst, VuBitmapImpl& src, srcRect, matrix, color)`
///   for the usual cases, worked out quickly: false, with nothing drawn, in any other;
/// - `bool Clear(color)`, and `bool Read(box, dst)`, `bool Write(box, src, pitch)` and
///   `bool Copy(at, VuBitmapImpl& src, srcRect)` for pixels; boxes lie on the surface;
/// - `bool Lock(write)` and `bool Unlock(written)`, with `LockedPixels()` between, and `Pitch()`.
///
/// All of these but the last line's may throw std::bad_alloc.
template <class Base, class Renderer>
class DrawnSurface : public BitmapBase<Base> {
 public:
  using State = BitmapBase<Base>;
  using Matrix = VuTMatrix2D<float>;
  using State::DrawLine;
  using State::DrawObject;
  using State::DrawPoint;
  using State::DrawRect;
  using State::DrawText;

  /// `arguments` are the renderer's, after the state.
  template <typename... Arguments>
  DrawnSurface(std::unique_ptr<SurfaceLedger::Entry> entry, int width, int height,
               VuPixelFormat format, Arguments&&... arguments)
      : State(std::move(entry), width, height, format),
        renderer_(this->state_, std::forward<Arguments>(arguments)...) {}

  void Clear() final { Clear(VuColor{0}); }
  void Clear(VuColor color) final {
    Do([&] { return renderer_.Clear(color); });
  }

  VuBitmapInfo GetInfo() const final {
    void* const pixels = lock_ == Locked::No ? nullptr : renderer_.LockedPixels();
    return {this->state_.width, this->state_.height, this->state_.format, renderer_.Pitch(),
            pixels};
  }
  uint32_t GetSize() const final {
    return SurfaceBytes(this->state_.width, this->state_.height, this->state_.format);
  }

  void DrawPoint(VuPoint p, float size, VuColor color, Matrix m, VuBitmapImpl* mask,
                 VuTVector2D<float> maskCoord) final {
    Draw(mask, &maskCoord,
         [&](const Mask* masked) { renderer_.DrawPoint(p, size, color, m, masked); });
  }
  void DrawLine(VuPoint from, VuPoint to, VuColor color, Matrix m, VuBitmapImpl* mask,
                VuTVector2D<float>* maskCoords) final {
    Draw(mask, maskCoords,
         [&](const Mask* masked) { renderer_.DrawLine(from, to, color, m, masked); });
  }
  void DrawRect(VuRect rect, VuColor color, Matrix m, VuBitmapImpl* mask,
                VuTVector2D<float>* maskCoords) final {
    if (!mask && m.isIdentity() && Do([&] { return renderer_.FillBox(rect, color); })) return;
    Draw(mask, maskCoords,
         [&](const Mask* masked) { renderer_.DrawRect(ToExtent(rect), color, m, masked); });
  }
  void DrawObject(VuRect dst, VuBitmapImpl* src, VuRect srcRect, Matrix m, VuColor color,
                  VuBitmapImpl* mask, VuTVector2D<float>* maskCoords) final {
    if (!src) return;
    if (!mask && Do([&] { return renderer_.BlitBox(dst, *src, srcRect, m, color); })) return;
    DrawObject(ToExtent(dst), *src, ToExtent(srcRect), Edges::OnWholePixels, m, color, mask,
               maskCoords);
  }
  void DrawObject(VuTRect2D<float> dst, VuBitmapImpl* src, VuTRect2D<float> srcRect, Matrix m,
                  VuColor color, VuBitmapImpl* mask, VuTVector2D<float>* maskCoords) final {
    if (!src) return;
    DrawObject(ToExtent(dst), *src, ToExtent(srcRect), Edges::SubPixel, m, color, mask, maskCoords);
  }
  void DrawText(VuFontImpl* font, const char* text, VuPoint pos, VuColor color, Matrix m,
                VuBitmapImpl* mask, VuTVector2D<float>* maskCoords, VuRect rect) final {
    Draw(mask, maskCoords, [&](const Mask* masked) {
      renderer_.DrawText(TextArguments{font, text, pos, rect}, color, m, masked);
    });
  }

  bool Lock(bool write) final {
    if (lock_ != Locked::No || !Do([&] { return renderer_.Lock(write); })) return false;
    lock_ = write ? Locked::ForWriting : Locked::ForReading;
    return true;
  }
  bool Unlock() final {
    if (lock_ == Locked::No) return false;
    const bool written = std::exchange(lock_, Locked::No) == Locked::ForWriting;
    return Do([&] { return renderer_.Unlock(written); });
  }

  bool GetPixels(VuRect rect, void* dst) final {
    if (!dst || !IsInside(rect, this->state_.width, this->state_.height)) return false;
    return Do([&] { return renderer_.Read(ToBox(rect), dst); });
  }
  bool SetPixels(VuRect rect, const void* src, unsigned int n) final {
    if (!src || !IsInside(rect, this->state_.width, this->state_.height)) return false;
    return Do([&] { return renderer_.Write(ToBox(rect), src, n); });
  }
  bool CopyPixels(VuPoint dst, VuBitmapImpl* src, VuRect srcRect) final {
    return Do([&] { return src ? renderer_.Copy(dst, *src, srcRect) : RefuseSource(); });
  }

  Renderer& Drawing() { return renderer_; }
  const Renderer& Drawing() const { return renderer_; }

 private:
  using Pixels = typename Renderer::Pixels;
  using Mask = backends::Mask<Pixels>;
  enum class Locked { No, ForReading, ForWriting };

  static Extent ToExtent(const VuTRect2D<float>& r) {
    const double x = double(r.minPoint().x()), y = double(r.minPoint().y());
    return {x, y, double(r.maxPoint().x()) - x, double(r.maxPoint().y()) - y};
  }
  static Extent ToExtent(const VuRect& r) { return backends::ToExtent(r); }

  /// What `operation` says, or false and an error line if memory runs out.
  template <typename F>
  bool Do(F&& operation) {
    const DrawTimer timer = DrawTimer::Drawing();
    try {
      return operation();
    } catch (const std::bad_alloc&) {
      return ReportNoMemory();
    }
  }

  /// Draws, through the mask if there is one. Apart, for the usual cases to need few registers.
  template <typename F>
  [[gnu::noinline]] void Draw(VuBitmapImpl* mask, const VuTVector2D<float>* maskCoords, F&& draw) {
    Do([&] {
      if (!mask) {
        draw(nullptr);
        return true;
      }
      Mask masked{{}, maskCoords};
      typename Renderer::SourceCopy copy;
      if (!renderer_.Resolve(*mask, nullptr, masked.source, copy)) return false;
      draw(&masked);
      return true;
    });
  }

  void DrawObject(const Extent& dst, VuBitmapImpl& src, const Extent& srcRect, Edges edges,
                  const Matrix& m, VuColor color, VuBitmapImpl* mask,
                  const VuTVector2D<float>* maskCoords) {
    Draw(mask, maskCoords, [&](const Mask* masked) {
      Source<Pixels> source{};
      typename Renderer::SourceCopy copy;
      Extent part = srcRect;
      if (!renderer_.Resolve(src, &part, source, copy)) return;
      renderer_.DrawObject(dst, source, part, edges, m, color, masked);
    });
  }

  Renderer renderer_;
  Locked lock_ = Locked::No;
};

}  // namespace ZIRK::backends
