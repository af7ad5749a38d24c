#pragma once

#include <zirk/vuenums.h>
#include <zirk/vumatrix2d.h>
#include <zirk/vupoint.h>
#include <zirk/vurect.h>
#include <zirk/vuvector2d.h>

#include "geometry/mapping.h"

namespace ZIRK {
class VuFontImpl;
}  // namespace ZIRK

// The arguments of a renderer's operations other than rectangles and colours.

namespace ZIRK::backends {

using MatrixF = VuTMatrix2D<float>;

/// A surface that is read. `Pixels` is the form in which the renderer reads it.
template <class Pixels>
struct Source {
  Pixels* pixels;
  VuScaleMode scaleMode;
};

/// A surface whose alpha is the coverage of what is drawn. Operations take null for no mask.
template <class Pixels>
struct Mask {
  Source<Pixels> source;
  const VuTVector2D<float>* coords;       ///< One for each corner or end of the primitive, or null.
  const MappedQuad* primitive = nullptr;  ///< What the mask covers, if not what is drawn.
};

/// One line of text. The pen starts at `pos`, the top-left corner of the line. If `rect` is not all
/// zeros, it clips the glyphs.
struct TextArguments {
  const VuFontImpl* font;
  const char* text;
  VuPoint pos;
  VuRect rect;
};

}  // namespace ZIRK::backends
