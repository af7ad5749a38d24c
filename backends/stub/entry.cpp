#include <zirk/export.h>

#include "context/entrypoints.h"
#include "stub/stubgraphics.h"

extern "C" ZIRK_API void* CreateVuGraphics(bool /*flag*/) {
  return ZIRK::backends::CreateGraphics<ZIRK::backends::StubGraphics>();
}

extern "C" ZIRK_API void DestroyVuGraphics(void* graphics) {
  ZIRK::backends::DestroyGraphics(graphics);
}
