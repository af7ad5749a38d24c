#include "plainmatrix.h"

#include <cmath>

namespace ZIRK::bench {

void PlainMatrix::translate(const Vector& t) {
  *this = PlainMatrix{{1, 0, 0, 0, 1, 0, t.x(), t.y(), 1}} * *this;
}

void PlainMatrix::scale(const Vector& s) {
  *this = PlainMatrix{{s.x(), 0, 0, 0, s.y(), 0, 0, 0, 1}} * *this;
}

void PlainMatrix::rotate(float angle) {
  const float c = std::cos(angle), s = std::sin(angle);
  *this = PlainMatrix{{c, -s, 0, s, c, 0, 0, 0, 1}} * *this;
}

PlainMatrix PlainMatrix::operator*(const PlainMatrix& b) const {
  PlainMatrix product{{}};
  for (size_t row = 0; row < 3; ++row) {
    for (size_t column = 0; column < 3; ++column) {
      for (size_t i = 0; i < 3; ++i)
        product.m[3 * row + column] += m[3 * row + i] * b.m[3 * i + column];
    }
  }
  return product;
}

PlainMatrix PlainMatrix::inverse() const {
  const float c0 = m[4] * m[8] - m[5] * m[7];
  const float c1 = m[5] * m[6] - m[3] * m[8];
  const float c2 = m[3] * m[7] - m[4] * m[6];
  const float d = 1 / (m[0] * c0 + m[1] * c1 + m[2] * c2);
  return {{c0 * d, (m[2] * m[7] - m[1] * m[8]) * d, (m[1] * m[5] - m[2] * m[4]) * d, c1 * d,
           (m[0] * m[8] - m[2] * m[6]) * d, (m[2] * m[3] - m[0] * m[5]) * d, c2 * d,
           (m[1] * m[6] - m[0] * m[7]) * d, (m[0] * m[4] - m[1] * m[3]) * d}};
}

PlainMatrix::Vector PlainMatrix::transformVector(const Vector& v) const {
  return {v.x() * m[0] + v.y() * m[3] + m[6], v.x() * m[1] + v.y() * m[4] + m[7]};
}

PlainMatrix::Rect PlainMatrix::transform(const Rect& r) const {
  Rect box;
  box.addPoint(transformVector(r.minPoint()));
  box.addPoint(transformVector({r.minPoint().x(), r.maxPoint().y()}));
  box.addPoint(transformVector({r.maxPoint().x(), r.minPoint().y()}));
  box.addPoint(transformVector(r.maxPoint()));
  return box;
}

}  // namespace ZIRK::bench
