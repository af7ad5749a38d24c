#pragma once

#include <directfb.h>
#include <zirk/vuenums.h>

#include <memory>
#include <optional>

namespace ZIRK::backends {

/// The format's name in DirectFB.
DFBSurfacePixelFormat ToDirectFb(VuPixelFormat format);
/// The way back; nothing for what is no format of ours.
std::optional<VuPixelFormat> FromDirectFb(DFBSurfacePixelFormat format);

struct ReleaseSurface {
  void operator()(IDirectFBSurface* surface) const;
};
using DirectFbSurfacePtr = std::unique_ptr<IDirectFBSurface, ReleaseSurface>;

/// An off-screen surface of undefined pixels; null after an error line.
DirectFbSurfacePtr CreateDirectFbSurface(IDirectFB& directFb, int width, int height,
                                         VuPixelFormat format);

/// Writes an error line if `result` is one, and says whether it is none.
bool IsGood(DFBResult result, const char* what);

}  // namespace ZIRK::backends
