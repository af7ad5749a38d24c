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

// What the operations of a renderer are given besides rectangles and colours.

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
  const VuTVector2D<float>* coords;       ///< As many as the primitive has, or null.
  const MappedQuad* primitive = nullptr;  ///< What the mask lies over, if not over what is drawn.
};

/// One line of text. The pen starts at `pos`, the top-left corner of the line. A `rect` that is not
/// all zeros clips the glyphs.
struct TextArguments {
  const VuFontImpl* font;
  const char* text;
  VuPoint pos;
  VuRect rect;
};

}  // namespace ZIRK::backends
