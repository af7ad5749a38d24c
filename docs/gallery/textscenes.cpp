#include <zirk/kit/textbox.h>
#include <zirk/vufontatlas.h>

#include <memory>
#include <string>

#include "gallery/scenes.h"

namespace ZIRK::gallery {

namespace {

struct Font : VuFont {
  Font(const std::string& name, int size, bool bold = false)
      : VuFont(new VuFontAtlas((ZIRK_GALLERY_FONTS "/" + name).c_str(), 0, size, bold, false)) {}
};

constexpr VuColor kRed{0xFFE04030}, kGreen{0xFF30C060}, kYellow{0xFFF0D040};

void Text(VuGraphics&, VuBitmap& t) {
  Font small("sans.ttf", 9), sans("sans.ttf", 14), bold("sans.ttf", 28, true);
  t.DrawText(small, "AVATAR To. LT, Würgen", VuPoint{4, 0}, white);
  t.DrawText(sans, "AVATAR To. LT, Würgen", VuPoint{4, 12}, white);
  t.DrawText(sans, "Ξεσκεπάζω Съешь же", VuPoint{4, 28}, kYellow);
  t.DrawText(sans, "Tea 日本 ☃.", VuPoint{4, 44}, kGreen);
  sans.SetFallbackGlyph('?');
  const Font cjk("cjk.ttf", 16);
  sans.SetFallbackFont(&cjk);
  t.DrawText(sans, "Tea 日本語 あア 안 ☃.", VuPoint{4, 60}, kGreen);
  t.DrawText(bold, "Made bold", VuPoint{4, 74}, kRed);
  // Outline and filled glyph at one position: neither may stick out on one side.
  Font outlined("sans.ttf", 26);
  for (int i = 0; i < 6; ++i) {
    const VuPoint at{2 + i * 32, 108};
    outlined.SetOutlineType(VuFont::OutlineType(1 + i % 3));
    outlined.SetOutlineThickness(i < 3 ? 1.0f : 3.0f);
    t.DrawText(outlined, "R", at, kYellow);
    outlined.SetOutlineType(VuFont::OutlineType::None);
    t.DrawText(outlined, "R", at, VuColor{0xC0E04030});
  }
}

void TextCombined(VuGraphics& g, VuBitmap& t) {
  const Font sans("sans.ttf", 18);
  const std::unique_ptr<VuBitmap> mask(g.CreateBitmap(4, 2, VuPixelFormat::A8));
  mask->DrawRect(VuRect{0, 0, 2, 1}, white);
  mask->DrawRect(VuRect{2, 1, 2, 1}, white);
  mask->SetScaleMode(VuScaleMode::Bilinear);
  t.SetBlendingFunc(VuBlendingFactor::One, VuBlendingFactor::One);
  t.DrawText(sans, "Light", VuPoint{4, 0}, VuColor{0xFF804020});
  t.SetBlendingFunc(VuBlendingFactor::One, VuBlendingFactor::OneMinusSrcAlpha);
  t.SetClippingRect(VuRect{60, 6, 100, 10});
  t.DrawText(sans, "clipped, glass", VuPoint{56, 0}, VuColor{0x80FFFFFF});
  t.SetClippingRect(VuRect{0, 0, kWidth, kHeight});
  t.DrawText(sans, "a mask in four parts", VuPoint{4, 24}, kYellow, VuTransform(), *mask, nullptr,
             VuRect{0, 0, 0, 0});
  t.DrawText(sans, "turned, masked", VuPoint{4, 46}, white, VuTransform(6, 58, 1, 1, 20), *mask,
             nullptr, VuRect{0, 50, 500, 11});
  t.DrawText(sans, "Wide", VuPoint{0, 0}, kRed, VuTransform(76, 100, 2.3f, 1.4f, 0));
  t.DrawText(sans, "Mirror", VuPoint{0, 0}, kGreen, VuTransform(64, 122, -1, 1, 0));
}

/// Sets a text into a part of the bitmap, on a ground that shows where that is.
template <size_t count>
void DrawBox(VuBitmap& t, const kit::TextRun (&runs)[count], const VuRect& place,
             kit::TextStyle style, const VuTransform& turn = VuTransform()) {
  style.width = place.width;
  style.height = place.height;
  kit::TextBox box;
  box.SetText(runs, count, style);
  t.DrawRect(place, VuColor{0xFF304860}, turn);
  box.Draw(t, {place.x, place.y}, turn);
}

void TextBoxes(VuGraphics&, VuBitmap& t) {
  const Font sans("sans.ttf", 10), bold("sansbold.ttf", 16), cjk("cjk.ttf", 12);
  const kit::TextRun mixed[] = {{"Fonts, ", &sans, white},
                                {"several ", &bold, kYellow},
                                {"こんにちは世界、你好。", &cjk, kGreen},
                                {"AVATAR To. Donaudampfschifffahrt", &sans, white}};
  const kit::TextRun plain[] = {
      {"Justified up to the edge, but for last lines.\nNew paragraph", &sans, white}};
  const kit::TextRun table[] = {{"a\t12\nbcd\t3456\nWürze\t7", &sans, white}};
  const kit::TextRun shortened[] = {{"Cut where the ", &sans, white}, {"box is full", &bold, kRed}};
  kit::TextStyle style;
  DrawBox(t, mixed, {3, 3, 90, 92}, style);
  style.align = kit::TextAlign::Justify;
  DrawBox(t, plain, {99, 3, 90, 68}, style);
  style.align = kit::TextAlign::Right;
  style.tabWidth = 40;
  style.verticalAlign = kit::VerticalAlign::Bottom;
  DrawBox(t, table, {99, 74, 90, 42}, style);
  style.align = kit::TextAlign::Center;
  style.verticalAlign = kit::VerticalAlign::Middle;
  DrawBox(t, shortened, {99, 120, 90, 21}, style);
  style.maxLines = 2;
  DrawBox(t, plain, {0, 0, 76, 32}, style, VuTransform(14, 98, 1, 1, 8));
}

}  // namespace

std::vector<Scene> TextScenes() {
  return {{"text", Text}, {"text_combined", TextCombined}, {"text_boxes", TextBoxes}};
}

}  // namespace ZIRK::gallery
