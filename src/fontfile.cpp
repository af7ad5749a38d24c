#include "fontfile.h"

#include <sys/stat.h>

namespace ZIRK {

bool IsPipe(const char* path) {
  struct stat file = {};
  return stat(path, &file) == 0 && S_ISFIFO(file.st_mode);
}

}  // namespace ZIRK
