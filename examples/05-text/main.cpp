// Text: fonts by family, a paragraph of several scripts and styles broken into lines, and a heading
// with an outline around its letters.

#include <zirk/kit/pictures.h>
#include <zirk/zirk.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

using namespace ZIRK;

namespace {

using FontPtr = std::unique_ptr<VuFont>;

const std::string kFonts = ZIRK_EXAMPLE_FONTS;
constexpr const char* kFamily = "ZIRK Test Sans";

/// A stretch of text in one font and colour.
struct Run {
  const VuFont& font;
  VuColor color;
  std::string text;
};

//! [column]
/// Sets words one after the other, and goes to the next line where one does not fit.
class Column {
 public:
  Column(VuBitmap& target, const VuRect& box, int lineHeight)
      : target_(target), box_(box), lineHeight_(lineHeight), pen_{box.x, box.y} {}

  void Set(const Run& run) {
    const int blank = run.font.GetOneLineWidth(" ");
    for (size_t from = 0; from < run.text.size();) {
      const size_t end = std::min(run.text.find(' ', from), run.text.size());
      SetWord(run, run.text.substr(from, end - from), blank);
      from = end + 1;
    }
  }

 private:
  void SetWord(const Run& run, const std::string& word, int blank) {
    const int width = run.font.GetOneLineWidth(word.c_str());
    if (pen_.x + width > box_.x + box_.width) pen_ = {box_.x, pen_.y + lineHeight_};
    target_.DrawText(run.font, word.c_str(), pen_, run.color);
    pen_.x += width + blank;
  }

  VuBitmap& target_;
  const VuRect box_;
  const int lineHeight_;
  VuPoint pen_;
};
//! [column]

/// The outline first, as wide around the letters as inside them, and the letters on top of it: both
/// stand on the same pen position.
void DrawHeading(VuBitmap& target, VuFont& font, const char* text, VuPoint pen) {
  font.SetOutlineType(VuFont::OutlineType::Stroked);
  font.SetOutlineThickness(3);
  target.DrawText(font, text, pen, {0xFF12324A});
  font.SetOutlineType(VuFont::OutlineType::None);
  target.DrawText(font, text, pen, {0xFFFFC857});
}

}  // namespace

int main(int argc, char** argv) {
  const std::unique_ptr<VuGraphics> graphics(VuGraphics::Create("FB", false));
  if (!graphics) return 1;
  const std::unique_ptr<VuBitmap> screen(graphics->CreateScreen(820, 460, false));
  if (!screen) return 1;

  // The registry knows the files, and chooses the best one for a style.
  VuFontRegistry registry;
  for (const char* file : {"sans.ttf", "sansbold.ttf", "sansoblique.ttf", "cjk.ttf"})
    if (!registry.Register((kFonts + file).c_str())) return 1;
  const FontPtr regular(registry.GetFont(kFamily, 22, false, false));
  const FontPtr bold(registry.GetFont(kFamily, 22, true, false));
  const FontPtr oblique(registry.GetFont(kFamily, 22, false, true));
  const FontPtr heading(registry.GetFont(kFamily, 60, true, false));
  const FontPtr eastern(registry.GetFont("ZIRK Test CJK", 22, false, false));
  if (!regular || !bold || !oblique || !heading || !eastern) return 1;
  // The second font supplies the glyphs that the first one lacks.
  regular->SetFallbackFont(eastern.get());

  screen->Clear({0xFF2E6FB0});
  screen->DrawRect({30, 126, 760, 300}, {0xFFF8F4EC});
  DrawHeading(*screen, *heading, "Text, line by line", {46, 30});

  constexpr VuColor kInk{0xFF20262E}, kAccent{0xFFB03A2E}, kQuiet{0xFF5A6470};
  const std::vector<Run> paragraph = {
      {*bold, kAccent, "One line at a time,"},
      {*regular, kInk,
       "text is measured as it will be drawn: with kerning, in any script that stands from left to "
       "right, one glyph for a character. Dies gilt für Größe und Maß,"},
      {*oblique, kQuiet, "pour ça, où l'œuvre naît,"},
      {*regular, kInk,
       "для кириллицы, για τα ελληνικά; and where a font has no glyph, the fallback font is asked: "
       "こんにちは世界、 你好、 안녕하세요。"},
      {*bold, kAccent, "Bold"},
      {*oblique, kQuiet, "oblique"},
      {*regular, kInk, "and regular letters share one baseline."},
  };
  Column column(*screen, {56, 146, 708, 260}, regular->GetOneLineHeight() + 8);
  for (const Run& run : paragraph) column.Set(run);
  const bool done = argc < 2 || kit::SavePng(*screen, argv[1]);
  screen->SwapBuffers();
  return done ? 0 : 1;
}
