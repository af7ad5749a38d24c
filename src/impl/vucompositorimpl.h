#pragma once

#include <zirk/export.h>
#include <zirk/vucompositor.h>

#include <memory>

namespace ZIRK {

/// A layer compositor: what a plug-in's "CreateVuCompositor" returns. The order of the operations
/// is fixed. They may be called from several threads at once.
class ZIRK_API VuCompositorImpl {
 public:
  VuCompositorImpl() = default;
  virtual ~VuCompositorImpl();  // slots 1 and 2
  VuCompositorImpl(const VuCompositorImpl&) = delete;
  VuCompositorImpl& operator=(const VuCompositorImpl&) = delete;

  /// Slots 3 to 6. VuCompositor has their meaning; the configuration is copied during the call.
  virtual void SetConfiguration(const LayerDescription* layers, int count) = 0;
  virtual void GetConfiguration(LayerDescription* layers, int& count) = 0;
  virtual void EnableLayer(signed char layer, bool enable) = 0;
  virtual int GetVirtualLayerCount() = 0;

  /// A share in the enabled compositor; empty while there is none.
  static std::shared_ptr<VuCompositorImpl> GetInstance();
};

}  // namespace ZIRK
