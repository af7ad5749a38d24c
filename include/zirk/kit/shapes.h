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

/// A place on a surface in pixels and parts of them. (0, 0) is the top-left corner of the surface,
/// so the middle of its first pixel is (0.5, 0.5).
using Point = VuTVector2D<float>;

/// Points that a call reads while it lasts: of a list in braces, a vector, an array or memory.
struct Points {
  /// Of a list in braces, which ends with the call: do not keep one made of it.
  Points(std::initializer_list<Point> list) : count(list.size()) { data = list.begin(); }
  /// Of a vector.
  Points(const std::vector<Point>& list) : data(list.data()), count(list.size()) {}
  /// Of `n` points at `first`, which may be null for none.
  Points(const Point* first, size_t n) : data(first), count(n) {}

  const Point* data = nullptr;  ///< The first one.
  size_t count = 0;             ///< How many there are.
};

/// The radii of a rectangle's corners, in pixels; 0 is a sharp corner, and what is negative or not
/// a number counts as that. Where two need more than the side between them has, all are reduced in
/// the same proportion, so an absurd radius gives a half round side.
struct Corners {
  /// All alike.
  constexpr Corners(float all) : topLeft(all), topRight(all), bottomRight(all), bottomLeft(all) {}
  /// One by one, clockwise.
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
  Miter,  ///< In a point, where that lies within two widths of the corner; else as Bevel.
  Round,  ///< In an arc.
  Bevel,  ///< Cut off.
};

/// How a line ends.
enum class Cap : int32_t {
  Butt,    ///< At its point.
  Round,   ///< In a half disc around it.
  Square,  ///< Half a width beyond it.
};

/// How a line is drawn. A width alone converts: `DrawLine(screen, a, b, 3, color)`.
struct Stroke {
  /// A line of `width_` pixels; one that is not positive draws nothing.
  constexpr Stroke(float width_, Join join_ = Join::Miter, Cap cap_ = Cap::Butt)
      : width(width_), join(join_), cap(cap_) {}

  float width;  ///< Pixels, half of them on either side.
  Join join;    ///< Where segments meet.
  Cap cap;      ///< At both ends, unless the line is closed.
};

/// Draws shapes with smooth edges on surfaces of one context, the same on every backend to within
/// two steps of 255.
///
///     kit::Shapes shapes(*graphics);
///     shapes.FillRoundedRect(*screen, {10, 10, 120, 40}, 8, 0xFF336699);
///
/// How much of each pixel a shape covers is worked out once, to the exact area, and kept in a cache
/// of bitmaps, the least recently used of which are dropped. A shape that is in the cache is drawn
/// without a request for memory. Rounded rectangles, their outlines and shadows are kept as corners
/// and edges, so that their size does not matter. Everything else is kept by its size and by the
/// part of a pixel where it lies: what moves by whole pixels is found again. Radii, widths and
/// points are taken to a sixteenth of a pixel, the middles of discs, rings and arcs to a quarter.
///
/// A surface's clipping rectangle and blending apply as to every drawing call; with blending off,
/// what lies around a shape is replaced as well. A size that is not
/// positive, and a number that is not finite or beyond a million, draw nothing. Where memory runs
/// out, what needs it is left out, and one error line says so.
///
/// An object belongs to one context, is deleted before it, and is used by one thread at a time, the
/// one that draws. Surfaces are those of that context.
class ZIRK_API Shapes {
 public:
  /// Draws on what `graphics` creates. The cache holds at most `cacheLimit` bytes, and for the
  /// length of a call what this draws at the moment: at most 128 KiB. Where there is no memory for
  /// the object itself, an error line says so and nothing is drawn.
  explicit Shapes(VuGraphics& graphics, uint32_t cacheLimit = 512 * 1024);
  /// Deletes the bitmaps of the cache.
  ~Shapes();
  Shapes(const Shapes&) = delete;
  Shapes& operator=(const Shapes&) = delete;

  // --- Filled shapes ----------------------------------------------------------------------------

  /// A rectangle, for paints other than a colour; its edges are those of VuBitmap::DrawRect().
  void FillRect(VuBitmap& target, VuRect rect, const Paint& paint);
  /// A rectangle with round corners.
  void FillRoundedRect(VuBitmap& target, VuRect rect, Corners radii, const Paint& paint);
  /// A disc around `middle`.
  void FillDisc(VuBitmap& target, Point middle, float radius, const Paint& paint);
  /// A triangle, its corners in any order.
  void FillTriangle(VuBitmap& target, Point a, Point b, Point c, const Paint& paint);
  /// A polygon, convex or not, its corners in either order; less than three draw nothing. Of one
  /// whose sides cross, what they go round in the other direction may be left out.
  void FillPolygon(VuBitmap& target, Points corners, const Paint& paint);

  // --- Outlines and lines -----------------------------------------------------------------------

  /// The outline of FillRoundedRect(), `thickness` pixels wide, inside the rectangle.
  void DrawRoundedRect(VuBitmap& target, VuRect rect, Corners radii, float thickness,
                       const Paint& paint);
  /// The outline of FillDisc(), `thickness` pixels wide, inside the disc.
  void DrawRing(VuBitmap& target, Point middle, float radius, float thickness, const Paint& paint);
  /// The part of DrawRing() that begins at `from` degrees, counter-clockwise from the right, and
  /// turns by `sweep` degrees, counter-clockwise where that is positive. A turn of 360 or more is
  /// the whole ring. Angles are taken to a sixty-fourth of a degree.
  void DrawArc(VuBitmap& target, Point middle, float radius, float thickness, float from,
               float sweep, const Paint& paint, Cap cap = Cap::Butt);
  /// A straight line. One without length draws its caps alone.
  void DrawLine(VuBitmap& target, Point from, Point to, Stroke stroke, const Paint& paint);
  /// Segments from point to point, from the last to the first as well if `closed`. Where the line
  /// meets or crosses itself it is drawn once, all but the pixel in each corner of a crossing:
  /// that may be covered up to a quarter more.
  void DrawPolyline(VuBitmap& target, Points points, Stroke stroke, const Paint& paint,
                    bool closed = false);

  // --- Shadow and light -------------------------------------------------------------------------

  /// The shadow of FillRoundedRect(), which fades from `blur` pixels inside the rectangle's edges
  /// to as many outside; above 256 it counts as 256. Draw it before what throws it.
  void DrawShadow(VuBitmap& target, VuRect rect, Corners radii, float blur, VuColor color);
  /// A spot of light that fades from `middle` to nothing at `radius`. With BlendingScope(target,
  /// One, One) it adds to what is there.
  void DrawGlow(VuBitmap& target, Point middle, float radius, VuColor color);

  // --- Cache ------------------------------------------------------------------------------------

  /// Bytes that the cache holds, bitmaps and its own lists.
  uint32_t GetCacheSize() const;
  /// Drops all of it, when memory is needed elsewhere.
  void ClearCache();

 private:
  class State;

  template <typename F>
  void Run(F&& draw);

  std::unique_ptr<State> state_;
};

}  // namespace ZIRK::kit
