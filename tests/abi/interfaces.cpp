// Types that applications and plug-ins exchange without the library looking at them. Recorded with
// the library's own interface.

#include <zirk/backend.h>

namespace ZIRK::abi {

ZIRK_API void Cross(const LayerDescription&) {}

}  // namespace ZIRK::abi
