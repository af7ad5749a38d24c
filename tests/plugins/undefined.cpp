#include <zirk/export.h>

// Lives nowhere: even lazy binding needs data when the plug-in is opened.
extern int zirkTestNowhere;

extern "C" ZIRK_API void* CreateVuGraphics(bool) {
  return &zirkTestNowhere;
}

extern "C" ZIRK_API void DestroyVuGraphics(void*) {}
