#pragma once

#include <zirk/vurect.h>

#include <cstdint>
#include <vector>

#include "recipe.h"

namespace ZIRK::kit {

/// Turns recipes of soft figures (Shadow, Glow) into coverage.
///
///     Shadow  width and height of the rectangle and blur, in pixels; radii
///     Glow    width in pixels
class SoftRenderer {
 public:
  /// Writes the coverage of `window`, in rows without padding.
  void Render(const Recipe& recipe, const VuRect& window, uint8_t* coverage);

 private:
  void RenderShadow(RecipeReader& in, const VuRect& window, uint8_t* coverage);
  /// Adds rows of the rectangle that have the same ends to the sums of the window.
  void AddRows(const VuRect& window, float top, float bottom, float left, float right, float blur);

  std::vector<float> sums_, profile_;
};

}  // namespace ZIRK::kit
