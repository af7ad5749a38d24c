#pragma once

#include <zirk/graphicsimplloader.h>

#include <string>

namespace ZIRK::support {

/// The file of the test plug-in `name`.
inline std::string Plugin(const char* name) {
  return std::string(ZIRK_TEST_PLUGINS "/libZIRKImplTest") + name + ".so";
}

/// Lets the announcing plug-in stand in for the backend `name`.
inline void InstallAnnouncing(const char* name) {
  GraphicsImplLoader::GetInstance()->SetupGfxImpl(name, Plugin("Announcing"), {0, 0}, false);
}

/// And for the compositor's.
inline void InstallAnnouncingCompositor() {
  GraphicsImplLoader::GetInstance()->SetupGfxImpl("GLCompositor", Plugin("Announcing"),
                                                  "CreateVuCompositor", "DestroyVuCompositor",
                                                  {0, 0}, false);
}

}  // namespace ZIRK::support
