#pragma once

#include "software/painter.h"
#include "software/pixelsources.h"
#include "text/textlayout.h"

namespace ZIRK::backends {

/// Draws a line from an atlas that has its pixels in memory. May throw std::bad_alloc.
void DrawText(Painter& painter, PixelSources& sources, const TextArguments& text, VuColor color,
              const MatrixF& m, const Painter::Mask* mask);

}  // namespace ZIRK::backends
