#pragma once

#include <zirk/kit/shapes.h>

#include <cstdint>
#include <vector>

namespace ZIRK::kit {

/// What a recipe describes.
enum class Figure : int32_t { RoundedRect, Arc, Polyline, Polygon, Shadow, Glow, Gradient };

/// A shape in whole numbers: its figure, then what that takes, see the functions that write one.
/// Coordinates count from the top-left corner of the shape's own rectangle. All pixels of a shape
/// follow from its recipe, which is therefore its key in the cache.
using Recipe = std::vector<int32_t>;

/// Lengths in a recipe are in sixteenths of a pixel.
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
