#pragma once

/// @file
/// Shapes with smooth edges, filled with colours or gradients.

#include <zirk/export.h>
#include <zirk/kit/paint.h>
#include <zirk/vurect.h>
#include <zirk/vuvector2d.h>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <vector>

namespace ZIRK {
class VuBitmap;
class VuGraphics;
}  // namespace ZIRK

namespace ZIRK::kit {

/// A position on a surface in fractional pixels. (0, 0) is the top-left corner of the surface, so
/// the centre of its first pixel is (0.5, 0.5).
using Point = VuTVector2D<float>;

/// A view of an array of points. The call to which it is passed reads the points and keeps nothing.
struct Points {
  /// Views a braced list. The list lives only until the end of the full expression, so do not store
  /// the view.
  Points(std::initializer_list<Point> list) : count(list.size()) { data = list.begin(); }
  /// Views the elements of a vector.
  Points(const std::vector<Point>& list) : data(list.data()), count(list.size()) {}
  /// Views `n` points at `first`, which may be null if `n` is 0.
  Points(const Point* first, size_t n) : data(first), count(n) {}

  const Point* data = nullptr;  ///< The first point.
  size_t count = 0;             ///< The number of points.
};

/// The radii of a rectangle's corners, in pixels. 0 is a sharp corner; negative values and NaN
/// count as 0. If the two radii along a side add up to more than its length, all four are reduced
/// in the same proportion, so a very large radius gives semicircular ends.
struct Corners {
  /// The same radius for all corners.
  constexpr Corners(float all) : topLeft(all), topRight(all), bottomRight(all), bottomLeft(all) {}
  /// One radius per corner, clockwise from the top left.
  constexpr Corners(float topLeft_, float topRight_, float bottomRight_, float bottomLeft_)
      : topLeft(topLeft_),
        topRight(topRight_),
        bottomRight(bottomRight_),
        bottomLeft(bottomLeft_) {}

  float topLeft;      ///< Pixels.
  float topRight;     ///< Pixels.
  float bottomRight;  ///< Pixels.
  float bottomLeft;   ///< Pixels.
};

/// How two segments of a line meet.
enum class Join : int32_t {
  Miter,  ///< With a pointed corner, if its tip is within two widths of the joint; else as Bevel.
  Round,  ///< With a rounded corner.
  Bevel,  ///< With a cut-off corner.
};

/// How a line ends.
enum class Cap : int32_t {
  Butt,    ///< Flat, at the end point.
  Round,   ///< With a semicircle around the end point.
  Square,  ///< Flat, half a width beyond the end point.
};

/// How a line is drawn. A number converts to a stroke of that width, as in
/// `DrawLine(screen, a, b, 3, color)`.
struct Stroke {
  /// A stroke of `width_` pixels. A width that is not positive draws nothing.
  constexpr Stroke(float width_, Join join_ = Join::Miter, Cap cap_ = Cap::Butt)
      : width(width_), join(join_), cap(cap_) {}

  float width;  ///< Pixels, half of them on each side.
  Join join;    ///< The shape of the joints between segments.
  Cap cap;      ///< The shape of both ends of a line that is not closed.
};

/// Draws shapes with smooth edges on the surfaces of one context. Backends differ from each other
/// by at most two steps of 255.
///
///     kit::Shapes shapes(*graphics);
///     shapes.FillRoundedRect(*screen, {10, 10, 120, 40}, 8, 0xFF336699);
///
/// **Cache**: the exact area that a shape covers of each pixel is computed once and kept in a cache
/// of bitmaps, which drops the least recently used ones. Drawing a cached shape allocates nothing.
/// Rounded rectangles, their outlines and their shadows are cached as corners and edges, whatever
/// the size of the rectangle. All other shapes are cached by size and sub-pixel position, so a
/// shape that moves by whole pixels is found again. Radii, widths and points are rounded to 1/16
/// pixel; the centres of discs, rings and arcs to 1/4 pixel.
///
/// The clipping rectangle and the blending of the surface apply. While blending is off, pixels
/// around a shape are replaced too. Sizes that are not positive draw nothing, nor do numbers that
/// are not finite or exceed a million. If memory runs out, the shapes that need it are not drawn,
/// and one error is logged.
///
/// **Threads**: one at a time, the thread that draws. **Ownership**: delete the object before its
/// context, and draw only on surfaces of that context.
class ZIRK_API Shapes {
 public:
  /// Draws on surfaces that `graphics` creates. The cache holds at most `cacheLimit` bytes, and
  /// during a call up to 128 KiB more for the shape being drawn. If there is no memory for the
  /// object itself, an error is logged and nothing is drawn.
  explicit Shapes(VuGraphics& graphics, uint32_t cacheLimit = 512 * 1024);
  /// Deletes the bitmaps of the cache.
  ~Shapes();
  Shapes(const Shapes&) = delete;
  Shapes& operator=(const Shapes&) = delete;

