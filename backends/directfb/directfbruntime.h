#pragma once

#include <directfb.h>
#include <zirk/vuenums.h>

#include <memory>
#include <mutex>
#include <optional>

namespace ZIRK::backends {

/// DirectFB, started with the first context of the process; null, after an error line, if it cannot
/// be.
///
/// It then runs until the process ends. DirectFB 1.7 cannot be ended before: it does not wait for
/// a thread of its own that goes on with what has been freed.
IDirectFB* StartDirectFb();

/// Whether the process is about to end, and DirectFB's own static objects are gone or going. An
/// application's may be left, and their surfaces; these draw nothing any more. For who has the
/// turn.
bool HasDirectFbEnded();

/// Waits until all drawing is done.
void WaitForDirectFb();

/// Held by who makes DirectFB or its surfaces do anything. Nothing else is waited for meanwhile.
std::mutex& DirectFbTurn();

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
