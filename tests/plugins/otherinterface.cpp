// Built for a library of another interface: none of it may be called.

#include <cstdint>
#include <cstdlib>

#define EXPORTED extern "C" __attribute__((visibility("default")))

EXPORTED const uint32_t ZIRKBackendInterface;
const uint32_t ZIRKBackendInterface = 0;

EXPORTED void* CreateVuGraphics(bool) {
  abort();
}

EXPORTED void DestroyVuGraphics(void*) {}
