#include "idlesurface.h"

namespace ZIRK::bench {

namespace {

using Vector = VuTVector2D<float>;
using Matrix = VuTMatrix2D<float>;
using RectF = VuTRect2D<float>;
using Factor = VuBlendingFactor;

class IdleSurface final : public VuBitmapImpl {
 public:
  using VuBitmapImpl::Clear;

  void SetName(const char*) override {}
  void Clear(VuColor) override {}
  VuBitmapInfo GetInfo() const override { return {}; }
  uint32_t GetSize() const override { return 0; }
  VuRect GetBounds() const override { return {0, 0, 64, 64}; }
  VuRect GetClippingRect() const override { return {}; }
  void SetClippingRect(VuRect) override {}
  void GetBlendingFunc(Factor&, Factor&) const override {}
  void SetBlendingFunc(Factor, Factor) override {}
  void SetBlendingFunc(Factor, Factor, Factor, Factor) override {}
  bool GetBlendEnabled() const override { return true; }
  void SetBlendEnabled(bool) override {}
  VuColor GetBlendColor() const override { return {}; }
  void SetBlendColor(VuColor) override {}
  VuScaleMode GetScaleMode() const override { return {}; }
  void SetScaleMode(VuScaleMode) override {}

  void DrawPoint(VuPoint, float, VuColor, VuTransform, VuBitmapImpl*, Vector) override {}
  void DrawPoint(VuPoint, float, VuColor, Matrix, VuBitmapImpl*, Vector) override {}
  void DrawLine(VuPoint, VuPoint, VuColor, VuTransform, VuBitmapImpl*, Vector*) override {}
  void DrawLine(VuPoint, VuPoint, VuColor, Matrix, VuBitmapImpl*, Vector*) override {}
  void DrawRect(VuRect, VuColor, VuTransform, VuBitmapImpl*, Vector*) override {}
  void DrawRect(VuRect, VuColor, Matrix, VuBitmapImpl*, Vector*) override {}
  void DrawObject(VuRect, VuBitmapImpl*, VuRect, VuTransform, VuColor, VuBitmapImpl*,
                  Vector*) override {}
  void DrawObject(VuRect, VuBitmapImpl*, VuRect, Matrix, VuColor, VuBitmapImpl*, Vector*) override {
  }
  void DrawObject(RectF, VuBitmapImpl*, RectF, Matrix, VuColor, VuBitmapImpl*, Vector*) override {}
  void DrawText(VuFontImpl*, const char*, VuPoint, VuColor, VuTransform, VuBitmapImpl*, Vector*,
                VuRect) override {}
  void DrawText(VuFontImpl*, const char*, VuPoint, VuColor, Matrix, VuBitmapImpl*, Vector*,
                VuRect) override {}

  bool Lock(bool) override { return false; }
  bool Unlock() override { return false; }
  void Finish() override {}
  void Flush() override {}
  bool GetPixels(VuRect, void*) override { return false; }
  bool SetPixels(VuRect, const void*, unsigned int) override { return false; }
  bool CopyPixels(VuPoint, VuBitmapImpl*, VuRect) override { return false; }
};

}  // namespace

VuBitmapImpl* MakeIdleSurface() {
  return new IdleSurface;
}

}  // namespace ZIRK::bench
