// The plug-in where there was no OpenGL at build time.

#include <zirk/export.h>

#include "context/entrypoints.h"
#include "fb/fbgraphics.h"

using namespace ZIRK;

extern "C" ZIRK_API void* CreateVuGraphics(bool /*flag*/) {
  return backends::Create<VuGraphicsImpl>([] { return new backends::FbGraphics(3); });
}

extern "C" ZIRK_API void DestroyVuGraphics(void* graphics) {
  backends::DestroyGraphics(graphics);
}
