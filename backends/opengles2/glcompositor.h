#pragma once

#include <zirk/impl/vucompositorimpl.h>
#include <zirk/layerdescription.h>

#include <vector>

namespace ZIRK::backends {

/// What is to be shown: nothing of OpenGL, so that any thread may change or end it. Those who draw
/// ask for it once a frame.
class GlCompositor final : public VuCompositorImpl {
 public:
  static constexpr int kLayers = 16;

  GlCompositor();
  ~GlCompositor() override;

  void SetConfiguration(const LayerDescription* layers, int count) override;
  /// `layers` has room for kLayers, or is null.
  void GetConfiguration(LayerDescription* layers, int& count) override;
  void EnableLayer(signed char layer, bool enable) override;
  int GetVirtualLayerCount() override { return kLayers; }

  /// The layers that are enabled, from the lowest to the highest.
  struct Stack {
    bool composing = false;  ///< Whether there is a compositor.
    std::vector<LayerDescription> layers;
  };
  /// Of the compositor that there is.
  static Stack Current();

 private:
  std::vector<LayerDescription> layers_;
};

}  // namespace ZIRK::backends
