#pragma once

#include <directfb.h>

#include <optional>

#include "geometry/box.h"
#include "surface/surfacestate.h"

namespace ZIRK::backends {

// Which operations DirectFB draws, and with which flags. No other file decides this. With
// DirectFB's software renderer each rule gives the software painter's pixels, apart from rounding:
// one step of a channel, or two where a channel goes through two products, each of which DirectFB
// rounds down.
//
// The painter draws what has no rule here. It also draws what these functions are never asked
// about: masks, sub-pixel rectangles, shapes that are not upright, and sources that DirectFB cannot
// read, that is, the surface itself, locked pixels, and screens, of which DirectFB reads the buffer
// that is shown.

/// A blending function in DirectFB's terms.
struct DirectFbBlend {
  DFBSurfaceBlendFunction source;
  DFBSurfaceBlendFunction destination;

  /// How many of the two factors cost a product, being other than zero and one.
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

/// How DirectFB draws pixels of `from`, each multiplied by the premultiplied `color`, on a surface
/// of `to`; nullopt if it does not. Pixels are premultiplied; those of A8 are white of their alpha.
std::optional<BlitRule> FindBlit(const DirectFbBlend& blend, VuPixelFormat from, VuPixelFormat to,
                                 uint32_t color);

/// How DirectFB fills a rectangle with the premultiplied `color`.
DFBSurfaceDrawingFlags FindFill(const DirectFbBlend& blend, uint32_t color);

/// Whether DirectFB takes the right pixels from a source of `width` x `height` for those of `box`.
/// If the sizes differ it does not filter, and samples the source at a pixel's corner instead of
/// its centre. That gives the same if each side grows by a power of two and `clip` cuts nothing
/// off.
bool TakesRightPixels(int width, int height, VuScaleMode mode, const Box& box, const Box& clip);

}  // namespace ZIRK::backends
