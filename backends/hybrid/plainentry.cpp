// The plug-in where there was no OpenGL at build time.

#include <zirk/backendtable.h>

#include "context/entrypoints.h"
#include "fb/fbgraphics.h"

ZIRK_ENTRY_POINTS(VuGraphics,
                  std::make_unique<ZIRK::backends::FbGraphics>(ZIRK::BackendType::Hybrid))
