#pragma once

#include <gtest/gtest.h>
#include <zirk/zirk.h>

#include <memory>
#include <string>

namespace ZIRK::scenes {

/// Every backend that draws. One line adds one, and all pictures are then drawn by it as well.
inline constexpr const char* kBackends[] = {
    "FB",
};

inline std::unique_ptr<VuGraphics> Open(const char* backend) {
  return std::unique_ptr<VuGraphics>(VuGraphics::Create(backend, false));
}

}  // namespace ZIRK::scenes
