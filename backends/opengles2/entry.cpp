#include "context/entrypoints.h"
#include "opengles2/glcompositor.h"
#include "opengles2/glgraphics.h"

ZIRK_ENTRY_POINTS(VuGraphics, ZIRK::backends::GlGraphics::Start())
ZIRK_ENTRY_POINTS(VuCompositor, std::make_unique<ZIRK::backends::GlCompositor>())
