#include <math.h>
#include <zirk/impl/log.h>
#include <zirk/vumatrix2d.h>

#include <cmath>
#include <cstring>

#include "assertalways.h"
#include "transformvector.h"

namespace ZIRK {

template <typename T>
VuTMatrix2D<T>::VuTMatrix2D(VuTransform t) : VuTMatrix2D() {
  if (t.translateX != 0 || t.translateY != 0) translate({t.translateX, t.translateY});
  if (t.scaleX != 1 || t.scaleY != 1) scale({t.scaleX, t.scaleY});
  if (t.rotation != 0) rotate(static_cast<T>(t.rotation * 3.141592653589793 / 180.0));
}

template <typename T>
void VuTMatrix2D<T>::translate(const VuTVector2D<T>& t) {
  VuTMatrix2D step;
  step.setTranslation(t);
  if (t.x() != 0 || t.y() != 0) step.flags_ = kTranslation;
  multLeft(step);
}

template <typename T>
void VuTMatrix2D<T>::scale(const VuTVector2D<T>& s) {
  VuTMatrix2D step;
  step.m_[0] = s.x();
  step.m_[4] = s.y();
  if (s.x() != 1 || s.y() != 1) step.flags_ = kScale;
  multLeft(step);
}

template <typename T>
void VuTMatrix2D<T>::rotate(T angle) {
  double sine = 0;
  double cosine = 0;
  sincos(static_cast<double>(angle), &sine, &cosine);
  VuTMatrix2D step;
  step.m_[0] = static_cast<T>(cosine);
  step.m_[1] = static_cast<T>(-sine);
  step.m_[3] = static_cast<T>(sine);
  step.m_[4] = static_cast<T>(cosine);
  if (angle != 0) step.flags_ = kRotation;
  multLeft(step);
}

// Products write the six elements of an affine matrix and leave the third column unchanged. The
// operands may be the same object: every element is read before it is overwritten.

template <typename T>
void VuTMatrix2D<T>::copyLinear(const VuTMatrix2D& from) {
  m_[0] = from.m_[0];
  m_[1] = from.m_[1];
  m_[3] = from.m_[3];
  m_[4] = from.m_[4];
}

template <typename T>
void VuTMatrix2D<T>::setTranslation(const VuTVector2D<T>& t) {
  m_[6] = t.x();
  m_[7] = t.y();
}

template <typename T>
void VuTMatrix2D<T>::setLinearProduct(const VuTMatrix2D& a, const VuTMatrix2D& b) {
  const T m0 = a.m_[0] * b.m_[0] + a.m_[1] * b.m_[3];
  const T m1 = a.m_[0] * b.m_[1] + a.m_[1] * b.m_[4];
  const T m3 = a.m_[3] * b.m_[0] + a.m_[4] * b.m_[3];
  const T m4 = a.m_[3] * b.m_[1] + a.m_[4] * b.m_[4];
  m_[0] = m0;
  m_[1] = m1;
  m_[3] = m3;
  m_[4] = m4;
}

template <typename T>
void VuTMatrix2D<T>::setProduct(const VuTMatrix2D& a, const VuTMatrix2D& b) {
  const VuTVector2D<T> t = b.carried(a.m_[6], a.m_[7]);
  setLinearProduct(a, b);
  setTranslation(t);
}

/// Sets this * b if that equals b * this: either is the identity, or both only translate. Returns
/// false and does nothing for any other pair.
template <typename T>
bool VuTMatrix2D<T>::setCommutingProduct(const VuTMatrix2D& b) {
  if (flags_ == 0) {
    copyLinear(b);
    setTranslation({b.m_[6], b.m_[7]});
    flags_ = b.flags_;
    return true;
  }
  if (b.flags_ == 0) return true;
  if (flags_ == kTranslation && b.flags_ == kTranslation) {
    m_[6] += b.m_[6];
    m_[7] += b.m_[7];
    return true;
  }
  return false;
}

template <typename T>
void VuTMatrix2D<T>::multRight(const VuTMatrix2D& b) {
  if (setCommutingProduct(b)) return;
  if (flags_ == kTranslation && !b.hasTranslation()) {
    setTranslation(b.carried(m_[6], m_[7]));
    copyLinear(b);
  } else if (!hasTranslation() && b.flags_ == kTranslation) {
    setTranslation({b.m_[6], b.m_[7]});
  } else if (!hasTranslation() && !b.hasTranslation()) {
    setLinearProduct(*this, b);
  } else {
    setProduct(*this, b);
  }
  flags_ |= b.flags_;
}

template <typename T>
void VuTMatrix2D<T>::multLeft(const VuTMatrix2D& b) {
  if (setCommutingProduct(b)) return;
  if (flags_ == kTranslation && !b.hasTranslation()) {
    copyLinear(b);
  } else if (!hasTranslation() && b.flags_ == kTranslation) {
    setTranslation(carried(b.m_[6], b.m_[7]));
  } else if (!hasTranslation() && !b.hasTranslation()) {
    setLinearProduct(b, *this);
  } else {
    setProduct(b, *this);
  }
  flags_ |= b.flags_;
}

template <typename T>
VuTMatrix2D<T> VuTMatrix2D<T>::operator*(const VuTMatrix2D& b) const {
  VuTMatrix2D product = *this;
  product.multRight(b);
  return product;
}

template <typename T>
VuTMatrix2D<T>& VuTMatrix2D<T>::operator*=(const VuTMatrix2D& b) {
  multRight(b);
  return *this;
}

template <typename T>
VuTMatrix2D<T> VuTMatrix2D<T>::inverse() const {
  if (hasRotation() && flags_ != kRotation) return generalInverse();

  VuTMatrix2D r;
  switch (flags_) {
    case kScale | kTranslation: {
      const T d = 1 / (m_[4] * m_[0]);
      r.m_[0] = d * m_[4];
      r.m_[4] = m_[0] * d;
      r.m_[6] = -(m_[4] * m_[6]) * d;
      r.m_[7] = -(m_[0] * m_[7]) * d;
      break;
    }
    case kScale:
      r.m_[0] = 1 / m_[0];
      r.m_[4] = 1 / m_[4];
      break;
    case kTranslation:
      r.setTranslation({-m_[6], -m_[7]});
      break;
    case kRotation:
      r.copyLinear(*this);
      r.m_[1] = m_[3];
      r.m_[3] = m_[1];
      break;
    default:
      break;
  }
  r.flags_ = flags_;
  return r;
}

/// The adjugate over the determinant, of all nine elements.
template <typename T>
VuTMatrix2D<T> VuTMatrix2D<T>::generalInverse() const {
  const auto& m = m_;
  const T c0 = m[4] * m[8] - m[5] * m[7];
  const T c1 = m[3] * m[8] - m[5] * m[6];
  const T c2 = m[3] * m[7] - m[4] * m[6];
  const T det = m[0] * c0 - m[1] * c1 + m[2] * c2;
  VuTMatrix2D r;
  if (det == 0) return r;

  const T d = 1 / det;
  r.m_ = {c0 * d,
          (m[2] * m[7] - m[1] * m[8]) * d,
          (m[1] * m[5] - m[2] * m[4]) * d,
          (m[5] * m[6] - m[3] * m[8]) * d,
          (m[0] * m[8] - m[2] * m[6]) * d,
          (m[2] * m[3] - m[0] * m[5]) * d,
          c2 * d,
          (m[1] * m[6] - m[0] * m[7]) * d,
          (m[0] * m[4] - m[1] * m[3]) * d};
  r.flags_ = kTranslation | kScale | kRotation;
  return r;
}

template <typename T>
void VuTMatrix2D<T>::decompose(VuTVector2D<T>& scale, T& angle, VuTVector2D<T>& translation) const {
  translation = {m_[6], m_[7]};
  if (!hasRotation()) {
    angle = 0;
    scale = {m_[0], m_[4]};
    return;
  }
  scale = {1, 1};
  if (hasScale())
    scale = {std::sqrt(m_[0] * m_[0] + m_[1] * m_[1]), std::sqrt(m_[3] * m_[3] + m_[4] * m_[4])};
  angle = std::atan2(-m_[1] / scale.y(), m_[0] / scale.x());
}

template <typename T>
T VuTMatrix2D<T>::getElement(unsigned row, unsigned col) const {
  assert(row < 3);
  assert(col < 3);
  return m_[3 * row + col];
}

template <typename T>
bool VuTMatrix2D<T>::operator==(const VuTMatrix2D& b) const {
  // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison): +0 and -0 differ, a NaN equals itself.
  return std::memcmp(m_.data(), b.m_.data(), sizeof m_) == 0 && flags_ == b.flags_;
}

template <typename T>
void VuTMatrix2D<T>::print(const char* name) const {
  const char* const shown = name ? name : "(null)";
  const auto m = [this](unsigned i) { return static_cast<double>(m_[i]); };
  ZIRK_LOG_ERROR("matrix %s 1: %6.3f %6.3f %6.3f", shown, m(0), m(1), m(2));
  ZIRK_LOG_ERROR("matrix %s 2: %6.3f %6.3f %6.3f", shown, m(3), m(4), m(5));
  ZIRK_LOG_ERROR("matrix %s 3: %6.3f %6.3f %6.3f", shown, m(6), m(7), m(8));
}

template class VuTMatrix2D<float>;
template VuTVector2D<float> VuTMatrix2D<float>::transformVector(const VuTVector2D<float>&) const;
template VuTVector2D<int> VuTMatrix2D<float>::transformVector(const VuTVector2D<int>&) const;

}  // namespace ZIRK
