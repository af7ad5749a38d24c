#pragma once

#include <zirk/impl/vubitmapimpl.h>

#include <cstring>
#include <utility>

#include "geometry/surfaceformat.h"
#include "surface/bitmapbase.h"

namespace ZIRK::backends {

/// A surface without pixels. Drawing vanishes; pixel access answers as that of a surface would
/// which is transparent throughout.
template <class Base>
class StubSurface : public BitmapBase<Base> {
 public:
  using BitmapBase<Base>::BitmapBase;
  using BitmapBase<Base>::Clear;
  using BitmapBase<Base>::DrawLine;
  using BitmapBase<Base>::DrawObject;
  using BitmapBase<Base>::DrawPoint;
  using BitmapBase<Base>::DrawRect;
  using BitmapBase<Base>::DrawText;

  void Clear(VuColor) final {}

  VuBitmapInfo GetInfo() const final {
    return {state_.width, state_.height, state_.format, RowPitch(state_.width, state_.format),
            nullptr};
  }
  uint32_t GetSize() const final {
    return SurfaceBytes(state_.width, state_.height, state_.format);
  }

  void DrawPoint(VuPoint, float, VuColor, VuTMatrix2D<float>, VuBitmapImpl*,
                 VuTVector2D<float>) final {}
  void DrawLine(VuPoint, VuPoint, VuColor, VuTMatrix2D<float>, VuBitmapImpl*,
                VuTVector2D<float>*) final {}
  void DrawRect(VuRect, VuColor, VuTMatrix2D<float>, VuBitmapImpl*, VuTVector2D<float>*) final {}
  void DrawObject(VuRect, VuBitmapImpl*, VuRect, VuTMatrix2D<float>, VuColor, VuBitmapImpl*,
                  VuTVector2D<float>*) final {}
  void DrawObject(VuTRect2D<float>, VuBitmapImpl*, VuTRect2D<float>, VuTMatrix2D<float>, VuColor,
                  VuBitmapImpl*, VuTVector2D<float>*) final {}
  void DrawText(VuFontImpl*, const char*, VuPoint, VuColor, VuTMatrix2D<float>, VuBitmapImpl*,
                VuTVector2D<float>*, VuRect) final {}

  bool Lock(bool) final { return !std::exchange(locked_, true); }
  bool Unlock() final { return std::exchange(locked_, false); }
  void Finish() final {}
  void Flush() final {}

  bool GetPixels(VuRect rect, void* dst) final {
    if (!dst || !IsInside(rect, state_.width, state_.height)) return false;
    const size_t count = static_cast<size_t>(rect.width) * static_cast<size_t>(rect.height);
    std::memset(dst, 0, count * static_cast<size_t>(BytesPerPixel(state_.format)));
    return true;
  }
  bool SetPixels(VuRect rect, const void* src, unsigned int) final {
    return src && IsInside(rect, state_.width, state_.height);
  }
  bool CopyPixels(VuPoint, VuBitmapImpl* src, VuRect) final { return src != nullptr; }

 private:
  using BitmapBase<Base>::state_;

  bool locked_ = false;
};

using StubBitmap = StubSurface<VuBitmapImpl>;

}  // namespace ZIRK::backends
