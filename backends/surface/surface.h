#pragma once

#include <zirk/impl/vubitmapimpl.h>

#include <memory>
#include <optional>
#include <utility>

#include "geometry/mapping.h"
#include "geometry/surfaceformat.h"
#include "surface/drawtimer.h"
#include "surface/memorybudget.h"
#include "surface/operands.h"
#include "surface/ownsurface.h"
#include "surface/renderer.h"
#include "surface/surfacestate.h"

namespace ZIRK::backends {

/// The common part of all surfaces. `Base` is VuBitmapImpl for a bitmap and VuScreenImpl for a
/// screen. It keeps the state, converts arguments to those of a renderer, finds the surfaces that
/// an operation reads, tracks locks and measures time. `Renderer` does the rest.
template <class Base, SurfaceRenderer Renderer>
class Surface : public Base {
 public:
  /// `reservation` is the memory of the surface in the budget of its context; it is not null.
  /// `arguments` are passed to the renderer's constructor after the state.
  template <typename... Arguments>
  Surface(std::unique_ptr<MemoryBudget::Reservation> reservation, int width, int height,
          VuPixelFormat format, Arguments&&... arguments)
      : state_{width, height, format},
        reservation_(std::move(reservation)),
        renderer_(state_, std::forward<Arguments>(arguments)...) {}

  Renderer& Drawing() { return renderer_; }
  const Renderer& Drawing() const { return renderer_; }

  // --- State ---

  void SetName(const char* name) final {
    reservation_->Rename(name);
    renderer_.SetName(name);
  }
  VuBitmapInfo GetInfo() const final {
    void* const pixels = lock_ == Locked::No ? nullptr : renderer_.LockedPixels();
    return {state_.width, state_.height, state_.format, renderer_.Pitch(), pixels};
  }
  uint32_t GetSize() const final {
    return SurfaceBytes(state_.width, state_.height, state_.format);
  }
  VuRect GetBounds() const final { return {0, 0, state_.width, state_.height}; }
  VuRect GetClippingRect() const final { return state_.clip; }
  void SetClippingRect(VuRect rect) final { Change(state_.clip, rect); }
  void GetBlendingFunc(VuBlendingFactor& src, VuBlendingFactor& dst) const final {
    src = state_.factors.srcColor;
    dst = state_.factors.dstColor;
  }
  void SetBlendingFunc(VuBlendingFactor src, VuBlendingFactor dst) final {
    Change(state_.factors, {src, dst, src, dst});
  }
  void SetBlendingFunc(VuBlendingFactor srcColor, VuBlendingFactor dstColor,
                       VuBlendingFactor srcAlpha, VuBlendingFactor dstAlpha) final {
    Change(state_.factors, {srcColor, dstColor, srcAlpha, dstAlpha});
  }
  bool GetBlendEnabled() const final { return state_.blendEnabled; }
  void SetBlendEnabled(bool enabled) final { Change(state_.blendEnabled, enabled); }
  VuColor GetBlendColor() const final { return state_.blendColor; }
  void SetBlendColor(VuColor color) final { Change(state_.blendColor, color); }
  VuScaleMode GetScaleMode() const final { return state_.scaleMode; }
  void SetScaleMode(VuScaleMode mode) final { Change(state_.scaleMode, mode); }
  bool IsTextureBacked() const override { return renderer_.IsTextureBacked(); }

  // --- Drawing by a transform, which is drawing by the matrix made from it ---

