#include "context/entrypoints.h"
#include "fb/fbgraphics.h"

ZIRK_ENTRY_POINTS(VuGraphics, std::make_unique<ZIRK::backends::FbGraphics>())
