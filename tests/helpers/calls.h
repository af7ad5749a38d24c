#pragma once

#include <string>
#include <vector>

namespace ZIRK::helpers {

/// What the library asks of the C library and of FreeType: the functions below stand before theirs,
/// note the call, and forward it.
struct Calls {
  std::vector<std::string> accessed;  ///< Paths below /lib and /usr/lib given to access().
  std::vector<std::string> faces;     ///< Paths given to FT_New_Face().
  int glyphsToRefuse = 0;             ///< So many FT_Load_Glyph() fail for want of memory.
};
extern Calls calls;

}  // namespace ZIRK::helpers
