#pragma once

#include <zirk/impl/vubitmapimpl.h>

#include <memory>
#include <utility>

#include "surface/surfaceledger.h"
#include "surface/surfacestate.h"

namespace ZIRK::backends {

/// What all of our surfaces do alike, on top of `Base`, which is VuBitmapImpl for a bitmap and
/// VuScreenImpl for a screen: they keep their state, and draw a transform as the matrix made from
/// it. What is left to a backend is clearing, the matrix forms and pixel access.
template <class Base>
class BitmapBase : public Base {
 public:
  using Base::Clear;
  using Base::DrawLine;
  using Base::DrawObject;
  using Base::DrawPoint;
  using Base::DrawRect;
  using Base::DrawText;

  /// `entry` is the surface's place in its context's ledger, not null.
  BitmapBase(std::unique_ptr<SurfaceLedger::Entry> entry, int width, int height,
             VuPixelFormat format)
      : state_{width, height, format}, entry_(std::move(entry)) {}

  void SetName(const char* name) override { entry_->Rename(name); }

  VuRect GetBounds() const final { return {0, 0, state_.width, state_.height}; }

  VuRect GetClippingRect() const final { return state_.clip; }
  void SetClippingRect(VuRect rect) final {
    state_.clip = rect;
    ++state_.revision;
  }

  void GetBlendingFunc(VuBlendingFactor& src, VuBlendingFactor& dst) const final {
    src = state_.factors.srcColor;
    dst = state_.factors.dstColor;
  }
  void SetBlendingFunc(VuBlendingFactor src, VuBlendingFactor dst) final {
    SetBlendingFunc(src, dst, src, dst);
  }
  void SetBlendingFunc(VuBlendingFactor srcColor, VuBlendingFactor dstColor,
                       VuBlendingFactor srcAlpha, VuBlendingFactor dstAlpha) final {
    state_.factors = {srcColor, dstColor, srcAlpha, dstAlpha};
    ++state_.revision;
  }
  bool GetBlendEnabled() const final { return state_.blendEnabled; }
  void SetBlendEnabled(bool enabled) final {
    state_.blendEnabled = enabled;
    ++state_.revision;
  }
  VuColor GetBlendColor() const final { return state_.blendColor; }
  void SetBlendColor(VuColor color) final {
    state_.blendColor = color;
    ++state_.revision;
  }
  VuScaleMode GetScaleMode() const final { return state_.scaleMode; }
  void SetScaleMode(VuScaleMode mode) final {
    state_.scaleMode = mode;
    ++state_.revision;
  }

  void DrawPoint(VuPoint p, float size, VuColor color, VuTransform t, VuBitmapImpl* mask,
                 VuTVector2D<float> maskCoord) final {
    this->DrawPoint(p, size, color, VuTMatrix2D<float>(t), mask, maskCoord);
  }
  void DrawLine(VuPoint from, VuPoint to, VuColor color, VuTransform t, VuBitmapImpl* mask,
                VuTVector2D<float>* maskCoords) final {
    this->DrawLine(from, to, color, VuTMatrix2D<float>(t), mask, maskCoords);
  }
  void DrawRect(VuRect rect, VuColor color, VuTransform t, VuBitmapImpl* mask,
                VuTVector2D<float>* maskCoords) final {
    if (IsIdentity(t)) return this->DrawRect(rect, color, kIdentity, mask, maskCoords);
    this->DrawRect(rect, color, VuTMatrix2D<float>(t), mask, maskCoords);
  }
  void DrawObject(VuRect dst, VuBitmapImpl* src, VuRect srcRect, VuTransform t, VuColor color,
                  VuBitmapImpl* mask, VuTVector2D<float>* maskCoords) final {
    if (IsIdentity(t))
      return this->DrawObject(dst, src, srcRect, kIdentity, color, mask, maskCoords);
    this->DrawObject(dst, src, srcRect, VuTMatrix2D<float>(t), color, mask, maskCoords);
  }
  void DrawText(VuFontImpl* font, const char* text, VuPoint pos, VuColor color, VuTransform t,
                VuBitmapImpl* mask, VuTVector2D<float>* maskCoords, VuRect rect) final {
    this->DrawText(font, text, pos, color, VuTMatrix2D<float>(t), mask, maskCoords, rect);
  }

 protected:
  SurfaceState state_;

 private:
  // The usual transform is not made into a matrix each time.
  static inline const VuTMatrix2D<float> kIdentity;
  static bool IsIdentity(const VuTransform& t) {
    return t.translateX == 0 && t.translateY == 0 && t.scaleX == 1 && t.scaleY == 1 &&
           t.rotation == 0;
  }

  std::unique_ptr<SurfaceLedger::Entry> entry_;
};

}  // namespace ZIRK::backends
