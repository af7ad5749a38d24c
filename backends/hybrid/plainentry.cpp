// The plug-in where there was no OpenGL at build time.

#include "context/entrypoints.h"
#include "fb/fbgraphics.h"

ZIRK_ENTRY_POINTS(VuGraphics, std::make_unique<ZIRK::backends::FbGraphics>(3))
