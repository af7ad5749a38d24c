#pragma once

#include <zirk/vurect.h>

#include <cstdint>

#include "recipe.h"

namespace ZIRK::kit {

/// The recipe of a gradient over a rectangle of `width` x `height` pixels: its kind, both colours,
/// its direction, and the size if its pixels depend on that.
void WriteGradient(Recipe& recipe, const Paint& paint, int width, int height);

/// Whether a paint does not change from left to right, or from the top down.
bool IsLevel(const Paint& paint);
bool IsUpright(const Paint& paint);

/// The premultiplied pixels of `window`, rows without gaps.
void RenderGradient(const Recipe& recipe, const VuRect& window, uint32_t* pixels);

}  // namespace ZIRK::kit
