#include <zirk/export.h>

// Complete, but has no device to draw on.

extern "C" ZIRK_API void* CreateVuGraphics(bool) {
  return nullptr;
}

extern "C" ZIRK_API void DestroyVuGraphics(void*) {}
