#include <zirk/layerdescription.h>
#include <zirk/zirk.h>

using namespace ZIRK;

void ShowTwoLayers() {
  //! [snippet]
  VuCompositor::Enable(true);
  LayerDescription layers[2];
  layers[1].layer = 1;
  layers[1].order = 1;  // Above layer 0.
  VuCompositor::SetConfiguration(layers, 2);
  //! [snippet]
}
