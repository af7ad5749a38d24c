#pragma once

#include <zirk/export.h>

#include <cstdint>

/// @file
/// The number of the interface between the library and its plug-ins.

namespace ZIRK {

/// The interface's number. It increases with each change that older plug-ins are incompatible with.
constexpr uint32_t kBackendInterface = 1;

}  // namespace ZIRK

/// The number that a plug-in was built for. `zirk_add_backend()` defines it in each plug-in; the
/// library does not define it. The library rejects a plug-in with another number, and accepts one
/// that does not export this.
extern "C" ZIRK_API const uint32_t ZIRKBackendInterface;
