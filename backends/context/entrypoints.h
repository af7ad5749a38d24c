#pragma once

#include <zirk/impl/log.h>
#include <zirk/impl/vugraphicsimpl.h>

#include <new>

namespace ZIRK::backends {

// What the entry points of a plug-in do. Exceptions do not cross them.

/// What `make` makes, as the library expects it; null if it makes none, or after an error line if
/// it throws.
template <class Interface, typename Make>
void* Create(Make make) {
  try {
    return static_cast<Interface*>(make());
  } catch (const std::bad_alloc&) {
    ZIRK_LOG_ERROR("the backend has no memory to start with");
  } catch (...) {
    ZIRK_LOG_ERROR("the backend cannot be started");
  }
  return nullptr;
}

template <class Graphics>
void* CreateGraphics() {
  return Create<VuGraphicsImpl>([] { return new Graphics; });
}

inline void DestroyGraphics(void* graphics) {
  delete static_cast<VuGraphicsImpl*>(graphics);
}

}  // namespace ZIRK::backends
