#include "openface.h"

#include <sys/stat.h>

namespace ZIRK {

FT_Error OpenFace(FT_Library library, const char* path, FT_Long index, FT_Open_Args args,
                  FT_Face* face) {
  struct stat file = {};
  if (stat(path, &file) == 0 && S_ISFIFO(file.st_mode)) return FT_Err_Cannot_Open_Resource;
  args.flags |= FT_OPEN_PATHNAME;
  args.pathname = const_cast<char*>(path);
  return FT_Open_Face(library, &args, index, face);
}

}  // namespace ZIRK
