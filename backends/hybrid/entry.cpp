#include "context/entrypoints.h"
#include "hybrid/hybridgraphics.h"

ZIRK_ENTRY_POINTS(VuGraphics, std::make_unique<ZIRK::backends::HybridGraphics>())
