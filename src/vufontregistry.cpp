#include <zirk/ftfontregistry.h>
#include <zirk/vufontregistry.h>

#include "nomemory.h"

namespace ZIRK {

VuFontRegistry* VuFontRegistry::Create() {
  return Create(nullptr);
}

VuFontRegistry* VuFontRegistry::Create(FontFactory factory) {
  return UnlessMemoryRunsOut("a font registry", [&] { return new VuFontRegistry(factory); });
}

VuFontRegistry::VuFontRegistry() : VuFontRegistry(nullptr) {}

VuFontRegistry::VuFontRegistry(FontFactory factory) : impl(new FTFontRegistry(factory)) {}

VuFontRegistry::~VuFontRegistry() {
  delete impl;
}

bool VuFontRegistry::Register(const char* path) {
  return UnlessMemoryRunsOut("registering a font", [&] { return impl->Register(path); });
}

void VuFontRegistry::Unregister(const char* path) {
  impl->Unregister(path);
}

VuFont* VuFontRegistry::GetFont(const char* family, int pixelSize, bool bold, bool italic) {
  return UnlessMemoryRunsOut("finding a font",
                             [&] { return impl->GetFont(family, pixelSize, bold, italic); });
}

}  // namespace ZIRK
