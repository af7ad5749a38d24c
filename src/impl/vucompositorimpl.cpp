#include <zirk/impl/vucompositorimpl.h>

namespace ZIRK {

// Defined here so that the class's table and type information have one home, the library.
VuCompositorImpl::~VuCompositorImpl() = default;

}  // namespace ZIRK
