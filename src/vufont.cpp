#include <zirk/impl/vufontimpl.h>
#include <zirk/vufont.h>

namespace ZIRK {

VuFont::VuFont(VuFontImpl* impl_) : impl(impl_) {}

VuFont::~VuFont() {
  delete impl;
}

void VuFont::GetFontMetrics(int& height, int& ascender, int& descender, int& maxAdvance) const {
  impl->GetFontMetrics(height, ascender, descender, maxAdvance);
}

int VuFont::GetOneLineWidth(const char* text) const {
  return impl->GetOneLineWidth(text);
}

int VuFont::GetOneLineHeight() const {
  return impl->GetOneLineHeight();
}

int VuFont::GetAscent() const {
  return impl->GetAscent();
}

int VuFont::GetDescent() const {
  return impl->GetDescent();
}

int VuFont::GetMaxAdvance() const {
  return impl->GetMaxAdvance();
}

void VuFont::GetUnderlineMetrics(int& position, int& thickness) const {
  impl->GetUnderlineMetrics(position, thickness);
}

void VuFont::SetOutlineType(OutlineType type) {
  impl->SetOutlineType(type);
}

void VuFont::SetOutlineThickness(float thickness) {
  impl->SetOutlineThickness(thickness);
}

void VuFont::SetFallbackGlyph(unsigned int charcode) {
  impl->SetFallbackGlyph(charcode);
}

void VuFont::SetFallbackFont(const VuFont* font) {
  impl->SetFallbackFont(font ? font->impl : nullptr);
}

}  // namespace ZIRK
