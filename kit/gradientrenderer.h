#pragma once

#include <zirk/vurect.h>

#include <cstdint>

#include "recipe.h"

namespace ZIRK::kit {

/// Writes the recipe of a gradient over a rectangle of `width` x `height` pixels: its kind, both
/// colours, its direction, and the size if the pixels depend on it.
void WriteGradient(Recipe& recipe, const Paint& paint, int width, int height);

/// Whether a paint is constant along each row.
bool IsLevel(const Paint& paint);
/// Whether a paint is constant along each column.
bool IsUpright(const Paint& paint);

/// Writes the premultiplied pixels of `window`, in rows without padding.
void RenderGradient(const Recipe& recipe, const VuRect& window, uint32_t* pixels);

}  // namespace ZIRK::kit
