#include "context/entrypoints.h"
#include "stub/stubgraphics.h"

ZIRK_ENTRY_POINTS(VuGraphics, std::make_unique<ZIRK::backends::StubGraphics>())
