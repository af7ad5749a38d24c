#include <zirk/export.h>

#include "context/entrypoints.h"
#include "opengles2/glcompositor.h"
#include "opengles2/glgraphics.h"

using namespace ZIRK;

extern "C" ZIRK_API void* CreateVuGraphics(bool /*flag*/) {
  return backends::Create<VuGraphicsImpl>([] {
    auto device = backends::GlDevice::Acquire();
    return device ? new backends::GlGraphics(std::move(device)) : nullptr;
  });
}

extern "C" ZIRK_API void DestroyVuGraphics(void* graphics) {
  backends::DestroyGraphics(graphics);
}

extern "C" ZIRK_API void* CreateVuCompositor(bool /*flag*/) {
  return backends::Create<VuCompositorImpl>([] { return new backends::GlCompositor; });
}

extern "C" ZIRK_API void DestroyVuCompositor(void* compositor) {
  delete static_cast<VuCompositorImpl*>(compositor);
}
