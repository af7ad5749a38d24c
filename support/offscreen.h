#pragma once

#include <cstdlib>

namespace ZIRK::support {

/// OpenGL without a display, by that one of Mesa's renderers that starts the fastest; unless the
/// environment says otherwise.
inline void UseOffscreenOpenGl() {
  setenv("SDL_VIDEODRIVER", "offscreen", 0);
  setenv("GALLIUM_DRIVER", "softpipe", 0);
}

/// DirectFB without a display, unless the environment says otherwise.
inline void UseOffscreenDirectFb() {
  setenv("DFBARGS", "system=dummy", 0);
}

}  // namespace ZIRK::support
