#include <zirk/export.h>

#include "context/entrypoints.h"
#include "directfb/directfbgraphics.h"
#include "directfb/directfbruntime.h"

using namespace ZIRK;

extern "C" ZIRK_API void* CreateVuGraphics(bool /*flag*/) {
  return backends::Create<VuGraphicsImpl>([] {
    IDirectFB* const directFb = backends::StartDirectFb();
    return directFb ? new backends::DirectFbGraphics(*directFb) : nullptr;
  });
}

extern "C" ZIRK_API void DestroyVuGraphics(void* graphics) {
  backends::DestroyGraphics(graphics);
}
