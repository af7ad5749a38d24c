#include <zirk/impl/vuscreenimpl.h>

namespace ZIRK {

// Defined here so that the class's table and type information have one home, the library.
VuScreenImpl::~VuScreenImpl() = default;

}  // namespace ZIRK
