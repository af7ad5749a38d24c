#include "strokepainter.h"

#include <algorithm>
#include <cmath>

#include "figurerenderer.h"

namespace ZIRK::kit {

namespace {

float Dot(Point a, Point b) {
  return a.x() * b.x() + a.y() * b.y();
}

float Cross(Point a, Point b) {
  return a.x() * b.y() - a.y() * b.x();
}

float AngleOf(Point v) {
  return std::atan2(-v.y(), v.x());
}

}  // namespace

StrokePainter::Segment StrokePainter::Between(Point from, Point to, float half) {
  const Point way = to - from;
  const float length = std::hypot(way.x(), way.y());
  const Point along = way * (1 / length);
  return {from, to, along, Point(along.y(), -along.x()) * half, length};
}

StrokePainter::Joint StrokePainter::JointOf(const Segment& a, const Segment& b) const {
  Joint joint;
  joint.exists = true;
  const float cross = Cross(a.along, b.along);
  joint.cosine = Dot(a.along, b.along);
  joint.outer = cross >= 0 ? 1.0f : -1.0f;
  joint.turn = -std::atan2(cross, joint.cosine);
  const float cut = half_ * std::fabs(cross) / (1 + joint.cosine);
  if (cut <= std::min(a.length, b.length) / 2) joint.cut = cut;
  return joint;
}

void StrokePainter::AddCorners() {
  raster_.Add(corners_.data(), corners_.size());
}

void StrokePainter::AddBody(const Segment& s, const Joint& start, const Joint& end) {
  // The length by which a side is cut at a joint, if it is the inner side there.
  const auto cut = [&](const Joint& joint, float side) {
    return s.along * (joint.outer == side ? 0 : joint.cut);
  };
  corners_ = {s.from + s.side + cut(start, 1), s.to + s.side - cut(end, 1)};
  if (end.exists) corners_.push_back(s.to);
  corners_.insert(corners_.end(), {s.to - s.side - cut(end, -1), s.from - s.side + cut(start, -1)});
  if (start.exists) corners_.push_back(s.from);
  AddCorners();
}

void StrokePainter::AddWedge(const Segment& a, const Segment& b, const Joint& joint) {
  const Point outA = a.side * joint.outer, outB = b.side * joint.outer;
  corners_ = {a.to, a.to + outA};
  // The tip is within two widths if the cosine of half the turn is at least 1/4.
  constexpr float kLeastCosine = 2.0f / 16 - 1;
  if (stroke_.join == Join::Round)
    AppendArc(corners_, a.to, half_, AngleOf(outA), joint.turn);
  else if (stroke_.join == Join::Miter && joint.cosine >= kLeastCosine)
    corners_.push_back(a.to + (outA + outB) * (1 / (1 + joint.cosine)));
  corners_.push_back(a.to + outB);
  AddCorners();
}

void StrokePainter::AddCap(Point at, Point along) {
  const Point side = Point(along.y(), -along.x()) * half_;
  corners_ = {at + side};
  if (stroke_.cap == Cap::Round) {
    AppendArc(corners_, at, half_, AngleOf(side), -kPi);
  } else if (stroke_.cap == Cap::Square) {
    corners_.push_back(at + side + along * half_);
    corners_.push_back(at - side + along * half_);
  } else {
    return;
  }
  corners_.push_back(at - side);
  AddCorners();
}

void StrokePainter::Add(const std::vector<Point>& points, bool closed) {
  const size_t count = points.size();
  if (count == 1) {
    AddCap(points[0], {1, 0});
    AddCap(points[0], {-1, 0});
  }
  if (count < 2) return;
  const size_t segments = closed ? count : count - 1;
  const auto segment = [&](size_t i) {
    i %= segments;
    return Between(points[i], points[i + 1 < count ? i + 1 : 0], half_);
  };
  Segment last = segment(segments - 1), here = segment(0);
  Joint start = closed ? JointOf(last, here) : Joint();
  if (!closed) AddCap(points.front(), here.along * -1);
  for (size_t i = 0; i < segments; ++i) {
    const bool ends = !closed && i + 1 == segments;
    const Segment next = segment(i + 1);
    const Joint end = ends ? Joint() : JointOf(here, next);
    AddBody(here, start, end);
    if (!ends) AddWedge(here, next, end);
    here = next;
    start = end;
  }
  if (!closed) AddCap(points.back(), last.along);
}

}  // namespace ZIRK::kit
