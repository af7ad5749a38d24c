// What the library looks for in a plug-in: two functions with C linkage. Exceptions do not cross
// them, and the pointer is that of the interface.

#include <new>

#include "graphics.h"

extern "C" ZIRK_API void* CreateVuGraphics(bool /*flag*/) {
  ZIRK::VuGraphicsImpl* const graphics = new (std::nothrow) ZIRK::plain::Graphics;
  return graphics;
}

extern "C" ZIRK_API void DestroyVuGraphics(void* graphics) {
  delete static_cast<ZIRK::VuGraphicsImpl*>(graphics);
}
