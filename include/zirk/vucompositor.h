#pragma once

#include <zirk/export.h>

namespace ZIRK {

/// One layer's configuration: <zirk/layerdescription.h> has the one of our compositor. It is handed
/// on to the plug-in as it is.
struct LayerDescription;

/// The process's layer compositor, in the plug-in "GLCompositor". While it is not enabled every
/// operation does nothing and answers zero. Any thread may call; the plug-in runs without a lock.
class ZIRK_API VuCompositor {
 public:
  /// Creates or drops the compositor. Enabling expects the plug-in to open: the process aborts if
  /// it does not. It does open where a context of "OpenGLES2" was created, whose file it shares;
  /// else GraphicsImplLoader::loadImpl() tells.
  static void Enable(bool enable);
  /// Whether there is a compositor.
  static bool IsEnabled();

  /// Hands `count` layers to the compositor.
  static void SetConfiguration(const LayerDescription* layers, int count);
  /// Fills `layers`, which has room for GetVirtualLayerCount() of them or is null, and sets
  /// `count`; without a compositor only sets `count` to 0.
  static void GetConfiguration(LayerDescription* layers, int& count);
  /// Shows or hides one layer, by its number, and leaves the rest of its configuration. A layer
  /// that is not in the configuration stays as it is.
  static void EnableLayer(signed char layer, bool enable);
  /// How many layers there are; their numbers begin at 0.
  static int GetVirtualLayerCount();
};

}  // namespace ZIRK
