#pragma once

#include <zirk/export.h>

namespace ZIRK::trace {

/// What the entry points of the plug-in in the file of this name make, but recorded. Null where the
/// real plug-in is not found or makes nothing.
ZIRK_API void* OpenTracedGraphics(const char* file, bool flag);
ZIRK_API void* OpenTracedCompositor(const char* file, bool flag);
ZIRK_API void CloseTracedGraphics(void* graphics);
ZIRK_API void CloseTracedCompositor(void* compositor);

}  // namespace ZIRK::trace
