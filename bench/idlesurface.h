#pragma once

#include <zirk/impl/vubitmapimpl.h>

namespace ZIRK::bench {

/// A surface that does nothing. Made elsewhere than it is called, so that the compiler cannot
/// guess what a virtual call arrives at.
VuBitmapImpl* MakeIdleSurface();

}  // namespace ZIRK::bench
