#include <zirk/export.h>

#include "context/entrypoints.h"
#include "hybrid/hybridgraphics.h"

extern "C" ZIRK_API void* CreateVuGraphics(bool /*flag*/) {
  return ZIRK::backends::CreateGraphics<ZIRK::backends::HybridGraphics>();
}

extern "C" ZIRK_API void DestroyVuGraphics(void* graphics) {
  ZIRK::backends::DestroyGraphics(graphics);
}
