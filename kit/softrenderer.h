#pragma once

#include <zirk/vurect.h>

#include <cstdint>
#include <vector>

#include "recipe.h"

namespace ZIRK::kit {

/// Turns recipes of figures without edges (Shadow, Glow) into coverage.
///
///     Shadow  width, height in pixels of what throws it; blur, in pixels; radii
///     Glow    width in pixels
class SoftRenderer {
 public:
  /// The coverage of `window`, rows without gaps.
  void Render(const Recipe& recipe, const VuRect& window, uint8_t* coverage);

 private:
  void RenderShadow(RecipeReader& in, const VuRect& window, uint8_t* coverage);
  /// Adds rows of what throws the shadow, that end at the same places, to the sums of the window.
  void AddRows(const VuRect& window, float top, float bottom, float left, float right, float blur);

  std::vector<float> sums_, profile_;
};

}  // namespace ZIRK::kit
