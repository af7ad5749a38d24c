#pragma once

/// @file
/// Finds installed font files by family and style.

#include <zirk/export.h>

#include <optional>
#include <string>
#include <string_view>

namespace ZIRK::kit {

/// A face of a font file: the first two arguments of VuFont::CreateFont().
struct FontFile {
  std::string path;   ///< Path of the file.
  int faceIndex = 0;  ///< Number of the face in the file, from 0.
};

/// Asks fontconfig for the installed face that best matches a family and a style. If no installed
/// font has that family, fontconfig returns a face of another one. The families "sans-serif",
/// "serif" and "monospace" give the machine's default fonts.
///
///     if (const auto file = kit::FindFont("sans-serif"))
///       font.reset(VuFont::CreateFont(file->path.c_str(), file->faceIndex, 24));
///
/// Returns nothing, with one error line, if there is no font, if memory runs out, if fontconfig is
/// not installed, or if the kit was built without it. The first call opens fontconfig's library,
/// which may take long; the library stays open. An application that brings its own fonts uses
/// VuFontRegistry instead. Any thread may call.
ZIRK_API std::optional<FontFile> FindFont(std::string_view family, bool bold = false,
                                          bool italic = false);

}  // namespace ZIRK::kit
