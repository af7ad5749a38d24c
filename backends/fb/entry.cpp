#include <zirk/export.h>

#include <new>

#include "fb/fbgraphics.h"

extern "C" ZIRK_API void* CreateVuGraphics(bool /*flag*/) {
  try {
    return static_cast<ZIRK::VuGraphicsImpl*>(new ZIRK::backends::FbGraphics);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

extern "C" ZIRK_API void DestroyVuGraphics(void* graphics) {
  delete static_cast<ZIRK::VuGraphicsImpl*>(graphics);
}
