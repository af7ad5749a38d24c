#include <zirk/impl/vufontregistryimpl.h>

namespace ZIRK {

// Defined here so that the class's table and type information have one home, the library.
VuFontRegistryImpl::~VuFontRegistryImpl() = default;

}  // namespace ZIRK
