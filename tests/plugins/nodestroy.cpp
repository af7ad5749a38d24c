#include <zirk/export.h>

extern "C" ZIRK_API void* CreateVuGraphics(bool) {
  return nullptr;
}
