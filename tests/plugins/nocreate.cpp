#include <zirk/export.h>

extern "C" ZIRK_API void DestroyVuGraphics(void*) {}
