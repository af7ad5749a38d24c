#pragma once

#include <zirk/impl/vucompositorimpl.h>
#include <zirk/layerdescription.h>

#include <memory>
#include <vector>

#include "opengles2/glcanvas.h"
#include "opengles2/glscreen.h"

namespace ZIRK::backends {

/// The configuration of the layers. It uses no OpenGL, so any thread may change or delete it.
/// Screens read it once per frame.
class GlCompositor final : public VuCompositorImpl {
 public:
  static constexpr int kLayers = 16;

  GlCompositor();
  ~GlCompositor() override;

  void SetConfiguration(const LayerDescription* layers, int count) override;
  /// `layers` has room for kLayers elements, or is null.
  void GetConfiguration(LayerDescription* layers, int& count) override;
  void EnableLayer(signed char layer, bool enable) override;
  int GetVirtualLayerCount() override { return kLayers; }

  /// The enabled layers, from the lowest to the highest.
  struct Stack {
    bool composing = false;  ///< Whether there is a compositor.
    std::vector<LayerDescription> layers;
  };
  /// The stack of the active compositor.
  static Stack Current();

 private:
  std::vector<LayerDescription> layers_;
};

/// Composes the screens as layers, on a display of their own. Shared by the screens.
class GlLayers {
 public:
  /// The layers of `device`.
  static std::shared_ptr<GlLayers> Of(const std::shared_ptr<GlDevice>& device);
  explicit GlLayers(std::shared_ptr<GlDevice> device);

  /// Adds a screen. Its frame so far counts as shown.
  void Add(GlScreen& screen);
  void Remove(const GlScreen& screen);

  /// Makes the window of screen 0 the display; null closes the display.
  void SetDisplay(std::unique_ptr<GlWindow> window);
  /// Returns the display to screen 0 as its window.
  std::unique_ptr<GlWindow> TakeDisplay();
  /// Ends composing: closes the display unless screen 0 exists, which then takes it.
  void StopComposing();

  /// Takes a new frame of `screen`. It is shown at once, unless another layer has drawing that was
  /// not swapped yet. In that case it is shown with the swap of that layer, or with the screen's
  /// next one.
  void Swap(GlScreen& screen, const GlCompositor::Stack& stack, bool vsync);

  /// The number of frames that were composed.
  unsigned Frames() const { return frames_; }
  /// The picture on the display; null before the first frame.
  GlCanvas* Composed() { return display_ ? &canvas_ : nullptr; }

 private:
  struct Layer {
    GlScreen* screen;
    unsigned shown;  ///< GlScreen::Frame() at the last composition.
    bool swapped;    ///< Whether it was swapped since then.
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
