#pragma once

#include <directfb.h>

#include <optional>

#include "geometry/box.h"
#include "surface/surfacestate.h"

namespace ZIRK::backends {

// What DirectFB draws, and how it is told to. Here and nowhere else is said what it can do: with
// its software renderer each answer gives the software painter's pixels, apart from rounding. That
// is one step of a channel, or two where a channel goes through two products, each of which
// DirectFB rounds down. What has no answer here, the painter draws. So it does what never comes
// here: masks, sub-pixel rectangles, what is not upright, and what is read from where DirectFB does
// not read it, that is, the surface itself, a screen, of which DirectFB reads the buffer that is
// shown, and locked pixels.

/// A blending function in DirectFB's terms.
struct DirectFbBlend {
  DFBSurfaceBlendFunction source;
  DFBSurfaceBlendFunction destination;

  /// How many of them are other than zero and one, and cost a product.
  int Products() const;
  bool Replaces() const { return source == DSBF_ONE && destination == DSBF_ZERO; }
  bool IsOver() const { return source == DSBF_ONE && destination == DSBF_INVSRCALPHA; }
};

/// The surface's blending function, as far as DirectFB has it.
std::optional<DirectFbBlend> FindBlend(const SurfaceState& state);

struct BlitRule {
  DFBSurfaceBlittingFlags flags;
  DirectFbBlend blend;
};

/// How pixels of `from`, each multiplied with the premultiplied `color`, come onto a surface of
/// `to`. They are premultiplied, and those of A8 white of their alpha.
std::optional<BlitRule> FindBlit(const DirectFbBlend& blend, VuPixelFormat from, VuPixelFormat to,
                                 uint32_t color);

/// How a rectangle of the premultiplied `color` is filled.
DFBSurfaceDrawingFlags FindFill(const DirectFbBlend& blend, uint32_t color);

/// Whether DirectFB takes the right pixels from a source of that size for those of `box`. Where the
/// sizes differ it does not filter, and looks at the corner of a pixel's place in the source, not
/// at its middle: that is the same where every pixel becomes a power of two of them, and none of
/// `box` is cut off.
bool TakesRightPixels(int width, int height, VuScaleMode mode, const Box& box, const Box& clip);

}  // namespace ZIRK::backends
