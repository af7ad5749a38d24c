#pragma once

#include <cstdlib>

namespace ZIRK::support {

/// Uses OpenGL without a display, by the renderer of Mesa that starts fastest, unless the
/// environment says otherwise.
inline void UseOffscreenOpenGl() {
  setenv("SDL_VIDEODRIVER", "offscreen", 0);
  setenv("GALLIUM_DRIVER", "softpipe", 0);
}

/// Uses DirectFB without a display, unless the environment says otherwise.
inline void UseOffscreenDirectFb() {
  setenv("DFBARGS", "system=dummy", 0);
}

}  // namespace ZIRK::support
