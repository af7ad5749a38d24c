#pragma once

#include <directfb.h>

#include <optional>

#include "geometry/box.h"
#include "surface/surfacestate.h"

namespace ZIRK::backends {

// The rules that decide which operations DirectFB draws, and with which flags. With DirectFB's
// software renderer, each rule gives the same pixels as the software painter, apart from rounding:
// one step of a channel, or two if the channel is the result of two products, each of which
// DirectFB rounds down.
//
// The painter draws operations without a rule. It also draws all operations with masks, sub-pixel
// rectangles or shapes that are not upright, and with sources that DirectFB cannot read: the
// surface itself, locked pixels, and screens, of which DirectFB reads the visible buffer.

/// A blending function in DirectFB's terms.
struct DirectFbBlend {
  DFBSurfaceBlendFunction source;
  DFBSurfaceBlendFunction destination;

  /// The number of factors that cost a product, because they are neither zero nor one.
  int Products() const;
  bool Replaces() const { return source == DSBF_ONE && destination == DSBF_ZERO; }
  bool IsOver() const { return source == DSBF_ONE && destination == DSBF_INVSRCALPHA; }
};

/// The surface's blending function; nullopt if DirectFB does not draw it.
std::optional<DirectFbBlend> FindBlend(const SurfaceState& state);

/// The flags and the blending function of a blit.
struct BlitRule {
  DFBSurfaceBlittingFlags flags;
  DirectFbBlend blend;
};

/// How DirectFB draws pixels of format `from`, each multiplied by the premultiplied `color`, on a
/// surface of format `to`; nullopt if it does not. Pixels are premultiplied; those of A8 are white
/// with their alpha.
std::optional<BlitRule> FindBlit(const DirectFbBlend& blend, VuPixelFormat from, VuPixelFormat to,
                                 uint32_t color);

/// How DirectFB fills a rectangle with the premultiplied `color`.
DFBSurfaceDrawingFlags FindFill(const DirectFbBlend& blend, uint32_t color);

/// Whether DirectFB samples the right pixels of a source of `width` x `height` for those of `box`.
/// If the sizes differ, it does not filter, and samples the source at the corner of a pixel instead
/// of the centre. The result is the same if each side grows by a power of two and `clip` cuts
/// nothing off.
bool TakesRightPixels(int width, int height, VuScaleMode mode, const Box& box, const Box& clip);

}  // namespace ZIRK::backends
