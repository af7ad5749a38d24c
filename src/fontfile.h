#pragma once

namespace ZIRK {

/// Whether `path` is a pipe, which holds no font: opening one would wait until something writes to
/// it.
bool IsPipe(const char* path);

/// A face's family or style name, or an empty string where FreeType has null.
inline const char* NameOrEmpty(const char* name) {
  return name ? name : "";
}

}  // namespace ZIRK
