#pragma once

#include <zirk/impl/vugraphicsimpl.h>

#include <new>

namespace ZIRK::backends {

// What the entry points of a plug-in do. Exceptions do not cross them.

/// A new context as the library expects it; null if memory runs out.
template <class Graphics>
void* CreateGraphics() {
  try {
    return static_cast<VuGraphicsImpl*>(new Graphics);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

inline void DestroyGraphics(void* graphics) {
  delete static_cast<VuGraphicsImpl*>(graphics);
}

}  // namespace ZIRK::backends
