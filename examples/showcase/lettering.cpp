#include "showcase/lettering.h"

namespace ZIRK::showcase {

namespace {

std::unique_ptr<VuFont> Open(const std::string& folder, const char* file, int size) {
  std::unique_ptr<VuFont> font(VuFont::CreateFont((folder + file).c_str(), 0, size));
  const VuFont fallback((folder + "cjk.ttf").c_str(), 0, size);
  font->SetFallbackFont(&fallback);
  return font;
}

void Write(VuBitmap& target, const VuFont& font, const char* text, VuPoint at, VuColor color,
           Align align) {
  const int width = font.GetOneLineWidth(text);
  if (align == Align::Centre) at.x -= width / 2;
  if (align == Align::Right) at.x -= width;
  target.DrawText(font, text, at, color);
}

}  // namespace

Lettering::Lettering(const std::string& folder)
    : label_(Open(folder, "sans.ttf", 13)),
      heading_(Open(folder, "sansbold.ttf", 13)),
      caption_(Open(folder, "sans.ttf", 19)),
      title_(Open(folder, "sansbold.ttf", 50)) {}

void Lettering::Label(VuBitmap& target, const char* text, VuPoint at, VuColor color,
                      Align align) const {
  Write(target, *label_, text, at, color, align);
}

void Lettering::Heading(VuBitmap& target, const char* text, VuPoint at, VuColor color,
                        Align align) const {
  Write(target, *heading_, text, at, color, align);
}

void Lettering::Caption(VuBitmap& target, const char* text, VuPoint at, VuColor color,
                        const Matrix& place) const {
  target.DrawText(*caption_, text, at, color, place);
}

void Lettering::Title(VuBitmap& target, const char* text, VuPoint at, VuColor color,
                      VuColor outline, const Matrix& place) {
  title_->SetOutlineType(VuFont::OutlineType::Stroked);
  title_->SetOutlineThickness(3);
  target.DrawText(*title_, text, at, outline, place);
  title_->SetOutlineType(VuFont::OutlineType::None);
  target.DrawText(*title_, text, at, color, place);
}

}  // namespace ZIRK::showcase
