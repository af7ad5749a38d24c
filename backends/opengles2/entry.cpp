#include <zirk/export.h>
#include <zirk/impl/log.h>

#include <new>

#include "common/entrypoints.h"
#include "opengles2/glcompositor.h"
#include "opengles2/glgraphics.h"

namespace {

using namespace ZIRK;

/// What `make` makes, as the library expects it; null if it makes none, or after an error line if
/// it throws. No exception crosses an entry point.
template <typename Interface, typename Make>
void* Create(Make make) {
  try {
    return static_cast<Interface*>(make());
  } catch (const std::bad_alloc&) {
    ZIRK_LOG_ERROR("OpenGL ES 2: no memory to start with");
  } catch (...) {
    ZIRK_LOG_ERROR("OpenGL ES 2: cannot be started");
  }
  return nullptr;
}

}  // namespace

extern "C" ZIRK_API void* CreateVuGraphics(bool /*flag*/) {
  return Create<VuGraphicsImpl>([] {
    auto device = backends::GlDevice::Acquire();
    return device ? new backends::GlGraphics(std::move(device)) : nullptr;
  });
}

extern "C" ZIRK_API void DestroyVuGraphics(void* graphics) {
  backends::DestroyGraphics(graphics);
}

extern "C" ZIRK_API void* CreateVuCompositor(bool /*flag*/) {
  return Create<VuCompositorImpl>([] { return new backends::GlCompositor; });
}

extern "C" ZIRK_API void DestroyVuCompositor(void* compositor) {
  delete static_cast<VuCompositorImpl*>(compositor);
}
