#include <zirk/impl/vufontimpl.h>
#include <zirk/vufont.h>
#include <zirk/vufontatlas.h>

#include <utility>

#include "nomemory.h"

namespace ZIRK {

namespace {

std::function<VuFont*(const char*, int, int, bool, bool)> fontOverride;

constexpr const char* kFont = "a font";

}  // namespace

VuFont* VuFont::CreateFont(const char* path, int faceIndex, int pixelSize) {
  return CreateFontEx(path, faceIndex, pixelSize, false, false);
}

VuFont* VuFont::CreateFontEx(const char* path, int faceIndex, int pixelSize, bool bold,
                             bool italic) {
  return UnlessMemoryRunsOut(kFont, [&] {
    return fontOverride ? fontOverride(path, faceIndex, pixelSize, bold, italic)
                        : new VuFont(path, faceIndex, pixelSize, bold, italic);
  });
}

VuFont* VuFont::CreateFontFromMemory(const unsigned char* data, unsigned int size, int faceIndex,
                                     int pixelSize) {
  return CreateFontFromMemoryEx(data, size, faceIndex, pixelSize, false, false);
}

VuFont* VuFont::CreateFontFromMemoryEx(const unsigned char* data, unsigned int size, int faceIndex,
                                       int pixelSize, bool bold, bool italic) {
  return UnlessMemoryRunsOut(
      kFont, [&] { return new VuFont(data, size, faceIndex, pixelSize, bold, italic); });
}

void VuFont::SetFontOverride(std::function<VuFont*(const char*, int, int, bool, bool)> fn) {
  fontOverride = std::move(fn);
}

VuFont::VuFont(const char* path, int faceIndex, int pixelSize)
    : VuFont(path, faceIndex, pixelSize, false, false) {}

VuFont::VuFont(const char* path, int faceIndex, int pixelSize, bool bold, bool italic)
    : VuFont(new VuFontAtlas(path, faceIndex, pixelSize, bold, italic)) {}

VuFont::VuFont(const unsigned char* data, unsigned int size, int faceIndex, int pixelSize)
    : VuFont(data, size, faceIndex, pixelSize, false, false) {}

VuFont::VuFont(const unsigned char* data, unsigned int size, int faceIndex, int pixelSize,
               bool bold, bool italic)
    : VuFont(new VuFontAtlas(data, size, faceIndex, pixelSize, bold, italic)) {}

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
