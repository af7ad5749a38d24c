#pragma once

#include <zirk/impl/vugraphicsimpl.h>

#include <new>

namespace ZIRK::backends {

// What the entry points of a plug-in do. Exceptions do not cross them.

/// The context that `make` makes, as the library expects it; null if it makes none, or if memory
/// runs out.
template <typename Make>
void* CreateGraphics(Make make) {
  try {
    return static_cast<VuGraphicsImpl*>(make());
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

template <class Graphics>
void* CreateGraphics() {
  return CreateGraphics([] { return new Graphics; });
}

inline void DestroyGraphics(void* graphics) {
  delete static_cast<VuGraphicsImpl*>(graphics);
}

}  // namespace ZIRK::backends
