#pragma once

#include <zirk/impl/vuscreenimpl.h>
#include <zirk/vuscreendescription.h>

#include <memory>
#include <utility>

#include "opengles2/glrenderer.h"
#include "opengles2/glwindow.h"
#include "surface/presenter.h"
#include "surface/surface.h"

namespace ZIRK::backends {

class GlLayers;

/// A screen: a window, or the whole display if there is no window system. While a compositor is
/// enabled, it is a texture and one of the compositor's layers.
class GlScreen final : public Surface<VuScreenImpl, GlRenderer>, private Presenter {
 public:
  /// Null after one error line.
  static std::unique_ptr<GlScreen> Open(std::unique_ptr<MemoryBudget::Reservation> reservation,
                                        const VuScreenDescription& description,
                                        const std::shared_ptr<GlDevice>& device,
                                        std::shared_ptr<TextureSourceResolver> resolver);
  ~GlScreen() override;

  int Index() const { return index_; }
  /// A number that changes whenever the layer is drawn on; 0 while the screen is not a layer.
  unsigned Frame() { return Drawing().Texture() ? Drawing().Texture()->AsTarget()->changes : 0; }

  /// Makes the screen a layer with its present picture, if it is not one yet. False after an error
  /// line.
  bool EnterLayers() { return Drawing().Texture() || Move(true); }

  void SwapBuffers() override { Swap(); }
  void Finish() override {
    if (!ShowIfSingleBuffered()) Surface::Finish();
  }
  void Flush() override {
    if (!ShowIfSingleBuffered()) Surface::Flush();
  }

 private:
  GlScreen(std::unique_ptr<MemoryBudget::Reservation> reservation,
           const VuScreenDescription& description, const std::shared_ptr<GlDevice>& device,
           std::shared_ptr<TextureSourceResolver> resolver);

  bool Move(bool toLayers);
  bool BecomeLayer();
  bool BecomeWindow();
  void Present() override;

  const int index_;
  bool ownsWindow_ = true;  ///< Whether the screen has a window while there is no compositor.
  const std::shared_ptr<GlLayers> layers_;
  std::unique_ptr<GlWindow> window_;
};

}  // namespace ZIRK::backends
