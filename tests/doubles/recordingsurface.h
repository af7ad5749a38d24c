#pragma once

#include <type_traits>

#include "doubles/recorder.h"

namespace ZIRK::doubles {

/// A surface that records every operation that has no default. `Base` is VuBitmapImpl, or
/// VuScreenImpl through RecordingScreen below. Its answers are the public fields.
template <class Base>
class PlainSurface : public Base {
 public:
  using F = VuBlendingFactor;
  using Vector = VuTVector2D<float>;
  using Matrix = VuTMatrix2D<float>;
  using RectF = VuTRect2D<float>;
  using Base::Clear;

  explicit PlainSurface(Recorder& r) : record(r) {}
  ~PlainSurface() override { record("destroyed"); }

  void Reserved() override { record("Reserved"); }
  void SetName(const char* name) override { record("SetName", name); }
  void Clear(VuColor color) override { record("Clear", color); }
  VuBitmapInfo GetInfo() const override { return record("GetInfo"), info; }
  uint32_t GetSize() const override { return record("GetSize"), 77; }
  VuRect GetBounds() const override { return record("GetBounds"), bounds; }
  VuRect GetClippingRect() const override { return record("GetClippingRect"), VuRect{9, 8, 7, 6}; }
  void SetClippingRect(VuRect rect) override { record("SetClippingRect", rect); }
  void GetBlendingFunc(F& src, F& dst) const override {
    record("GetBlendingFunc", &src, &dst);
    src = F::DstColor;
    dst = F::BlendAlpha;
  }
  void SetBlendingFunc(F src, F dst) override { record("SetBlendingFunc", src, dst); }
  void SetBlendingFunc(F a, F b, F c, F d) override { record("SetBlendingFunc", a, b, c, d); }
  bool GetBlendEnabled() const override { return record("GetBlendEnabled"), answer; }
  void SetBlendEnabled(bool enabled) override { record("SetBlendEnabled", enabled); }
  VuColor GetBlendColor() const override { return record("GetBlendColor"), VuColor{0x12345678}; }
  void SetBlendColor(VuColor color) override { record("SetBlendColor", color); }
  VuScaleMode GetScaleMode() const override { return record("GetScaleMode"), VuScaleMode{41}; }
  void SetScaleMode(VuScaleMode mode) override { record("SetScaleMode", mode); }

  void DrawPoint(VuPoint p, float size, VuColor c, VuTransform t, VuBitmapImpl* mask,
                 Vector coord) override {
    record("DrawPoint", p, size, c, t, mask, coord);
  }
  void DrawPoint(VuPoint p, float size, VuColor c, Matrix m, VuBitmapImpl* mask,
                 Vector coord) override {
    record("DrawPoint", p, size, c, m, mask, coord);
  }
  void DrawLine(VuPoint from, VuPoint to, VuColor c, VuTransform t, VuBitmapImpl* mask,
                Vector* coords) override {
    record("DrawLine", from, to, c, t, mask, coords);
  }
  void DrawLine(VuPoint from, VuPoint to, VuColor c, Matrix m, VuBitmapImpl* mask,
                Vector* coords) override {
    record("DrawLine", from, to, c, m, mask, coords);
  }
  void DrawRect(VuRect r, VuColor c, VuTransform t, VuBitmapImpl* mask, Vector* coords) override {
    record("DrawRect", r, c, t, mask, coords);
  }
  void DrawRect(VuRect r, VuColor c, Matrix m, VuBitmapImpl* mask, Vector* coords) override {
    record("DrawRect", r, c, m, mask, coords);
  }
  void DrawObject(VuRect dst, VuBitmapImpl* src, VuRect srcRect, VuTransform t, VuColor c,
                  VuBitmapImpl* mask, Vector* coords) override {
    record("DrawObject", dst, src, srcRect, t, c, mask, coords);
  }
  void DrawObject(VuRect dst, VuBitmapImpl* src, VuRect srcRect, Matrix m, VuColor c,
                  VuBitmapImpl* mask, Vector* coords) override {
    record("DrawObject", dst, src, srcRect, m, c, mask, coords);
  }
  void DrawObject(RectF dst, VuBitmapImpl* src, RectF srcRect, Matrix m, VuColor c,
                  VuBitmapImpl* mask, Vector* coords) override {
    record("DrawObject", dst, src, srcRect, m, c, mask, coords);
  }
  void DrawText(VuFontImpl* font, const char* text, VuPoint pos, VuColor c, VuTransform t,
                VuBitmapImpl* mask, Vector* coords, VuRect rect) override {
    record("DrawText", font, text, pos, c, t, mask, coords, rect);
  }
  void DrawText(VuFontImpl* font, const char* text, VuPoint pos, VuColor c, Matrix m,
                VuBitmapImpl* mask, Vector* coords, VuRect rect) override {
    record("DrawText", font, text, pos, c, m, mask, coords, rect);
  }

  bool Lock(bool write) override { return record("Lock", write), answer; }
  bool Unlock() override { return record("Unlock"), answer; }
  void Finish() override { record("Finish"); }
  void Flush() override { record("Flush"); }
  bool GetPixels(VuRect rect, void* dst) override { return record("GetPixels", rect, dst), answer; }
  bool SetPixels(VuRect rect, const void* src, unsigned n) override {
    return record("SetPixels", rect, src, n), answer;
  }
  bool CopyPixels(VuPoint dst, VuBitmapImpl* src, VuRect srcRect) override {
    return record("CopyPixels", dst, src, srcRect), answer;
  }

  Recorder& record;
  VuRect bounds{1, 2, 100, 100};
  VuBitmapInfo info{3, 4, VuPixelFormat::RGB565, 6, nullptr};
  bool answer = true;
};

/// Records the operations with a default too.
template <class Base>
class RecordingSurface : public PlainSurface<Base> {
 public:
  using PlainSurface<Base>::PlainSurface;
  using PlainSurface<Base>::Clear;
  void Clear() override { this->record("Clear"); }
  bool IsTextureBacked() const override { return this->record("IsTextureBacked"), this->answer; }
};

using RecordingBitmap = RecordingSurface<VuBitmapImpl>;

class RecordingScreen : public RecordingSurface<VuScreenImpl> {
 public:
  using RecordingSurface<VuScreenImpl>::RecordingSurface;
  void SwapBuffers() override { record("SwapBuffers"); }
};

}  // namespace ZIRK::doubles
