#include <zirk/ftfontregistry.h>
#include <zirk/vufontregistry.h>

namespace ZIRK {

VuFontRegistry* VuFontRegistry::Create() {
  return new VuFontRegistry();
}

VuFontRegistry* VuFontRegistry::Create(FontFactory factory) {
  return new VuFontRegistry(factory);
}

VuFontRegistry::VuFontRegistry() : VuFontRegistry(nullptr) {}

VuFontRegistry::VuFontRegistry(FontFactory factory) : impl(new FTFontRegistry(factory)) {}

VuFontRegistry::~VuFontRegistry() {
  delete impl;
}

bool VuFontRegistry::Register(const char* path) {
  return impl->Register(path);
}

void VuFontRegistry::Unregister(const char* path) {
  impl->Unregister(path);
}

VuFont* VuFontRegistry::GetFont(const char* family, int pixelSize, bool bold, bool italic) {
  return impl->GetFont(family, pixelSize, bold, italic);
}

}  // namespace ZIRK
