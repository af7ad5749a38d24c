#pragma once

#include <pixman.h>

#include <optional>

#include "software/kernelchoice.h"
#include "software/pixelbuffer.h"
#include "surface/surfacestate.h"

namespace ZIRK::backends {

/// Blends shaded pixels onto a surface as its state specifies.
///
/// A source that is passed as opaque is opaque in every pixel, and covers every pixel completely.
class Blender {
 public:
  explicit Blender(PixelBuffer& target)
      : target_(target), kernels_(BestKernels()), opaqueBits_(target.OpaqueBits()) {}

  /// Takes the blending function from `state`. Comes before everything else.
  void Update(const SurfaceState& state);

  /// The operator that does the same as the blending factors, if there is one.
  std::optional<Kernels::Operator> Operator(bool opaque) const {
    return factors_ ? std::nullopt : std::optional(Simplified(opaque));
  }

  /// Whether Draw() works on the target's own pixels, any number of rows at a time.
  bool IsDirect() const { return isDirect_; }

  /// Draws `shading` on the pixels of `box`, which lie on the target. Of `shading` only the source
  /// (pixels, colour, coverage) is looked at; the rest is filled in. Colour alone draws a flat
  /// colour; with source pixels it is multiplied with them.
  void Draw(const Box& box, PixelSpan& shading, bool opaque);

  /// The same by a kernel that works on the target's own pixels: where IsDirect(), and for some of
  /// what is drawn on RGB565. False, with nothing drawn, where there is no such kernel.
  bool DrawDirect(const Box& box, PixelSpan& shading, bool opaque);

  /// The same with one colour, where IsDirect().
  void FillDirect(const Box& box, uint32_t color, bool opaque) {
    PixelSpan span{target_.Row32(box.y0) + box.x0, target_.Pitch32(), box.Width(), box.Height()};
    span.color = color;
    span.opaque = opaqueBits_;
    kernels_.fill[Simplified(opaque)][false](span);
  }

  /// The same as Draw() by Pixman, which has fast paths for narrow formats and for the usual
  /// operators: `source` pixels from (sourceX, sourceY) on, or `color` where there are none,
  /// through an A8 `mask` from (maskX, maskY) on where there is one. False if that cannot be said
  /// in its terms.
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
  bool isDirect_ = false;     ///< Onto 32-bit pixels,
  bool isDirect565_ = false;  ///< or onto RGB565, where there are kernels.
  Kernels::Operator operator_ = Kernels::Source;
  std::optional<BlendFactors> factors_;  ///< Set where neither operator will do.
  uint32_t blendColor_ = 0;
};

}  // namespace ZIRK::backends
