#include <zirk/vumatrix2d.h>
#include <zirk/vutransform.h>

namespace ZIRK {

VuTransform::VuTransform(VuTMatrix2D<float> m) {
  if (m.isIdentity()) return;
  VuTVector2D<float> scale;
  VuTVector2D<float> translation;
  float angle = 0;
  m.decompose(scale, angle, translation);
  translateX = translation.x();
  translateY = translation.y();
  scaleX = scale.x();
  scaleY = scale.y();
  // In single precision, unlike the way back; a negative zero becomes zero.
  if (angle != 0) rotation = angle * 57.29578f;
}

}  // namespace ZIRK
