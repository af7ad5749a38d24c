#include <zirk/zirk.h>

using namespace ZIRK;

VuTVector2D<float> MiddleOf(VuTVector2D<float> from, VuTVector2D<float> to) {
  //! [snippet]
  const VuTVector2D<float> middle = (from + to) * 0.5f;
  //! [snippet]
  return middle;
}
