#include <zirk/impl/vubitmapimpl.h>

namespace ZIRK {

// Defined here so that the class's table and type information have one home, the library.
VuBitmapImpl::~VuBitmapImpl() = default;

void VuBitmapImpl::Clear() {}

bool VuBitmapImpl::IsTextureBacked() const {
  return true;
}

}  // namespace ZIRK
