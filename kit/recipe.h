#pragma once

#include <zirk/kit/shapes.h>

#include <cstdint>
#include <vector>

namespace ZIRK::kit {

/// The kind of shape that a recipe describes.
enum class Figure : int32_t { RoundedRect, Arc, Polyline, Polygon, Shadow, Glow, Gradient };

/// A shape in whole numbers: its figure, followed by the parameters that the renderer of the figure
/// lists. Coordinates are relative to the top-left corner of the shape's bounds. The recipe
/// determines all pixels of a shape, so it is its key in the cache.
using Recipe = std::vector<int32_t>;

/// Lengths in a recipe are in 1/16 pixel.
constexpr float kUnitsPerPixel = 16;

inline int32_t ToUnits(float length) {
  const float units = length * kUnitsPerPixel;
  return static_cast<int32_t>(units + (units < 0 ? -0.5f : 0.5f));
}

/// Reads a recipe from its beginning.
class RecipeReader {
 public:
  explicit RecipeReader(const Recipe& recipe) : next_(recipe.data()) {}

  int32_t Number() { return *next_++; }
  float Pixels() { return static_cast<float>(*next_++) / kUnitsPerPixel; }
  Point Place() {
    const float x = Pixels();
    return {x, Pixels()};
  }
  Corners Radii() {
    const float a = Pixels(), b = Pixels(), c = Pixels();
    return {a, b, c, Pixels()};
  }

 private:
  const int32_t* next_;
};

}  // namespace ZIRK::kit
