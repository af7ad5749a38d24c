#include "software/blender.h"

#include <algorithm>

#include "geometry/pixelmath.h"
#include "geometry/pixeltraits.h"
#include "software/sourcesampler.h"

namespace ZIRK::backends {

namespace {

using Factor = VuBlendingFactor;

bool SameForAlpha(const BlendFactors& f) {
  return f.srcColor == f.srcAlpha && f.dstColor == f.dstAlpha;
}

bool HasFactors(const BlendFactors& f, Factor src, Factor dst) {
  return SameForAlpha(f) && f.srcColor == src && f.dstColor == dst;
}

std::optional<pixman_op_t> PixmanOperator(const BlendFactors& f) {
  struct Row {
    Factor src, dst;
    pixman_op_t op;
  };
  static constexpr Row kRows[] = {
      {Factor::Zero, Factor::Zero, PIXMAN_OP_CLEAR},
      {Factor::Zero, Factor::One, PIXMAN_OP_DST},
      {Factor::OneMinusDstAlpha, Factor::One, PIXMAN_OP_OVER_REVERSE},
      {Factor::DstAlpha, Factor::Zero, PIXMAN_OP_IN},
      {Factor::Zero, Factor::SrcAlpha, PIXMAN_OP_IN_REVERSE},
      {Factor::OneMinusDstAlpha, Factor::Zero, PIXMAN_OP_OUT},
      {Factor::Zero, Factor::OneMinusSrcAlpha, PIXMAN_OP_OUT_REVERSE},
      {Factor::DstAlpha, Factor::OneMinusSrcAlpha, PIXMAN_OP_ATOP},
      {Factor::OneMinusDstAlpha, Factor::SrcAlpha, PIXMAN_OP_ATOP_REVERSE},
      {Factor::OneMinusDstAlpha, Factor::OneMinusSrcAlpha, PIXMAN_OP_XOR},
      {Factor::One, Factor::One, PIXMAN_OP_ADD},
  };
  for (const Row& row : kRows)
    if (HasFactors(f, row.src, row.dst)) return row.op;
  return std::nullopt;
}

struct UnrefImage {
  void operator()(pixman_image_t* image) const { pixman_image_unref(image); }
};
using ImagePtr = std::unique_ptr<pixman_image_t, UnrefImage>;

ImagePtr SolidImage(uint32_t color) {
  const auto channel = [color](int shift) {
    return static_cast<uint16_t>((color >> shift & 255u) * 257u);
  };
  const pixman_color_t wide = {channel(16), channel(8), channel(0), channel(24)};
  return ImagePtr(pixman_image_create_solid_fill(&wide));
}

}  // namespace

void Blender::Update(const SurfaceState& state) {
  const bool over = HasFactors(state.factors, Factor::One, Factor::OneMinusSrcAlpha);
  const bool source = !state.blendEnabled || HasFactors(state.factors, Factor::One, Factor::Zero);
  operator_ = over && !source ? Kernels::Over : Kernels::Source;
  factors_.reset();
  if (!over && !source) factors_ = state.factors;
  isDirect_ = !factors_ && target_.Is32Bit();
  isDirect565_ = !factors_ && target_.Format() == VuPixelFormat::RGB565;
  blendColor_ = Premultiply(state.blendColor);
}

void Blender::Run(const PixelSpan& span, Kernels::Operator op) const {
  const bool covered = span.coverage != nullptr;
  if (span.src)
    kernels_.blit[op][span.color != 0xFFFFFFFFu][covered](span);
  else
    kernels_.fill[op][covered](span);
}

/// Returns the kernel for RGB565, or null if there is none.
Kernels::SpanKernel Blender::KernelFor565(const PixelSpan& span, Kernels::Operator op) const {
  const bool covered = span.coverage != nullptr;
  if (!span.src) return kernels_.fill565[op][covered];
  return covered || span.color != 0xFFFFFFFFu ? nullptr : kernels_.blit565[op];
}

bool Blender::DrawDirect(const Box& box, PixelSpan& shading, bool opaque) {
  const Kernels::Operator op = Simplified(opaque);
  shading.width = box.Width();
  shading.height = box.Height();
  if (isDirect_) {
    shading.dst = target_.Row32(box.y0) + box.x0;
    shading.dstPitch = target_.Pitch32();
    shading.opaque = opaqueBits_;
    Run(shading, op);
    return true;
  }
  const Kernels::SpanKernel kernel = isDirect565_ ? KernelFor565(shading, op) : nullptr;
  if (!kernel) return false;
  shading.dst565 = reinterpret_cast<uint16_t*>(target_.Row(box.y0)) + box.x0;
  shading.dstPitch = target_.Pitch() / 2;
  kernel(shading);
  return true;
}

void Blender::Draw(const Box& box, PixelSpan& shading, bool opaque) {
  if (DrawDirect(box, shading, opaque)) return;
  PixelSpan span = shading;
  span.height = 1;
  for (int y = box.y0; y < box.y1; ++y) {
    const int row = y - box.y0;
    for (int x = box.x0; x < box.x1; x += kChunk) {
      span.width = std::min(kChunk, box.x1 - x);
      if (shading.src) span.src = shading.src + row * shading.srcPitch + (x - box.x0);
      if (shading.coverage)
        span.coverage = shading.coverage + row * shading.coveragePitch + (x - box.x0);
      DrawIndirect(x, y, span, opaque);
    }
  }
}

/// Draws a part of one row: converts it to pixels that the kernels support, and back.
void Blender::DrawIndirect(int x, int y, PixelSpan span, bool opaque) {
  uint32_t shaded[kChunk];
  uint32_t pixels[kChunk];
  uint8_t* row = target_.Row(y);
  const Kernels::Operator op = factors_ ? Kernels::Source : Simplified(opaque);
  span.dst = factors_ ? shaded : pixels;
  if (factors_ || op == Kernels::Over) UnpackRow(target_.Format(), row, x, span.width, pixels);
  Run(span, op);
  if (factors_) kernels_.blendByFactors(pixels, shaded, span.width, *factors_, blendColor_);
  PackRow(target_.Format(), pixels, span.width, row, x);
}

bool Blender::DrawByPixman(const Box& box, const PixmanSource& s, bool opaque) {
  const std::optional<Kernels::Operator> simple = Operator(opaque);
  const std::optional<pixman_op_t> op = !simple                    ? PixmanOperator(*factors_)
                                        : *simple == Kernels::Over ? PIXMAN_OP_OVER
                                                                   : PIXMAN_OP_SRC;
  // Pixels of an A8 source are white with their alpha here, but black in Pixman. As a mask, A8
  // means the same to both.
  const bool whiteSource = s.source && s.source->Format() == VuPixelFormat::A8;
  const bool tinted = s.source && !whiteSource && s.color != 0xFFFFFFFFu;
  if (!op || tinted || (whiteSource && s.mask)) return false;

  const ImagePtr solid = s.source && !whiteSource ? nullptr : SolidImage(s.color);
  pixman_image_t* const image = solid ? solid.get() : s.source->Image();
  const PixelBuffer* const mask = whiteSource ? s.source : s.mask;
  pixman_image_t* const maskImage = mask ? mask->Image() : nullptr;
  pixman_image_t* const target = target_.Image();
  if (!image || !target || (mask && !maskImage)) return false;
  const int maskX = whiteSource ? s.sourceX : s.maskX, maskY = whiteSource ? s.sourceY : s.maskY;
  pixman_image_composite32(*op, image, maskImage, target, s.sourceX, s.sourceY, maskX, maskY,
                           box.x0, box.y0, box.Width(), box.Height());
  target_.RestoreOpaqueBits(box);
  return true;
}

}  // namespace ZIRK::backends
