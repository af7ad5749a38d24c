// Complete, but has no device to draw on.

#define ENTRY_POINT extern "C" __attribute__((visibility("default")))

ENTRY_POINT void* CreateVuGraphics(bool) {
  return nullptr;
}

ENTRY_POINT void DestroyVuGraphics(void*) {}
