#pragma once

#include <directfb.h>
#include <zirk/vuenums.h>

#include <memory>
#include <mutex>
#include <optional>

namespace ZIRK::backends {

/// Starts DirectFB on the first call and returns it; null, after an error line, if it does not
/// start.
///
/// DirectFB then runs until the process ends. Version 1.7 cannot be ended earlier: it does not wait
/// for one of its own threads, which continues to use freed memory.
IDirectFB* StartDirectFb();

/// Whether the process is exiting, so that DirectFB's static objects may be destroyed already.
/// Surfaces that the application's static objects own may still exist; they no longer draw. Call it
/// with DirectFbMutex() locked.
bool HasDirectFbEnded();

/// Waits until DirectFB has completed all drawing.
void WaitForDirectFb();

/// Guards every use of DirectFB and its surfaces. No other lock of this plug-in is taken while it
/// is held.
std::mutex& DirectFbMutex();

/// The same format in DirectFB's terms.
DFBSurfacePixelFormat ToDirectFb(VuPixelFormat format);
/// The opposite; nullopt for a format that surfaces do not have.
std::optional<VuPixelFormat> FromDirectFb(DFBSurfacePixelFormat format);

/// Releases a surface, unless DirectFB has ended.
struct ReleaseSurface {
  void operator()(IDirectFBSurface* surface) const;
};
using DirectFbSurfacePtr = std::unique_ptr<IDirectFBSurface, ReleaseSurface>;

/// An off-screen surface of undefined pixels; null after an error line.
DirectFbSurfacePtr CreateDirectFbSurface(IDirectFB& directFb, int width, int height,
                                         VuPixelFormat format);

/// Whether `result` is DFB_OK; if not, logs an error that DirectFB cannot do `what`.
bool IsGood(DFBResult result, const char* what);

}  // namespace ZIRK::backends
