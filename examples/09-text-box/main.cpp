// Text boxes: an article in several fonts, a list with labels that are cut to fit, and an input
// field with a selection and a caret.

#include <zirk/kit/kit.h>
#include <zirk/zirk.h>

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

using namespace ZIRK;

namespace {

constexpr VuColor kPaper{0xFFF8F4EC}, kInk{0xFF20262E}, kQuiet{0xFF5A6470}, kAccent{0xFFB03A2E};

struct Fonts {
  VuFont regular, bold, oblique, eastern, heading;

  explicit Fonts(const std::string& folder)
      : regular((folder + "sans.ttf").c_str(), 0, 18),
        bold((folder + "sansbold.ttf").c_str(), 0, 18),
        oblique((folder + "sansoblique.ttf").c_str(), 0, 18),
        eastern((folder + "cjk.ttf").c_str(), 0, 18),
        heading((folder + "sansbold.ttf").c_str(), 0, 30) {}
};

//! [article]
/// Several fonts and colours in one text, which is broken as a whole.
void DrawArticle(VuBitmap& target, const Fonts& fonts, VuPoint corner, int width) {
  const kit::TextRun runs[] = {
      {"Lines that fit\n", &fonts.heading, kAccent},
      {"A text box ", &fonts.bold, kInk},
      {"breaks a text where Unicode allows it: at spaces, after hyphens, and between "
       "ideographs, which have neither, ",
       &fonts.regular, kInk},
      {"こんにちは世界、你好。", &fonts.eastern, kInk},
      {" Every word may have ", &fonts.regular, kInk},
      {"its own font", &fonts.oblique, kAccent},
      {", and all words of a line share a baseline.\n", &fonts.regular, kInk},
      {"It is measured before it is drawn, and drawn as often as you like.", &fonts.oblique,
       kQuiet},
  };
  kit::TextStyle style;
  style.width = width;
  style.align = kit::TextAlign::Justify;
  style.lineGap = 4;
  kit::TextBox box;
  box.SetText(runs, std::size(runs), style);
  box.Draw(target, corner);
}
//! [article]

/// A label that is cut before the number on its right.
void DrawEntry(VuBitmap& target, const Fonts& fonts, const VuRect& place, std::string_view title,
               std::string_view number) {
  kit::TextStyle style;
  style.maxLines = 1;
  style.height = place.height;
  style.verticalAlign = kit::VerticalAlign::Middle;
  style.width = place.width - kit::GetWidth(fonts.bold, number) - 16;
  kit::TextBox label;
  label.SetText(fonts.regular, title, kInk, style);
  label.Draw(target, {place.x, place.y});
  style.width = place.width;
  style.align = kit::TextAlign::Right;
  label.SetText(fonts.bold, number, kAccent, style);
  label.Draw(target, {place.x, place.y});
}

//! [field]
/// Text to write in. A press sets the caret, and a drag selects up to where it leads.
class Field {
 public:
  Field(const VuFont& font, std::string_view text, const VuRect& place) : place_(place) {
    kit::TextStyle style;
    style.width = place.width;
    box_.SetText(font, text, kInk, style);
  }
  void Press(VuPoint p) { anchor_ = caret_ = OffsetAt(p); }
  void DragTo(VuPoint p) { caret_ = OffsetAt(p); }

  void Draw(VuBitmap& target) const {
    const auto [first, last] = std::minmax(anchor_, caret_);
    for (size_t at = first; at < last; ++at) DrawOver(target, box_.GetCharacter(at), 0xFFFFD98A);
    box_.Draw(target, {place_.x, place_.y});
    VuRect caret = box_.GetCharacter(caret_);
    caret.width = 2;
    DrawOver(target, caret, kAccent);
  }

 private:
  size_t OffsetAt(VuPoint p) const { return box_.FindCaret({p.x - place_.x, p.y - place_.y}); }
  void DrawOver(VuBitmap& target, const VuRect& part, VuColor color) const {
    target.DrawRect({place_.x + part.x, place_.y + part.y, part.width, part.height}, color);
  }

  const VuRect place_;
  kit::TextBox box_;
  size_t anchor_ = 0, caret_ = 0;
};
//! [field]

}  // namespace

int main(int argc, char** argv) {
  const std::unique_ptr<VuGraphics> graphics(VuGraphics::Create("FB", false));
  if (!graphics) return 1;
  const std::unique_ptr<VuBitmap> screen(graphics->CreateScreen(800, 330, false));
  if (!screen) return 1;
  const Fonts fonts(ZIRK_EXAMPLE_FONTS);

  screen->Clear(0xFF2E6FB0);
  screen->DrawRect({24, 24, 424, 282}, kPaper);
  DrawArticle(*screen, fonts, {44, 36}, 384);

  screen->DrawRect({472, 24, 304, 164}, kPaper);
  int y = 30;
  for (const auto& [title, number] : {std::pair{"Short", "3:07"},
                                      {"A title that is far too long for its room", "12:41"},
                                      {"Другое название, тоже длинное", "0:59"},
                                      {"Fits exactly, or so", "4:20"}})
    DrawEntry(*screen, fonts, {488, std::exchange(y, y + 38), 272, 38}, title, number);

  screen->DrawRect({472, 204, 304, 102}, kPaper);
  Field field(fonts.regular,
              "Write here. Words that do not fit go to the next line.\n\nSo does this.",
              {488, 210, 272, 90});
  field.Press({560, 220});
  field.DragTo({600, 242});
  field.Draw(*screen);
  const bool done = argc < 2 || kit::SavePng(*screen, argv[1]);
  screen->SwapBuffers();
  return done ? 0 : 1;
}
