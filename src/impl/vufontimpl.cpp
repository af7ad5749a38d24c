#include <zirk/impl/vufontimpl.h>

#include "floattoint.h"

namespace ZIRK {

// Defined here so that the class's table and type information have one home, the library.
VuFontImpl::~VuFontImpl() = default;

void VuFontImpl::SetOutlineType(VuFont::OutlineType type) {
  outlineType_ = type;
}

void VuFontImpl::SetOutlineThickness(float thickness) {
  outlineThickness_ = TruncateToInt32(thickness * 64.0f);
}

void VuFontImpl::SetFallbackGlyph(unsigned int charcode) {
  fallbackGlyph_ = charcode;
}

}  // namespace ZIRK
