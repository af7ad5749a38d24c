#pragma once

#include <zirk/export.h>

namespace ZIRK::trace {

/// Call the entry points of the real plug-in with this file name and return objects that record.
/// Return null if the real plug-in is not found or its entry point returns null.
ZIRK_API void* OpenTracedGraphics(const char* file, bool flag);
ZIRK_API void* OpenTracedCompositor(const char* file, bool flag);
ZIRK_API void CloseTracedGraphics(void* graphics);
ZIRK_API void CloseTracedCompositor(void* compositor);

}  // namespace ZIRK::trace
