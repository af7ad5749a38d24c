// A plug-in with the name of a real one. The loader treats one file with several names as one
// library, so each plug-in is a separate file, built from this source only.

#include "entry.h"

extern "C" ZIRK_API void* CreateVuGraphics(bool flag) {
  return ZIRK::trace::OpenTracedGraphics(ZIRK_TRACED_FILE, flag);
}

extern "C" ZIRK_API void DestroyVuGraphics(void* graphics) {
  ZIRK::trace::CloseTracedGraphics(graphics);
}

extern "C" ZIRK_API void* CreateVuCompositor(bool flag) {
  return ZIRK::trace::OpenTracedCompositor(ZIRK_TRACED_FILE, flag);
}

extern "C" ZIRK_API void DestroyVuCompositor(void* compositor) {
  ZIRK::trace::CloseTracedCompositor(compositor);
}
