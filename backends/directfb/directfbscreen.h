#pragma once

#include <directfb.h>
#include <zirk/impl/vuscreenimpl.h>
#include <zirk/vuscreendescription.h>

#include <memory>
#include <optional>
#include <string>

#include "directfb/directfbrenderer.h"
#include "directfb/directfbruntime.h"
#include "images/image.h"
#include "surface/presenter.h"
#include "surface/surface.h"

namespace ZIRK::backends {

/// A display layer that one screen uses exclusively. The destructor restores the earlier
/// configuration of the layer; release the layer's surface before.
class DirectFbLayer {
 public:
  /// The screen that the layer granted.
  struct Screen {
    DirectFbSurfacePtr surface;
    int width, height;
    VuPixelFormat format;
    bool twoBuffers;
  };

  /// The layer's size; nullopt if there is no such layer.
  static std::optional<ImageSize> SizeOf(IDirectFB& directFb, int index);

  /// Opens the layer with the screen's index, in the requested size and format and with the
  /// requested buffers. If the system refuses, uses the layer's own size, its own format, or a
  /// single buffer. Returns null, with the reason in `error`, if there is no such layer, if another
  /// screen uses it, or if surfaces cannot have its format.
  static std::unique_ptr<DirectFbLayer> Open(IDirectFB& directFb,
                                             const VuScreenDescription& description, Screen& screen,
                                             std::string& error);

  ~DirectFbLayer();
  DirectFbLayer(const DirectFbLayer&) = delete;
  DirectFbLayer& operator=(const DirectFbLayer&) = delete;

 private:
  DirectFbLayer(IDirectFBDisplayLayer* layer, unsigned bit) : layer_(layer), bit_(bit) {}

  DFBResult Configure(const VuScreenDescription& description);
  DFBResult TakeSurface(Screen& screen);

  IDirectFBDisplayLayer* const layer_;
  const unsigned bit_;  ///< The layer's bit among the layers in use.
};

/// The layer of a screen, as a base class so that it outlives the screen's surface.
struct ScreenLayer {
  std::unique_ptr<DirectFbLayer> layer_;
};

/// A screen: a display layer's surface.
class DirectFbScreen final : private ScreenLayer,
                             public Surface<VuScreenImpl, DirectFbRenderer>,
                             private Presenter {
 public:
  /// `layer` may be null: the picture then stays in memory.
  DirectFbScreen(std::unique_ptr<MemoryBudget::Reservation> reservation,
                 std::unique_ptr<DirectFbLayer> layer, DirectFbLayer::Screen screen,
                 std::shared_ptr<GlyphAtlasAllocator> atlases);

  /// Clears a new screen; false, after an error line, if there is no memory for it.
  bool Begin();

  void SwapBuffers() override { Swap(); }
  void Finish() override {
    ShowIfSingleBuffered();
    Surface::Finish();
  }
  void Flush() override { ShowIfSingleBuffered(); }

 private:
  void Present() override;
};

}  // namespace ZIRK::backends
