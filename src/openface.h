#pragma once

#include <ft2build.h>
#include FT_FREETYPE_H

namespace ZIRK {

/// Opens a face of a file, with FreeType's `args` beyond the path. A pipe is none: opening it would
/// wait for somebody to write to it.
FT_Error OpenFace(FT_Library library, const char* path, FT_Long index, FT_Open_Args args,
                  FT_Face* face);

/// A face's family or style; it need not have any.
inline const char* NameOrEmpty(const char* name) {
  return name ? name : "";
}

}  // namespace ZIRK
