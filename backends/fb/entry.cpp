#include <zirk/export.h>

#include "context/entrypoints.h"
#include "fb/fbgraphics.h"

extern "C" ZIRK_API void* CreateVuGraphics(bool /*flag*/) {
  return ZIRK::backends::CreateGraphics<ZIRK::backends::FbGraphics>();
}

extern "C" ZIRK_API void DestroyVuGraphics(void* graphics) {
  ZIRK::backends::DestroyGraphics(graphics);
}
