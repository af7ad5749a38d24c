#pragma once

#include <zirk/vumatrix2d.h>

#include <type_traits>

#include "floattoint.h"

/// The body of VuTMatrix2D::transformVector, for the files of the library that call it in their
/// inner loops. It is not in the public header, so that no application's compiler flags change how
/// it rounds.

namespace ZIRK {

template <typename T>
VuTVector2D<T> VuTMatrix2D<T>::carried(T x, T y) const {
  return {x * m_[0] + y * m_[3] + m_[6], x * m_[1] + y * m_[4] + m_[7]};
}

template <typename T>
template <typename U>
VuTVector2D<U> VuTMatrix2D<T>::transformVector(const VuTVector2D<U>& v) const {
  const T x = static_cast<T>(v.x());
  const T y = static_cast<T>(v.y());
  VuTVector2D<T> p;
  if (hasRotation())
    p = carried(x, y);
  else if (hasScale())
    p = {x * m_[0] + m_[6], y * m_[4] + m_[7]};
  else
    p = {x + m_[6], y + m_[7]};

  if constexpr (std::is_same_v<U, int>)
    return {TruncateToInt32(p.x()), TruncateToInt32(p.y())};
  else
    return p;
}

}  // namespace ZIRK
