// Part of every plug-in that zirk_add_backend() builds: which library it fits.

#include <zirk/backendinterface.h>

const uint32_t ZIRKBackendInterface = ZIRK::kBackendInterface;
