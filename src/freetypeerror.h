#pragma once

#include <ft2build.h>
#include FT_FREETYPE_H

namespace ZIRK {

/// What a log line says of a FreeType error: the entry of FreeType's table of errors that has the
/// error's number for its index. The table is dense only at its beginning, so that for most
/// numbers this is another error's entry. For what lies beyond the table: the number itself.
struct FreeTypeError {
  explicit FreeTypeError(FT_Error error);

  int code;
  const char* message;
};

}  // namespace ZIRK
