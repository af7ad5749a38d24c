#pragma once

#include <vector>

#include "arearaster.h"

namespace ZIRK::kit {

/// Adds a stroked line to a raster in pieces that meet without overlapping: a body for each
/// segment, a wedge on the outer side of each joint, and two caps. Segments that are too short to
/// be cut on the inner side of a joint overlap there.
class StrokePainter {
 public:
  StrokePainter(AreaRaster& raster, std::vector<Point>& corners, Stroke stroke)
      : raster_(raster), corners_(corners), stroke_(stroke), half_(stroke.width / 2) {}

  /// Adds the line through `points`. Adjacent points must differ, and if `closed`, the last and the
  /// first as well.
  void Add(const std::vector<Point>& points, bool closed);
  /// Adds a cap at `at` that points in the direction of the unit vector `along`.
  void AddCap(Point at, Point along);

 private:
  struct Segment {
    Point from, to;
    Point along;  ///< Unit vector.
    Point side;   ///< To the left, half a width long.
    float length;
  };
  /// Where two segments meet.
  struct Joint {
    float outer = 1;   ///< 1 if the outer side is the left one, else -1.
    float cut = 0;     ///< The length by which the inner sides are cut.
    float turn = 0;    ///< Counter-clockwise, in radians.
    float cosine = 1;  ///< Cosine of `turn`.
    bool exists = false;
  };

  static Segment Between(Point from, Point to, float half);
  Joint JointOf(const Segment& a, const Segment& b) const;
  void AddBody(const Segment& s, const Joint& start, const Joint& end);
  void AddWedge(const Segment& a, const Segment& b, const Joint& joint);
  void AddCorners();

  AreaRaster& raster_;
  std::vector<Point>& corners_;
  const Stroke stroke_;
  const float half_;
};

}  // namespace ZIRK::kit
