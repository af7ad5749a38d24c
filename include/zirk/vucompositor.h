#pragma once

#include <zirk/export.h>

namespace ZIRK {

/// The configuration of one layer. <zirk/layerdescription.h> defines the one of ZIRK's compositor.
/// The library passes it to the plug-in unchanged.
struct LayerDescription;

/// The process's layer compositor, in the plug-in "GLCompositor". While it is not enabled, every
/// operation does nothing and returns 0.
///
///     VuCompositor::Enable(true);
///     LayerDescription layers[2];
///     layers[1].layer = 1;
///     layers[1].order = 1;  // Above layer 0.
///     VuCompositor::SetConfiguration(layers, 2);
///
/// **Threads**: any thread may call every member. The plug-in runs without a lock.
class ZIRK_API VuCompositor {
 public:
  /// Creates or deletes the compositor. If the plug-in does not open, Enable(true) ends the process
  /// by an assertion. It opens if a context of "OpenGLES2" was created, which shares its file;
  /// otherwise GraphicsImplLoader::loadImpl("GLCompositor") returns 0 if it does. If memory runs
  /// out, an error is logged and the compositor stays disabled.
  static void Enable(bool enable);
  /// Whether the compositor is enabled.
  [[nodiscard]] static bool IsEnabled();

  /// Replaces the configuration by the `count` layers at `layers`, which are copied. One that is
  /// not valid (see LayerDescription) changes nothing and logs a warning.
  static void SetConfiguration(const LayerDescription* layers, int count);
  /// Stores the configuration in `layers`, an array of at least GetVirtualLayerCount() elements or
  /// null, and the number of its layers in `count`: 0 if the compositor is not enabled.
  static void GetConfiguration(LayerDescription* layers, int& count);
  /// Shows or hides the layer of that number, and keeps the rest of its configuration. For a layer
  /// that is not in the configuration, does nothing but log a warning.
  static void EnableLayer(signed char layer, bool enable);
  /// The number of layers, which are counted from 0; 0 if the compositor is not enabled.
  [[nodiscard]] static int GetVirtualLayerCount();
};

}  // namespace ZIRK
