#pragma once

#include <zirk/vurect.h>

#include <cstdint>
#include <vector>

#include "arearaster.h"
#include "recipe.h"

namespace ZIRK::kit {

/// Turns recipes of outlined figures (RoundedRect, Arc, Polyline, Polygon) into coverage.
///
///     RoundedRect  width, height in pixels; thickness, 0 where it is filled; radii
///     Arc          middle; outer and inner radius; from, sweep in kUnitsPerDegree; cap
///     Polyline     width; join; cap; whether closed; how many points; these
///     Polygon      how many points; these
class FigureRenderer {
 public:
  static constexpr float kUnitsPerDegree = 64;

  /// The coverage of `window`, rows without gaps.
  void Render(const Recipe& recipe, const VuRect& window, uint8_t* coverage);

 private:
  void AddRoundedRect(RecipeReader& in);
  void AddArc(RecipeReader& in);
  void AddPolygon(RecipeReader& in);
  void AddPolyline(RecipeReader& in);
  /// Of the points that follow, those that differ from the one before.
  void ReadPoints(RecipeReader& in);

  AreaRaster raster_;
  std::vector<Point> points_, corners_;
};

/// Appends the points of an arc, counter-clockwise where `sweep` is positive, angles in radians.
/// Straight lines between them stay within a two-hundredth of a pixel.
void AppendArc(std::vector<Point>& points, Point middle, float radius, float from, float sweep);

}  // namespace ZIRK::kit
