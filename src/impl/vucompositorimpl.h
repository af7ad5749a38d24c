#pragma once

#include <zirk/export.h>
#include <zirk/vucompositor.h>

#include <memory>

namespace ZIRK {

/// A layer compositor: what a plug-in's "CreateVuCompositor" returns. VuCompositor documents the
/// operations. Their order is fixed.
///
/// **Threads**: several may call at once.
class ZIRK_API VuCompositorImpl {
 public:
  VuCompositorImpl() = default;
  virtual ~VuCompositorImpl();  // slots 1 and 2
  VuCompositorImpl(const VuCompositorImpl&) = delete;
  VuCompositorImpl& operator=(const VuCompositorImpl&) = delete;

  /// Slot 3: replaces the configuration. The layers are copied during the call.
  virtual void SetConfiguration(const LayerDescription* layers, int count) = 0;
  /// Slot 4: stores the configuration in `layers`, unless that is null, and its length in `count`.
  virtual void GetConfiguration(LayerDescription* layers, int& count) = 0;
  /// Slot 5: shows or hides one layer.
  virtual void EnableLayer(signed char layer, bool enable) = 0;
  /// Slot 6: the number of layers.
  [[nodiscard]] virtual int GetVirtualLayerCount() = 0;

  /// A share in the enabled compositor; empty if it is not enabled. Any thread may call.
  static std::shared_ptr<VuCompositorImpl> GetInstance();
};

}  // namespace ZIRK