  void DrawPoint(VuPoint p, float size, VuColor color, VuTransform t, VuBitmapImpl* mask,
                 VuTVector2D<float> maskCoord) final {
    DrawPoint(p, size, color, MatrixF(t), mask, maskCoord);
  }
  void DrawLine(VuPoint from, VuPoint to, VuColor color, VuTransform t, VuBitmapImpl* mask,
                VuTVector2D<float>* maskCoords) final {
    if (IsIdentity(t)) return DrawLine(from, to, color, kIdentity, mask, maskCoords);
    DrawLine(from, to, color, MatrixF(t), mask, maskCoords);
  }
  void DrawRect(VuRect rect, VuColor color, VuTransform t, VuBitmapImpl* mask,
                VuTVector2D<float>* maskCoords) final {
    if (!IsIdentity(t)) return DrawRect(rect, color, MatrixF(t), mask, maskCoords);
    if (mask || !FillBox(rect, color)) DrawRect(rect, color, kIdentity, mask, maskCoords);
  }
  void DrawObject(VuRect dst, VuBitmapImpl* src, VuRect srcRect, VuTransform t, VuColor color,
                  VuBitmapImpl* mask, VuTVector2D<float>* maskCoords) final {
    if (IsIdentity(t)) return DrawObject(dst, src, srcRect, kIdentity, color, mask, maskCoords);
    DrawObject(dst, src, srcRect, MatrixF(t), color, mask, maskCoords);
  }
  void DrawText(VuFontImpl* font, const char* text, VuPoint pos, VuColor color, VuTransform t,
                VuBitmapImpl* mask, VuTVector2D<float>* maskCoords, VuRect rect) final {
    if (IsIdentity(t)) return DrawText(font, text, pos, color, kIdentity, mask, maskCoords, rect);
    DrawText(font, text, pos, color, MatrixF(t), mask, maskCoords, rect);
  }

  // --- Drawing by a matrix ---

  void DrawPoint(VuPoint p, float size, VuColor color, MatrixF m, VuBitmapImpl* mask,
                 VuTVector2D<float> maskCoord) final {
    const DrawTimer timer = DrawTimer::Drawing();
    const GivenMask given(renderer_, mask, &maskCoord);
    if (given) renderer_.DrawPoint(p, size, color, m, given.OrNull());
  }
  void DrawLine(VuPoint from, VuPoint to, VuColor color, MatrixF m, VuBitmapImpl* mask,
                VuTVector2D<float>* maskCoords) final {
    const DrawTimer timer = DrawTimer::Drawing();
    const GivenMask given(renderer_, mask, maskCoords);
    if (given) renderer_.DrawLine(from, to, color, m, given.OrNull());
  }
  void DrawRect(VuRect rect, VuColor color, MatrixF m, VuBitmapImpl* mask,
                VuTVector2D<float>* maskCoords) final {
    if (!mask && m.isIdentity() && FillBox(rect, color)) return;
    const DrawTimer timer = DrawTimer::Drawing();
    const GivenMask given(renderer_, mask, maskCoords);
    if (given) renderer_.DrawRect(ToRectD(rect), color, m, given.OrNull());
  }
  void DrawObject(VuRect dst, VuBitmapImpl* src, VuRect srcRect, MatrixF m, VuColor color,
                  VuBitmapImpl* mask, VuTVector2D<float>* maskCoords) final {
    if (!src) return;
    const DrawTimer timer = DrawTimer::Drawing();
    if (!mask && renderer_.BlitBox(dst, *src, srcRect, m, color)) return;
    DrawSource(ToRectD(dst), *src, ToRectD(srcRect), Edges::OnWholePixels, m, color, mask,
               maskCoords);
  }
  void DrawObject(VuTRect2D<float> dst, VuBitmapImpl* src, VuTRect2D<float> srcRect, MatrixF m,
                  VuColor color, VuBitmapImpl* mask, VuTVector2D<float>* maskCoords) final {
    if (!src) return;
    const DrawTimer timer = DrawTimer::Drawing();
    DrawSource(ToRectD(dst), *src, ToRectD(srcRect), Edges::SubPixel, m, color, mask, maskCoords);
  }
  void DrawText(VuFontImpl* font, const char* text, VuPoint pos, VuColor color, MatrixF m,
                VuBitmapImpl* mask, VuTVector2D<float>* maskCoords, VuRect rect) final {
    const DrawTimer timer = DrawTimer::Drawing();
    const GivenMask given(renderer_, mask, maskCoords);
    if (given) renderer_.DrawText({font, text, pos, rect}, color, m, given.OrNull());
  }

  // --- Pixels ---

