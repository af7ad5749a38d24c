#include "panels.h"

namespace ZIRK::zirkinfo {

/// Text of several sizes. The smallest suffers first if glyphs are not placed on whole pixels.
void DrawTextSizes(const Easel& e) {
  if (e.fontFile.empty()) return;
  constexpr int kSizes[] = {8, 9, 10, 12, 15, 20};
  e.target.SetClippingRect(e.At(0, 0, kPanelWidth, kPanelHeight));
  int y = 0;
  for (const int size : kSizes) {
    const std::string text = std::to_string(size) + " Hamburg AV.";
    const VuFont font(e.fontFile.c_str(), 0, size);
    e.target.DrawText(font, text.c_str(), e.At(4, y), white);
    y += size + 3;
  }
}

/// Emboldened text; the three kinds of outline; rotated, stretched and mirrored text; text through
/// a mask; translucent text.
void DrawTextEffects(const Easel& e) {
  if (e.fontFile.empty()) return;
  const VuRect noRect{0, 0, 0, 0};
  const VuFont plain(e.fontFile.c_str(), 0, 14), bold(e.fontFile.c_str(), 0, 14, true, false);
  VuFont large(e.fontFile.c_str(), 0, 26);
  e.target.SetClippingRect(e.At(0, 0, kPanelWidth, kPanelHeight));
  e.target.DrawText(bold, "Made bold", e.At(4, 0), white);
  for (int i = 0; i < 3; ++i) {
    const VuPoint pen = e.At(82 + i * 22, 0);
    large.SetOutlineType(VuFont::OutlineType(1 + i));
    large.SetOutlineThickness(2);
    e.target.DrawText(large, "R", pen, kGold);
    large.SetOutlineType(VuFont::OutlineType::None);
    e.target.DrawText(large, "R", pen, kRed);
  }
  e.target.DrawText(plain, "turned", {0, 0}, kGreen, e.Around(6, 52, 1, 1, 20));
  e.target.DrawText(plain, "wide", {0, 0}, kGold, e.Around(62, 30, 2.3f, 1.4f, 0));
  e.target.DrawText(plain, "mirror", {0, 0}, kBlue, e.Around(142, 50, -1, 1, 0));
  e.target.DrawText(large, "Mask", e.At(4, 62), white, VuTransform(), *e.props.disc, nullptr,
                    noRect);
  e.Rect(76, 72, 68, 20, kRed);
  e.target.DrawText(plain, "glass", e.At(92, 73), {0x80FFFFFF});
}

}  // namespace ZIRK::zirkinfo
