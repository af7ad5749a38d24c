#include "directfb/directfbpixels.h"

#include "directfb/directfbruntime.h"

namespace ZIRK::backends {

bool DirectFbPixels::Lock() {
  if (surface_ && HasDirectFbEnded()) return false;
  if (surface_ && locks_ == 0) {
    void* pixels = nullptr;
    int pitch = 0;
    const auto how = static_cast<DFBSurfaceLockFlags>(DSLF_READ | DSLF_WRITE);
    const DFBResult result = surface_->Lock(surface_, how, &pixels, &pitch);
    if (!IsGood(result, "lock a surface")) return false;
    if (pixels != buffer_.Row(0) || pitch != buffer_.Pitch()) buffer_.PlaceAt(pixels, pitch);
  }
  ++locks_;
  return true;
}

void DirectFbPixels::Unlock() {
  if (--locks_ == 0 && surface_ && !HasDirectFbEnded()) surface_->Unlock(surface_);
}

}  // namespace ZIRK::backends