  // --- Filled shapes ----------------------------------------------------------------------------

  /// Fills a rectangle, usually with a gradient: VuBitmap::DrawRect() fills one with a colour. The
  /// edges are the same.
  void FillRect(VuBitmap& target, VuRect rect, const Paint& paint);
  /// Fills a rectangle with rounded corners.
  void FillRoundedRect(VuBitmap& target, VuRect rect, Corners radii, const Paint& paint);
  /// Fills a disc around `middle`.
  void FillDisc(VuBitmap& target, Point middle, float radius, const Paint& paint);
  /// Fills a triangle. Its corners may be in any order.
  void FillTriangle(VuBitmap& target, Point a, Point b, Point c, const Paint& paint);
  /// Fills a polygon, convex or not, with its corners in either direction. Fewer than three corners
  /// draw nothing. If its sides cross, areas that they enclose in the opposite direction may not be
  /// filled.
  void FillPolygon(VuBitmap& target, Points corners, const Paint& paint);

  // --- Outlines and lines -----------------------------------------------------------------------

  /// Draws the outline of a rounded rectangle, `thickness` pixels wide and inside the rectangle.
  void DrawRoundedRect(VuBitmap& target, VuRect rect, Corners radii, float thickness,
                       const Paint& paint);
  /// Draws the outline of a disc, `thickness` pixels wide and inside the disc.
  void DrawRing(VuBitmap& target, Point middle, float radius, float thickness, const Paint& paint);
  /// Draws a part of a ring: from the angle `from`, in degrees counter-clockwise from the right,
  /// over `sweep` degrees, counter-clockwise if positive. A sweep of 360 or more draws the whole
  /// ring. Angles are rounded to 1/64 degree.
  void DrawArc(VuBitmap& target, Point middle, float radius, float thickness, float from,
               float sweep, const Paint& paint, Cap cap = Cap::Butt);
  /// Draws a straight line. If `from` equals `to`, draws the caps alone.
  void DrawLine(VuBitmap& target, Point from, Point to, Stroke stroke, const Paint& paint);
  /// Draws segments from point to point and, if `closed`, from the last point to the first. Pixels
  /// where the line overlaps itself are drawn once. The pixel at each corner of a crossing may get
  /// up to a quarter more coverage than is exact.
  void DrawPolyline(VuBitmap& target, Points points, Stroke stroke, const Paint& paint,
                    bool closed = false);

  // --- Shadows and glows ------------------------------------------------------------------------

  /// Draws the shadow of a rounded rectangle. It fades from `blur` pixels inside the edges to
  /// `blur` pixels outside them; values above 256 count as 256. Draw it before the rectangle
  /// itself.
  void DrawShadow(VuBitmap& target, VuRect rect, Corners radii, float blur, VuColor color);
  /// Draws a glow that fades from `color` at `middle` to nothing at `radius`. Use
  /// BlendingScope(target, One, One) to add it to what was drawn.
  void DrawGlow(VuBitmap& target, Point middle, float radius, VuColor color);

  // --- Cache ------------------------------------------------------------------------------------

  /// The size of the cache in bytes, its own lists included.
  [[nodiscard]] uint32_t GetCacheSize() const;
  /// Empties the cache, for example when memory is needed elsewhere.
  void ClearCache();

 private:
  class State;

  template <typename F>
  void Run(F&& draw);

  std::unique_ptr<State> state_;
};

}  // namespace ZIRK::kit
