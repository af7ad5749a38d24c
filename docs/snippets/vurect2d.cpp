#include <zirk/zirk.h>

using namespace ZIRK;

VuTRect2D<float> BoundsOf(const VuTVector2D<float>* points, int count,
                          const VuTMatrix2D<float>& matrix) {
  //! [snippet]
  VuTRect2D<float> bounds;  // Empty.
  for (int i = 0; i < count; ++i) bounds.addPoint(points[i]);
  bounds = bounds.transform(matrix);
  //! [snippet]
  return bounds;
}
