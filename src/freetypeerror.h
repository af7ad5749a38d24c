#pragma once

#include <ft2build.h>
#include FT_FREETYPE_H

namespace ZIRK {

/// The text that a log line has for a FreeType error: the entry of FreeType's table of errors whose
/// index is the error's number. The table is dense only at its beginning, so most numbers get the
/// entry of another error. A number beyond the table stands for itself.
struct FreeTypeError {
  explicit FreeTypeError(FT_Error error);

  int code;
  const char* message = "unknown error";
};

}  // namespace ZIRK
