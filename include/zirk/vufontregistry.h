#pragma once

#include <zirk/export.h>

namespace ZIRK {

class VuFont;
class VuFontRegistryImpl;

/// Finds fonts by family name: an application registers font files, and the registry opens the face
/// that matches a request best.
///
///     VuFontRegistry registry;
///     registry.Register("/usr/share/fonts/sans.ttf");
///     registry.Register("/usr/share/fonts/sansbold.ttf");
///     std::unique_ptr<VuFont> font(registry.GetFont("Sans", 24, true, false));
///
/// **Threads**: any thread may call every member.
class ZIRK_API VuFontRegistry {
 public:
  /// Opens a face of a font file at a size in pixels. GetFont() passes its result, which may be
  /// null, to the caller, who owns it. The function must not call the registry that called it.
  using FontFactory = VuFont* (*)(const char* path, int faceIndex, int pixelSize);

  /// An empty registry that makes fonts by VuFont::CreateFontEx(). Raises std::bad_alloc if memory
  /// runs out.
  VuFontRegistry();
  /// The same with fonts made by `factory`; null stands for VuFont::CreateFontEx().
  explicit VuFontRegistry(FontFactory factory);
  ~VuFontRegistry();
  VuFontRegistry(const VuFontRegistry&) = delete;
  VuFontRegistry& operator=(const VuFontRegistry&) = delete;

  /// Creates an empty registry, which the caller owns. Returns null, with an error line, if memory
  /// runs out.
  [[nodiscard]] static VuFontRegistry* Create();
  /// The same with fonts made by `factory`; null stands for VuFont::CreateFontEx().
  [[nodiscard]] static VuFontRegistry* Create(FontFactory factory);

  /// Adds the first face of a font file under its family name. Faces of one family have the styles
  /// regular, bold, italic and bold italic; a light face has a family of its own. Returns false,
  /// with error lines, if the file cannot be opened or memory runs out. A file that is registered
  /// twice is listed twice. A null path raises std::logic_error.
  bool Register(const char* path);
  /// Removes every record of exactly this path, if there is one. Fonts made from it stay valid.
  void Unregister(const char* path);

  /// Creates a font of the family, whose name is compared exactly, at a size in pixels. The caller
  /// owns it. The face that matches more of `bold` and `italic` is opened; of equal ones, the one
  /// registered first. VuFont::CreateFontEx() gets both flags, and emboldens a face that is not
  /// bold; a factory gets neither. Returns null, with an error line, for an unknown family and if
  /// memory runs out. A null family raises std::logic_error.
  [[nodiscard]] VuFont* GetFont(const char* family, int pixelSize, bool bold, bool italic);

 private:
  VuFontRegistryImpl* impl;
};

}  // namespace ZIRK
