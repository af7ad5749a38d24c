#pragma once

/// @file
/// Font files of the machine by family and style.

#include <zirk/export.h>

#include <optional>
#include <string>
#include <string_view>

namespace ZIRK::kit {

/// A face of a font file, as VuFont::CreateFont() takes it.
struct FontFile {
  std::string path;   ///< Of the file.
  int faceIndex = 0;  ///< Of the face in it.
};

/// The face that fontconfig finds best for a family and a style among the fonts that the machine
/// has installed. As fontconfig has it, that is a face of another family where none has this name;
/// "sans-serif", "serif" and "monospace" are the machine's own choice.
///
///     if (const auto file = kit::FindFont("sans-serif"))
///       font.reset(VuFont::CreateFont(file->path.c_str(), file->faceIndex, 24));
///
/// Nothing, with one error line, where there is no font, memory runs out, fontconfig is not on the
/// machine, or was not there when the kit was built. Its library is opened at the first call, which
/// may take long, and stays open. An application that brings its own fonts matches them by
/// VuFontRegistry. Any thread may call.
ZIRK_API std::optional<FontFile> FindFont(std::string_view family, bool bold = false,
                                          bool italic = false);

}  // namespace ZIRK::kit
