// A plug-in that draws as the installed stub does.

#include <zirk/backend.h>

extern "C" ZIRK_API void* CreateVuGraphics(bool flag) {
  return ZIRK::GraphicsImplLoader::GetInstance()->CreateImplInstance("Stub", flag);
}

extern "C" ZIRK_API void DestroyVuGraphics(void* graphics) {
  delete static_cast<ZIRK::VuGraphicsImpl*>(graphics);
}
