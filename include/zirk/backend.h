#pragma once

/// @file
/// Everything that a plug-in needs: the application's headers, the abstract interfaces that it
/// implements, the texture atlas and its packer.
///
/// A graphics plug-in exports two functions with C linkage:
///
///     extern "C" ZIRK_API void* CreateVuGraphics(bool flag);
///     extern "C" ZIRK_API void DestroyVuGraphics(void* graphics);
///
/// A compositor plug-in exports "CreateVuCompositor" and "DestroyVuCompositor" of the same shapes.
/// Both may export the number of the interface that they were built for, which `zirk_add_backend()`
/// adds: see <zirk/backendinterface.h>.

#include <zirk/backendinterface.h>
#include <zirk/impl/log.h>
#include <zirk/impl/vubitmapimpl.h>
#include <zirk/impl/vucompositorimpl.h>
#include <zirk/impl/vufontimpl.h>
#include <zirk/impl/vufontregistryimpl.h>
#include <zirk/impl/vugraphicsimpl.h>
#include <zirk/impl/vuscreenimpl.h>
#include <zirk/maxrectsbinpack.h>
#include <zirk/vutextureatlasimpl.h>
#include <zirk/zirk.h>
