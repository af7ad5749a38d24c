#pragma once

#include <zirk/vurect.h>

#include <cstdint>
#include <vector>

#include "arearaster.h"
#include "recipe.h"

namespace ZIRK::kit {

constexpr float kPi = 3.14159265f;

/// Turns recipes of outlined figures (RoundedRect, Arc, Polyline, Polygon) into coverage.
///
///     RoundedRect  width and height in pixels; thickness, 0 if filled; radii
///     Arc          centre; outer and inner radius; from and sweep in kUnitsPerDegree; cap
///     Polyline     width; join; cap; whether closed; number of points; points
///     Polygon      number of points; points
class FigureRenderer {
 public:
  static constexpr float kUnitsPerDegree = 64;

  /// Writes the coverage of `window`, in rows without padding.
  void Render(const Recipe& recipe, const VuRect& window, uint8_t* coverage);

 private:
  void AddRoundedRect(RecipeReader& in);
  void AddArc(RecipeReader& in);
  void AddPolygon(RecipeReader& in);
  void AddPolyline(RecipeReader& in);
  /// Reads the points that follow into points_, without repeated ones.
  void ReadPoints(RecipeReader& in);

  AreaRaster raster_;
  std::vector<Point> points_, corners_;
};

/// Appends points along an arc, counter-clockwise if `sweep` is positive; angles are in radians.
/// Straight lines between the points differ from the arc by less than 1/200 pixel.
void AppendArc(std::vector<Point>& points, Point middle, float radius, float from, float sweep);

}  // namespace ZIRK::kit
