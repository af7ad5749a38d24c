#pragma once

#include <zirk/graphicsimplloader.h>

#include <string>

namespace ZIRK::helpers {

inline std::string Plugin(const std::string& name) {
  return ZIRK_TEST_PLUGINS "/libZIRKImplTest" + name + ".so";
}

/// Lets the test plug-in `plugin` stand in for the backend `name`; what is created is a `product`.
inline void Install(const std::string& name, const std::string& plugin = "Independent",
                    const std::string& product = "VuGraphics") {
  GraphicsImplLoader::GetInstance()->SetupGfxImpl(name, Plugin(plugin), "Create" + product,
                                                  "Destroy" + product, {1, 2}, false);
}

}  // namespace ZIRK::helpers
