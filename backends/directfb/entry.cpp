#include "context/entrypoints.h"
#include "directfb/directfbgraphics.h"

ZIRK_ENTRY_POINTS(VuGraphics, ZIRK::backends::DirectFbGraphics::Start())
