#pragma once

#include <directfb.h>
#include <zirk/vuscreendescription.h>

#include <memory>
#include <optional>
#include <string>

#include "directfb/directfbruntime.h"
#include "images/image.h"

namespace ZIRK::backends {

/// A display layer, which is this screen's alone. The configuration that it had comes back in the
/// destructor; the surface has been let go of by then.
class DirectFbLayer {
 public:
  /// What has been granted.
  struct Screen {
    DirectFbSurfacePtr surface;
    int width, height;
    VuPixelFormat format;
    bool twoBuffers;
  };

  /// The size that the layer has; nothing if there is no such layer.
  static std::optional<ImageSize> SizeOf(IDirectFB& directFb, int index);

  /// The layer of the screen's index, in its size, format and buffers, or in what comes nearest:
  /// the layer's own size or format, a single buffer. Null, with the reason in `error`, if there is
  /// no such layer, if another screen has it, or if it has no format of ours.
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
  const unsigned bit_;  ///< Among those that are in use.
};

}  // namespace ZIRK::backends
