// A plug-in by the name of a real one. The loader takes one file under several names for one
// library, so each name has a file of its own, made of this alone.

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
