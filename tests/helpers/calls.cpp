#include "helpers/calls.h"

#include <dlfcn.h>
#include <unistd.h>
#include <zirk/export.h>

#include <ft2build.h>
#include FT_FREETYPE_H

namespace ZIRK::helpers {

Calls calls;

namespace {

/// The function that `own` stands before.
template <typename F>
F* Next(const char* name, F* /*own*/) {
  return reinterpret_cast<F*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

}  // namespace ZIRK::helpers

using ZIRK::helpers::calls;
using ZIRK::helpers::Next;

extern "C" {

ZIRK_API int access(const char* path, int mode) noexcept {
  const std::string asked = path;
  if (asked.rfind("/lib/", 0) == 0 || asked.rfind("/usr/lib/", 0) == 0)
    calls.accessed.push_back(asked);
  return Next("access", &access)(path, mode);
}

ZIRK_API FT_Error FT_New_Face(FT_Library library, const char* path, FT_Long index, FT_Face* face) {
  calls.faces.emplace_back(path);
  return Next("FT_New_Face", &FT_New_Face)(library, path, index, face);
}

ZIRK_API FT_Error FT_Load_Glyph(FT_Face face, FT_UInt index, FT_Int32 flags) {
  if (calls.glyphsToRefuse > 0) return --calls.glyphsToRefuse, FT_Err_Out_Of_Memory;
  return Next("FT_Load_Glyph", &FT_Load_Glyph)(face, index, flags);
}
}
