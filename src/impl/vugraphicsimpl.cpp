#include <zirk/impl/vugraphicsimpl.h>

#include "texturelimit.h"

namespace ZIRK {

// Defined here so that the class's table and type information have one home, the library.
VuGraphicsImpl::~VuGraphicsImpl() = default;

void VuGraphicsImpl::SetTerminateOnDestruct(bool) {}

int VuGraphicsImpl::GetMaxTextureSize() const {
  return kMaxTextureSide;
}

}  // namespace ZIRK
