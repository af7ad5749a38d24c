#pragma once

#include <zirk/vurect.h>

#include <cstdint>

namespace ZIRK {

/// How one layer of the compositor is shown. The screen that was made with index n draws layer n.
///
/// A configuration is as many of these as there are layers to be shown, each with another number;
/// a layer that is not in it is not shown. One with a number that there is no layer of, twice the
/// same number, or a rectangle of negative extent or with only one side of length 0 is refused as a
/// whole, with one warning.
///
/// Before the first configuration every layer covers the display, lower numbers below higher ones.
struct LayerDescription {
  /// From 0 to VuCompositor::GetVirtualLayerCount() - 1.
  int32_t layer = 0;
  /// The part of the layer's screen that is shown; without extent all of it. What reaches beyond
  /// the screen is left out, and that part of the destination.
  VuRect source{0, 0, 0, 0};
  /// Where it is shown, in pixels of the display, which is as large as screen 0 (without one, as
  /// the largest screens); without extent everywhere. It may reach beyond the display.
  VuRect destination{0, 0, 0, 0};
  /// Lower ones lie below higher ones; of equal ones the one that comes first in the configuration.
  int32_t order = 0;
  /// From 0, invisible, to 255; the layer's own alpha is multiplied with it.
  uint8_t opacity = 255;
  /// Whether the layer is shown at all; VuCompositor::EnableLayer() changes it alone.
  bool enabled = true;
  /// Whether what lies below shows through where the layer is not opaque; else it is replaced.
  bool blended = true;
};

}  // namespace ZIRK