  void Clear() final { Clear(VuColor{0}); }
  void Clear(VuColor color) final {
    const DrawTimer timer = DrawTimer::Drawing();
    renderer_.Clear(color);
  }
  bool GetPixels(VuRect rect, void* dst) final {
    if (!dst || !IsInside(rect, state_.width, state_.height)) return false;
    const DrawTimer timer = DrawTimer::Drawing();
    return renderer_.Read(ToBox(rect), dst);
  }
  bool SetPixels(VuRect rect, const void* src, unsigned int n) final {
    if (!src || !IsInside(rect, state_.width, state_.height)) return false;
    const DrawTimer timer = DrawTimer::Drawing();
    return renderer_.Write(ToBox(rect), src, n);
  }
  bool CopyPixels(VuPoint dst, VuBitmapImpl* src, VuRect srcRect) final {
    const DrawTimer timer = DrawTimer::Drawing();
    return src ? renderer_.Copy(dst, *src, srcRect) : RefuseSource();
  }

  // --- Locking ---

  bool Lock(bool write) final {
    if (lock_ != Locked::No) return false;
    const DrawTimer timer = DrawTimer::Drawing();
    if (!renderer_.Lock(write)) return false;
    lock_ = write ? Locked::ForWriting : Locked::ForReading;
    return true;
  }
  bool Unlock() final {
    if (lock_ == Locked::No) return false;
    const DrawTimer timer = DrawTimer::Drawing();
    return renderer_.Unlock(std::exchange(lock_, Locked::No) == Locked::ForWriting);
  }

  // --- The end of a frame ---

  void Finish() override {
    const DrawTimer timer = DrawTimer::Drawing();
    renderer_.Finish();
  }
  void Flush() override {
    const DrawTimer timer = DrawTimer::Drawing();
    renderer_.Flush();
  }

 protected:
  const SurfaceState& State() const { return state_; }

 private:
  using Pixels = typename Renderer::Pixels;
  enum class Locked { No, ForReading, ForWriting };

  // The identity, the usual transform, needs no conversion to a matrix.
  static inline const MatrixF kIdentity;
  static bool IsIdentity(const VuTransform& t) {
    return t.translateX == 0 && t.translateY == 0 && t.scaleX == 1 && t.scaleY == 1 &&
           t.rotation == 0;
  }

  bool FillBox(const VuRect& rect, VuColor color) {
    const DrawTimer timer = DrawTimer::Drawing();
    return renderer_.FillBox(rect, color);
  }

  /// The optional mask of an operation, in the form that the renderer reads.
  class GivenMask {
   public:
    GivenMask(Renderer& renderer, VuBitmapImpl* surface, const VuTVector2D<float>* coords) {
      if (surface) Read(renderer, *surface, coords);
    }

    /// False if the mask cannot be read; then nothing is drawn.
    explicit operator bool() const { return readable_; }
    const Mask<Pixels>* OrNull() const { return read_ ? &read_->mask : nullptr; }

   private:
    struct ReadMask {
      Mask<Pixels> mask;
      typename Renderer::SourceCopy copy;
    };
    // Not inlined, since most operations have no mask.
    [[gnu::noinline]] void Read(Renderer& renderer, VuBitmapImpl& surface,
                                const VuTVector2D<float>* coords) {
      read_.emplace(ReadMask{{{}, coords}, {}});
      readable_ = renderer.Resolve(surface, nullptr, read_->mask.source, read_->copy);
    }

    std::optional<ReadMask> read_;
    bool readable_ = true;
  };

  template <typename Field>
  void Change(Field& field, const Field& value) {
    field = value;
    ++state_.revision;
  }

  // Not inlined, so that the usual cases need few registers.
  [[gnu::noinline]] void DrawSource(const RectD& dst, VuBitmapImpl& src, RectD srcRect, Edges edges,
                                    const MatrixF& m, VuColor color, VuBitmapImpl* mask,
                                    const VuTVector2D<float>* maskCoords) {
    const GivenMask given(renderer_, mask, maskCoords);
    if (!given) return;
    Source<Pixels> source{};
    typename Renderer::SourceCopy copy{};
    if (renderer_.Resolve(src, &srcRect, source, copy))
      renderer_.DrawObject(dst, source, srcRect, edges, m, color, given.OrNull());
  }

  SurfaceState state_;
  const std::unique_ptr<MemoryBudget::Reservation> reservation_;
  Renderer renderer_;
  Locked lock_ = Locked::No;
};

}  // namespace ZIRK::backends
