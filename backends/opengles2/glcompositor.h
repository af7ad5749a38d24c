#pragma once

#include <zirk/impl/vucompositorimpl.h>
#include <zirk/layerdescription.h>

#include <memory>
#include <vector>

#include "opengles2/canvas.h"
#include "opengles2/glscreen.h"

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

/// The screens as layers of the compositor, and the display that they are composed on. Shared by
/// the screens.
class GlLayers {
 public:
  /// Those of `device`.
  static std::shared_ptr<GlLayers> Of(const std::shared_ptr<GlDevice>& device);
  explicit GlLayers(std::shared_ptr<GlDevice> device);

  /// What has been drawn on it until now is not waited for.
  void Add(GlScreen& screen);
  void Remove(const GlScreen& screen);

  /// The window that screen 0 had, or gets, of its own.
  void SetDisplay(std::unique_ptr<GlWindow> window);
  std::unique_ptr<GlWindow> TakeDisplay();
  /// There is no compositor now: closes the display unless screen 0 is going to take it.
  void StopComposing();

  /// `screen` has a new frame. It is shown at once unless another layer has been drawn on and not
  /// swapped yet; then with that one's, or with the screen's own next swap.
  void Swap(GlScreen& screen, const GlCompositor::Stack& stack, bool vsync);

  /// How often that has been done.
  unsigned Frames() const { return frames_; }
  /// What is shown; null as long as nothing has been composed.
  GlCanvas* Composed() { return display_ ? &canvas_ : nullptr; }

 private:
  struct Layer {
    GlScreen* screen;
    unsigned shown;  ///< Its frame that has been composed last.
    bool swapped;    ///< It has been since then.
  };

  bool IsUnfinished(const GlCompositor::Stack& stack);
  bool OpenDisplay();
  void Compose(const GlCompositor::Stack& stack);
  Layer* Find(int index);

  const std::shared_ptr<GlDevice> device_;
  std::vector<Layer> screens_;
  std::unique_ptr<GlWindow> display_;
  SurfaceState state_{};
  GlCanvas canvas_;
  unsigned frames_ = 0;
};

}  // namespace ZIRK::backends
