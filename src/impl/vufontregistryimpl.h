#pragma once

#include <zirk/export.h>

namespace ZIRK {

class VuFont;

/// A registry of fonts, as a VuFontRegistry holds it. VuFontRegistry documents the operations.
/// Their order is fixed.
///
/// **Threads**: several may call at once.
class ZIRK_API VuFontRegistryImpl {
 public:
  VuFontRegistryImpl() = default;
  virtual ~VuFontRegistryImpl();  // slots 1 and 2
  VuFontRegistryImpl(const VuFontRegistryImpl&) = delete;
  VuFontRegistryImpl& operator=(const VuFontRegistryImpl&) = delete;

  /// Slot 3: adds the first face of a font file. False if it cannot be opened.
  virtual bool Register(const char* path) = 0;
  /// Slot 4: removes every record of exactly this path.
  virtual void Unregister(const char* path) = 0;
  /// Slot 5: creates a font of the family, which the caller owns; null if the family is unknown.
  [[nodiscard]] virtual VuFont* GetFont(const char* family, int pixelSize, bool bold,
                                        bool italic) = 0;
};

}  // namespace ZIRK
