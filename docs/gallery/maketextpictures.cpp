// Makes pictures of the pages: docs/line-box.png, what the measures of a line are;
// docs/outlines.png, the outlines that a font draws; docs/blending.png, what the blending factors
// do.
//
//     zirk_make_text_pictures FOLDER

#include <zirk/kit/kit.h>
#include <zirk/zirk.h>

#include <memory>
#include <string>

namespace {

using namespace ZIRK;
using BitmapPtr = std::unique_ptr<VuBitmap>;

constexpr VuColor kPaper{0xFFF8F4EC}, kBox{0xFFFFE3A8}, kInk{0xFF20262E}, kRed{0xFFB03A2E},
    kBlue{0xFF2E6FB0};

struct Font : VuFont {
  explicit Font(int size, const char* name = "/sans.ttf")
      : VuFont((std::string(ZIRK_GALLERY_FONTS) + name).c_str(), 0, size) {}
};

const VuFont& Small() {
  static const Font font(14);
  return font;
}

BitmapPtr New(VuGraphics& graphics, int width, int height, VuColor color) {
  BitmapPtr bitmap(graphics.CreateBitmap(width, height, VuPixelFormat::ARGB8888));
  bitmap->Clear(color);
  return bitmap;
}

/// A label in the middle of a place.
void Label(VuBitmap& t, std::string_view text, const VuRect& place,
           kit::TextAlign align = kit::TextAlign::Center) {
  kit::TextStyle style;
  style.width = place.width;
  style.height = place.height;
  style.align = align;
  style.verticalAlign = kit::VerticalAlign::Middle;
  kit::TextBox box;
  box.SetText(Small(), text, kInk, style);
  box.Draw(t, {place.x, place.y});
}

/// A line that ends in strokes across it.
void Dimension(VuBitmap& t, VuPoint from, VuPoint to, VuColor color) {
  const bool isUpright = from.x == to.x;
  const int dx = isUpright ? 4 : 0, dy = isUpright ? 0 : 4;
  t.DrawLine(from, to, color);
  for (const VuPoint end : {from, to})
    t.DrawLine({end.x - dx, end.y - dy}, {end.x + dx, end.y + dy}, color);
}

BitmapPtr DrawLineBox(VuGraphics& graphics) {
  constexpr char kWord[] = "Àgypten";
  constexpr int kLeft = 130, kTop = 24;
  const Font font(110);
  const int width = font.GetOneLineWidth(kWord), height = font.GetOneLineHeight();
  const int right = kLeft + width, bottom = kTop + height, base = kTop + font.GetAscent();
  BitmapPtr t = New(graphics, right + 150, bottom + 76, kPaper);
  t->DrawRect({kLeft, kTop, width, height}, kBox);
  t->DrawText(font, kWord, {kLeft, kTop}, kInk);
  t->DrawRect({kLeft - 8, base, width + 16, 1}, kRed);
  Dimension(*t, {kLeft - 16, kTop}, {kLeft - 16, base - 1}, kRed);
  Dimension(*t, {kLeft - 16, base}, {kLeft - 16, base + font.GetDescent()}, kRed);
  Dimension(*t, {right + 16, kTop}, {right + 16, bottom - 1}, kRed);
  Label(*t, "ascent", {0, kTop, kLeft - 24, base - kTop}, kit::TextAlign::Right);
  Label(*t, "baseline", {0, base - 20, kLeft - 24, 40}, kit::TextAlign::Right);
  Label(*t, "descent", {0, base + 8, kLeft - 24, bottom - base}, kit::TextAlign::Right);
  Label(*t, "line height", {right + 24, kTop, 120, height}, kit::TextAlign::Left);

  kit::TextBox box;
  box.SetText(font, kWord, kInk);
  const std::string_view word = kWord;
  for (size_t at = 0; at < word.size(); ++at) {
    const VuRect place = box.GetCharacter(at);
    if ((word[at] & 0xC0) == 0x80) continue;
    const int y = bottom + 22;
    Dimension(*t, {kLeft + place.x, y}, {kLeft + place.x + place.width - 1, y}, kBlue);
  }
  Label(*t, "advances", {0, bottom + 12, kLeft - 24, 20}, kit::TextAlign::Right);
  Dimension(*t, {kLeft, bottom + 44}, {right - 1, bottom + 44}, kRed);
  Label(*t, "width", {kLeft, bottom + 50, width, 20});
  return t;
}

BitmapPtr DrawOutlines(VuGraphics& graphics) {
  constexpr int kCell = 150, kHeight = 150;
  constexpr const char* kNames[] = {"None", "Stroked", "Outer", "Inner"};
  Font font(100, "/sansbold.ttf");
  BitmapPtr t = New(graphics, 4 * kCell, kHeight + 30, kPaper);
  for (int type = 0; type < 4; ++type) {
    const VuPoint pen{type * kCell + (kCell - font.GetOneLineWidth("Rß")) / 2, 10};
    font.SetOutlineType(VuFont::OutlineType::None);
    t->DrawText(font, "Rß", pen, type == 0 ? kInk : kBox);
    font.SetOutlineType(VuFont::OutlineType(type));
    font.SetOutlineThickness(3);
    if (type > 0) t->DrawText(font, "Rß", pen, kRed);
    Label(*t, kNames[type], {type * kCell, kHeight, kCell, 20});
  }
  return t;
}

constexpr const char* kFactors[] = {"Zero",
                                    "One",
                                    "SrcColor",
                                    "OneMinusSrcColor",
                                    "SrcAlpha",
                                    "OneMinusSrcAlpha",
                                    "DstAlpha",
                                    "OneMinusDstAlpha",
                                    "DstColor",
                                    "OneMinusDstColor",
                                    "SrcAlphaSaturate",
                                    "BlendColor",
                                    "OneMinusBlendColor",
                                    "BlendAlpha",
                                    "OneMinusBlendAlpha"};
constexpr int kFactorCount = static_cast<int>(std::size(kFactors));

/// On the left the destination alone, on the right the source alone, in the middle both.
BitmapPtr DrawCells(VuGraphics& graphics, int pitch, int side) {
  BitmapPtr cells = New(graphics, kFactorCount * pitch, kFactorCount * pitch, 0);
  cells->SetBlendColor(0xA0408020);
  for (int dst = 0; dst < kFactorCount; ++dst)
    for (int src = 0; src < kFactorCount; ++src) {
      const VuPoint corner{src * pitch, dst * pitch};
      cells->SetBlendingFunc(VuBlendingFactor::One, VuBlendingFactor::Zero);
      cells->DrawRect({corner.x, corner.y, side * 2 / 3, side}, 0xB03060C0);
      cells->SetBlendingFunc(VuBlendingFactor(src), VuBlendingFactor(dst));
      cells->DrawRect({corner.x + side / 3, corner.y, side * 2 / 3, side}, 0xA0F08020);
    }
  return cells;
}

BitmapPtr DrawBlending(VuGraphics& graphics) {
  constexpr int kPitch = 33, kSide = 30, kLabels = 172, kSize = kLabels + kFactorCount * kPitch;
  BitmapPtr t = New(graphics, kSize, kSize, kPaper);
  for (int y = kLabels; y < kSize; y += 6)
    for (int x = kLabels; x < kSize; x += 6)
      t->DrawRect({x, y, 6, 6}, (x + y) / 6 % 2 ? 0xFFFFFFFF : 0xFFD8D8D8);
  for (int i = 0; i < kFactorCount; ++i) {
    const int at = kLabels + i * kPitch;
    Label(*t, kFactors[i], {0, at, kLabels - 8, kSide}, kit::TextAlign::Right);
    const auto x = static_cast<float>(at + (kSide - Small().GetOneLineHeight()) / 2);
    kit::DrawText(*t, Small(), kFactors[i], {0, 0}, kInk, VuTransform(x, kLabels - 8, 1, 1, 90));
    // The gaps between the cells.
    t->DrawRect({at + kSide, kLabels, kPitch - kSide, kSize}, kPaper);
    t->DrawRect({kLabels, at + kSide, kSize, kPitch - kSide}, kPaper);
  }
  Label(*t, "source across,\ndestination down", {8, 100, kLabels - 16, 50}, kit::TextAlign::Left);
  const BitmapPtr cells = DrawCells(graphics, kPitch, kSide);
  t->DrawObject({kLabels, kLabels, kSize - kLabels, kSize - kLabels}, *cells);
  return t;
}

}  // namespace

int main(int argc, char** argv) {
  const std::unique_ptr<VuGraphics> graphics(VuGraphics::Create("FB", false));
  if (argc != 2 || !graphics) return 2;
  const std::string folder = std::string(argv[1]) + "/";
  const bool done = kit::SavePng(*DrawLineBox(*graphics), (folder + "line-box.png").c_str()) &&
                    kit::SavePng(*DrawOutlines(*graphics), (folder + "outlines.png").c_str()) &&
                    kit::SavePng(*DrawBlending(*graphics), (folder + "blending.png").c_str());
  return done ? 0 : 1;
}
