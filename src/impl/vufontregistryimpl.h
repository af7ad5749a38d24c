#pragma once

#include <zirk/export.h>

namespace ZIRK {

class VuFont;

/// A registry of fonts, as a VuFontRegistry holds it. The order of the operations is fixed.
class ZIRK_API VuFontRegistryImpl {
 public:
  VuFontRegistryImpl() = default;
  virtual ~VuFontRegistryImpl();  // slots 1 and 2
  VuFontRegistryImpl(const VuFontRegistryImpl&) = delete;
  VuFontRegistryImpl& operator=(const VuFontRegistryImpl&) = delete;

  /// Slots 3 to 5, which VuFontRegistry describes.
  virtual bool Register(const char* path) = 0;
  virtual void Unregister(const char* path) = 0;
  virtual VuFont* GetFont(const char* family, int pixelSize, bool bold, bool italic) = 0;
};

}  // namespace ZIRK
