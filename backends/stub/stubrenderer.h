#pragma once

#include <zirk/impl/vubitmapimpl.h>

#include <cstring>

#include "geometry/surfaceformat.h"
#include "surface/operands.h"
#include "surface/surfacestate.h"

namespace ZIRK::backends {

/// Draws nothing. Pixels read as those of a surface that is transparent throughout.
/// surface/renderer.h says what the operations mean.
class StubRenderer {
 public:
  explicit StubRenderer(const SurfaceState& state) : state_(state) {}

  // --- Reading ---

  struct Pixels {};
  struct SourceCopy {};
  bool Resolve(VuBitmapImpl&, RectD*, Source<Pixels>&, SourceCopy&) { return true; }

  // --- Drawing ---

  bool FillBox(VuRect, VuColor) { return true; }
  bool BlitBox(VuRect, VuBitmapImpl&, VuRect, const MatrixF&, VuColor) { return true; }
  void DrawPoint(VuPoint, float, VuColor, const MatrixF&, const Mask<Pixels>*) {}
  void DrawLine(VuPoint, VuPoint, VuColor, const MatrixF&, const Mask<Pixels>*) {}
  void DrawRect(const RectD&, VuColor, const MatrixF&, const Mask<Pixels>*) {}
  void DrawObject(const RectD&, const Source<Pixels>&, const RectD&, Edges, const MatrixF&, VuColor,
                  const Mask<Pixels>*) {}
  void DrawText(const TextArguments&, VuColor, const MatrixF&, const Mask<Pixels>*) {}

  // --- Pixels ---

  bool Clear(VuColor) { return true; }
  bool Read(const Box& box, void* dst) {
    const auto count = static_cast<size_t>(box.Width()) * static_cast<size_t>(box.Height());
    std::memset(dst, 0, count * static_cast<size_t>(BytesPerPixel(state_.format)));
    return true;
  }
  bool Write(const Box&, const void*, unsigned) { return true; }
  bool Copy(VuPoint, VuBitmapImpl&, const VuRect&) { return true; }

  // --- Locking ---

  bool Lock(bool) { return true; }
  bool Unlock(bool) { return true; }
  void* LockedPixels() const { return nullptr; }
  int Pitch() const { return RowPitch(state_.width, state_.format); }

  // --- The whole surface ---

  void Finish() {}
  void Flush() {}
  void SetName(const char*) {}
  bool IsTextureBacked() const { return true; }

 private:
  const SurfaceState& state_;
};

}  // namespace ZIRK::backends
