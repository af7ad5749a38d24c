#include <zirk/impl/log.h>
#include <zirk/vumatrix2d.h>
#include <zirk/vurect2d.h>

#include "transformvector.h"

namespace ZIRK {

template <typename T>
template <typename M>
VuTRect2D<T> VuTRect2D<T>::transform(const VuTMatrix2D<M>& m) const {
  if (isEmpty()) return *this;

  VuTVector2D<T> a = m.transformVector(min_);
  if (m.hasRotation()) {
    VuTRect2D box(a, a);
    box.addPoint(m.transformVector(VuTVector2D<T>(min_.x(), max_.y())));
    box.addPoint(m.transformVector(VuTVector2D<T>(max_.x(), min_.y())));
    box.addPoint(m.transformVector(max_));
    return box;
  }

  VuTVector2D<T> b = m.transformVector(max_);
  if (m.hasScale()) {
    // A negative scale swaps the corners.
    if (a.x() > b.x()) {
      const T x = a.x();
      a.setX(b.x());
      b.setX(x);
    }
    if (a.y() > b.y()) {
      const T y = a.y();
      a.setY(b.y());
      b.setY(y);
    }
  }
  return {a, b};
}

template <typename T>
void VuTRect2D<T>::print(const char* name) const {
  const char* const shown = name ? name : "(null)";
  ZIRK_LOG_ERROR("rect %s -- min %6.3f %6.3f", shown, static_cast<double>(min_.x()),
                 static_cast<double>(min_.y()));
  ZIRK_LOG_ERROR("rect %s -- max  %6.3f %6.3f", shown, static_cast<double>(max_.x()),
                 static_cast<double>(max_.y()));
}

template class VuTRect2D<float>;
template class VuTRect2D<int>;
template VuTRect2D<float> VuTRect2D<float>::transform(const VuTMatrix2D<float>&) const;
template VuTRect2D<int> VuTRect2D<int>::transform(const VuTMatrix2D<float>&) const;

}  // namespace ZIRK
