#include <zirk/vucolor.h>

namespace ZIRK {

const VuColor white{0xFFFFFFFF};

}  // namespace ZIRK
