#pragma once

#include <zirk/vurect.h>

#include <cstdint>

namespace ZIRK {

/// How the compositor shows one layer. The screen that was created with index n draws layer n.
///
/// A configuration is an array of these, one for each layer to be shown, each with a different
/// number. Layers that are not in it are not shown. The compositor rejects the whole configuration,
/// with one warning, if a layer does not exist or occurs twice, or if a rectangle has a negative
/// extent or exactly one side of length 0.
///
/// Before the first configuration every layer covers the display, higher numbers above lower ones.
struct LayerDescription {
  /// From 0 to VuCompositor::GetVirtualLayerCount() - 1.
  int32_t layer = 0;
  /// The part of the layer's screen that is shown, in its pixels; without extent, all of it.
  /// Where it reaches beyond the screen, the matching part of the destination is left out.
  VuRect source{0, 0, 0, 0};
  /// Where the layer is shown, in pixels of the display; without extent, on the whole display. The
  /// display is as large as screen 0 or, without that screen, as the largest screens. The rectangle
  /// may reach beyond it.
  VuRect destination{0, 0, 0, 0};
  /// Layers with a higher value cover those with a lower one. Of equal values, the one that comes
  /// later in the configuration is above.
  int32_t order = 0;
  /// From 0, invisible, to 255. It is multiplied with the layer's own alpha.
  uint8_t opacity = 255;
  /// Whether the layer is shown; VuCompositor::EnableLayer() changes this alone.
  bool enabled = true;
  /// Whether layers below show through where this one is not opaque; otherwise it replaces them.
  bool blended = true;
};

}  // namespace ZIRK
