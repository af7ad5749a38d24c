#pragma once

#include <zirk/export.h>

#include <cstdint>

/// @file
/// The number of the interface between the library and its plug-ins.

namespace ZIRK {

/// Goes up with each change after which older plug-ins do not fit the library any more.
constexpr uint32_t kBackendInterface = 1;

}  // namespace ZIRK

/// The number that a plug-in was built for. The library refuses a plug-in of another number, and
/// takes one that does not export this to be of its own. Defined by `zirk_add_backend()` in each
/// plug-in, and nowhere in the library.
extern "C" ZIRK_API const uint32_t ZIRKBackendInterface;
