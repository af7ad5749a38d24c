#include "directfb/directfbrules.h"

#include "geometry/pixelformat.h"
#include "geometry/pixelmath.h"

namespace ZIRK::backends {

namespace {

using Factor = VuBlendingFactor;
using Format = VuPixelFormat;

constexpr DirectFbBlend kReplace{DSBF_ONE, DSBF_ZERO};

struct Row {
  Factor source, destination;
  DirectFbBlend blend;
};

// The operators of Porter and Duff, and add, multiply and screen. The software renderer's shortcuts
// give wrong results for some other pairs. The operator "clear" is left out since it fills with
// zeros, but the X byte of XRGB8888 must be 255.
constexpr Row kRows[] = {
    {Factor::One, Factor::OneMinusSrcAlpha, {DSBF_ONE, DSBF_INVSRCALPHA}},
    {Factor::One, Factor::Zero, kReplace},
    {Factor::Zero, Factor::One, {DSBF_ZERO, DSBF_ONE}},
    {Factor::OneMinusDstAlpha, Factor::One, {DSBF_INVDESTALPHA, DSBF_ONE}},
    {Factor::DstAlpha, Factor::Zero, {DSBF_DESTALPHA, DSBF_ZERO}},
    {Factor::Zero, Factor::SrcAlpha, {DSBF_ZERO, DSBF_SRCALPHA}},
    {Factor::OneMinusDstAlpha, Factor::Zero, {DSBF_INVDESTALPHA, DSBF_ZERO}},
    {Factor::Zero, Factor::OneMinusSrcAlpha, {DSBF_ZERO, DSBF_INVSRCALPHA}},
    {Factor::DstAlpha, Factor::OneMinusSrcAlpha, {DSBF_DESTALPHA, DSBF_INVSRCALPHA}},
    {Factor::OneMinusDstAlpha, Factor::SrcAlpha, {DSBF_INVDESTALPHA, DSBF_SRCALPHA}},
    {Factor::OneMinusDstAlpha, Factor::OneMinusSrcAlpha, {DSBF_INVDESTALPHA, DSBF_INVSRCALPHA}},
    {Factor::One, Factor::One, {DSBF_ONE, DSBF_ONE}},
    {Factor::DstColor, Factor::Zero, {DSBF_DESTCOLOR, DSBF_ZERO}},
    {Factor::Zero, Factor::SrcColor, {DSBF_ZERO, DSBF_SRCCOLOR}},
    {Factor::One, Factor::OneMinusSrcColor, {DSBF_ONE, DSBF_INVSRCCOLOR}},
};

constexpr int kMostProducts = 2;

bool CostsProduct(DFBSurfaceBlendFunction function) {
  return function != DSBF_ZERO && function != DSBF_ONE;
}

bool IsPowerOfTwoTimes(int side, int source) {
  const int times = side / source;
  return side % source == 0 && times > 0 && (times & (times - 1)) == 0;
}

}  // namespace

int DirectFbBlend::Products() const {
  return CostsProduct(source) + CostsProduct(destination);
}

std::optional<DirectFbBlend> FindBlend(const SurfaceState& state) {
  if (!state.blendEnabled) return kReplace;
  const BlendFactors& f = state.factors;
  if (f.srcColor != f.srcAlpha || f.dstColor != f.dstAlpha) return std::nullopt;
  for (const Row& row : kRows)
    if (row.source == f.srcColor && row.destination == f.dstColor) return row.blend;
  return std::nullopt;
}

std::optional<BlitRule> FindBlit(const DirectFbBlend& blend, VuPixelFormat from, VuPixelFormat to,
                                 uint32_t color) {
  const bool coverage = from == Format::A8, tinted = color != 0xFFFFFFFFu;
  const bool opaque = IsOpaque(color) && !PixelLayoutOf(from).HasAlpha();
  const DirectFbBlend effective = blend.IsOver() && opaque ? kReplace : blend;
  if (effective.Replaces() && !tinted && (!coverage || to == Format::A8))
    return BlitRule{DSBLIT_NOFX, kReplace};
  // DirectFB multiplies coverage by a translucent colour three times.
  if (coverage && !IsOpaque(color)) return std::nullopt;
  if (effective.Products() + tinted > kMostProducts) return std::nullopt;
  unsigned flags = DSBLIT_BLEND_ALPHACHANNEL;
  if (tinted) flags |= DSBLIT_COLORIZE;
  if (!IsOpaque(color)) flags |= DSBLIT_BLEND_COLORALPHA;
  if (coverage && to != Format::A8) flags |= DSBLIT_SRC_PREMULTIPLY;
  // The software renderer has two wrong shortcuts: for "over" if colours exceed their alpha, and
  // for coverage onto 16 bits. This flag prevents both.
  const bool to16 = to == Format::RGB565 || to == Format::ARGB1555;
  if (effective.IsOver() || (coverage && to16)) flags |= DSBLIT_BLEND_COLORALPHA;
  return BlitRule{static_cast<DFBSurfaceBlittingFlags>(flags), effective};
}

DFBSurfaceDrawingFlags FindFill(const DirectFbBlend& blend, uint32_t color) {
  return blend.Replaces() || (blend.IsOver() && IsOpaque(color)) ? DSDRAW_NOFX : DSDRAW_BLEND;
}

bool TakesRightPixels(int width, int height, VuScaleMode mode, const Box& box, const Box& clip) {
  if (box.Width() == width && box.Height() == height) return true;
  return mode != VuScaleMode::Bilinear && IsPowerOfTwoTimes(box.Width(), width) &&
         IsPowerOfTwoTimes(box.Height(), height) && clip.Contains(box);
}

}  // namespace ZIRK::backends
