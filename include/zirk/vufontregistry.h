#pragma once

#include <zirk/export.h>

namespace ZIRK {

class VuFont;
class VuFontRegistryImpl;

/// Finds fonts by the names of their families: font files are registered, and the face that suits
/// a request best is opened.
///
///     VuFontRegistry registry;
///     registry.Register("/usr/share/fonts/sans.ttf");
///     registry.Register("/usr/share/fonts/sansbold.ttf");
///     std::unique_ptr<VuFont> font(registry.GetFont("Sans", 24, true, false));
///
/// Any thread may call.
class ZIRK_API VuFontRegistry {
 public:
  /// Opens a face of a font file at a size in pixels; its result, which may be null, is the
  /// caller's of GetFont(). It must not call the registry that called it.
  using FontFactory = VuFont* (*)(const char* path, int faceIndex, int pixelSize);

  /// An empty registry, whose fonts are made by VuFont::CreateFontEx().
  VuFontRegistry();
  /// Makes fonts by `factory`; null stands for VuFont::CreateFontEx().
  explicit VuFontRegistry(FontFactory factory);
  ~VuFontRegistry();
  VuFontRegistry(const VuFontRegistry&) = delete;
  VuFontRegistry& operator=(const VuFontRegistry&) = delete;

  /// The same on the heap. The caller owns the registry; null, with an error line, where memory
  /// runs out.
  static VuFontRegistry* Create();
  static VuFontRegistry* Create(FontFactory factory);

  /// Adds the first face of a font file, under the family name that goes with the styles regular,
  /// bold and italic. False, with error lines, if that cannot be opened or memory runs out. A file
  /// that is registered twice is there twice. A null path raises std::logic_error.
  bool Register(const char* path);
  /// Takes out all that was registered by this very path, if any. Fonts that were made stay.
  void Unregister(const char* path);

  /// A font of the family, whose name is compared exactly: of the face that agrees in most of
  /// `bold` and `italic`, and of several such the one registered first. What it lacks of the two is
  /// left to VuFont::CreateFontEx(). The caller owns the font. Null, with an error line, for an
  /// unknown family and where memory runs out; a null family raises std::logic_error.
  VuFont* GetFont(const char* family, int pixelSize, bool bold, bool italic);

 private:
  VuFontRegistryImpl* impl;
};

}  // namespace ZIRK
