#pragma once

#include "common/textlayout.h"
#include "images/atlasgraphics.h"
#include "software/painter.h"

namespace ZIRK::backends {

/// Draws a line, which was laid out with `atlases`. Nothing, with an error line, if the font's
/// atlas is of another backend's making. May throw std::bad_alloc.
void DrawText(Painter& painter, AtlasGraphics& atlases, TextLayout& line, VuColor color,
              const Painter::MatrixF& m, const Painter::OptionalMask& mask);

}  // namespace ZIRK::backends
