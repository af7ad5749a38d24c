#pragma once

#include <pixman.h>

#include <optional>

#include "software/kernelchoice.h"
#include "software/pixelbuffer.h"
#include "surface/surfacestate.h"

namespace ZIRK::backends {

/// The part that blends shaded pixels onto a surface as the surface's state specifies.
///
/// If a source is passed as opaque, all its pixels are opaque and it covers every pixel completely.
class Blender {
 public:
  explicit Blender(PixelBuffer& target)
      : target_(target), kernels_(BestKernels()), opaqueBits_(target.OpaqueBits()) {}

  /// Takes the blending function from `state`. Call it before any other function.
  void Update(const SurfaceState& state);

  /// Returns the operator that is equivalent to the blending factors, or nullopt if there is none.
  std::optional<Kernels::Operator> Operator(bool opaque) const {
    return factors_ ? std::nullopt : std::optional(Simplified(opaque));
  }

  /// Returns whether Draw() works on the target's pixels themselves, any number of rows at a time.
  bool IsDirect() const { return isDirect_; }

  /// Draws `shading` on the pixels of `box`, which lie on the target. Reads only the source fields
  /// of `shading` (pixels, colour, coverage) and fills in the others. Without source pixels, draws
  /// the colour; otherwise multiplies them by it.
  void Draw(const Box& box, PixelSpan& shading, bool opaque);

  /// Does the same with a kernel that works on the target's pixels themselves. There is one if
  /// IsDirect() is true, and for some operations on RGB565. Otherwise returns false and draws
  /// nothing.
  bool DrawDirect(const Box& box, PixelSpan& shading, bool opaque);

  /// Does the same with one colour. Expects that IsDirect() is true.
  void FillDirect(const Box& box, uint32_t color, bool opaque) {
    PixelSpan span{target_.Row32(box.y0) + box.x0, target_.Pitch32(), box.Width(), box.Height()};
    span.color = color;
    span.opaque = opaqueBits_;
    kernels_.fill[Simplified(opaque)][false](span);
  }

  /// The arguments of DrawByPixman(), which draws like Draw() but uses Pixman's fast paths for
  /// narrow formats and the usual operators. The pixels of `source` start at (sourceX, sourceY); if
  /// it is null, `color` is drawn. The A8 `mask`, if not null, starts at (maskX, maskY).
  /// DrawByPixman() returns false if Pixman has no equivalent operation.
  struct PixmanSource {
    const PixelBuffer* source = nullptr;
    int sourceX = 0, sourceY = 0;
    uint32_t color = 0xFFFFFFFFu;
    const PixelBuffer* mask = nullptr;
    int maskX = 0, maskY = 0;
  };
  bool DrawByPixman(const Box& box, const PixmanSource& source, bool opaque);

 private:
  Kernels::Operator Simplified(bool opaque) const { return opaque ? Kernels::Source : operator_; }
  void Run(const PixelSpan& span, Kernels::Operator op) const;
  Kernels::SpanKernel KernelFor565(const PixelSpan& span, Kernels::Operator op) const;
  void DrawIndirect(int x, int y, PixelSpan span, bool opaque);

  PixelBuffer& target_;
  const Kernels& kernels_;
  const uint32_t opaqueBits_;
  bool isDirect_ = false;     ///< Draws directly onto 32-bit pixels.
  bool isDirect565_ = false;  ///< Draws onto RGB565, directly if there is a kernel.
  Kernels::Operator operator_ = Kernels::Source;
  std::optional<BlendFactors> factors_;  ///< Set if neither operator is equivalent.
  uint32_t blendColor_ = 0;
};

}  // namespace ZIRK::backends
