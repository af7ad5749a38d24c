// Text by every backend, against glyphs that FreeType rendered for the test and the model of
// drawing; and text when fonts, atlases and contexts come and go.

#include <zirk/utf8.h>

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "helpers/freetype.h"
#include "helpers/pixels.h"
#include "helpers/threads.h"
#include "scenes/backends.h"
#include "scenes/modelcheck.h"

namespace ZIRK::scenes {
namespace {

using Factor = VuBlendingFactor;
using Format = VuPixelFormat;
using Outline = VuFont::OutlineType;
using helpers::FreeType;
using helpers::Letter;
using helpers::Pixels;
using helpers::PixelsOf;

using Text = OnEachBackend;

INSTANTIATE_TEST_SUITE_P(Backends, Text, testing::ValuesIn(kBackends),
                         [](const auto& test) { return std::string(test.param); });

enum class Mode { Usual, BlendingOff, OtherFactors, Clipped, Pack, Bold };

struct Line {
  const char* name;
  const char* text;
  int size = 16;
  Mode mode = Mode::Usual;
  Outline outline = Outline::None;
  float thickness = 0;
  VuTransform transform{};
  bool masked = false;
  VuRect rect{0, 0, 0, 0};
  const char* file = "sans.ttf";
};

const Line kLines[] = {
    {.name = "kerning, bytes that are no text", .text = "AV\xFF\x41To\x80\xFE LT"},
    {.name = "missing glyphs and those of the fallback font", .text = "V日Aé☃VЖ本."},
    {.name = "large", .text = "Åj", .size = 40},
    {.name = "stroked", .text = "Rej", .outline = Outline::Stroked, .thickness = 1},
    {.name = "outer border", .text = "Rej", .outline = Outline::Outer, .thickness = 2.5f},
    {.name = "inner border", .text = "Rej", .outline = Outline::Inner, .thickness = 1.5f},
    {.name = "unknown outline", .text = "Rej", .outline = Outline{7}, .thickness = 2},
    {.name = "thick without an outline", .text = "Rej", .thickness = 2},
    {.name = "made bold", .text = "Bold日", .size = 30, .mode = Mode::Bold},
    {.name = "bold by itself", .text = "Bold", .mode = Mode::Bold, .file = "sansbold.ttf"},
    {.name = "bold border",
     .text = "Bj",
     .size = 30,
     .mode = Mode::Bold,
     .outline = Outline::Outer,
     .thickness = 2},
    {.name = "bits", .text = "AB é", .size = 10, .file = "bitmap.bdf"},
    {.name = "moved by part of a pixel", .text = "Halves", .transform = {0.5f, 6.49f, 1, 1, 0}},
    {.name = "enlarged", .text = "Wag", .size = 12, .transform = {2, -4, 1.7f, 2.3f, 0}},
    {.name = "stretched in height", .text = "High", .transform = {2, 1, 1, 1.5f, 0}},
    {.name = "stretched in width", .text = "Wide", .transform = {2, 1, 1.5f, 1, 0}},
    {.name = "shrunk and mirrored", .text = "Wag", .transform = {90, 0, -0.7f, 0.8f, 0}},
    {.name = "quarter turn", .text = "Quart", .transform = {4, 46, 1, 1, 90}},
    {.name = "slanted", .text = "Slant", .transform = {4, 24, 1, 1, 23}},
    {.name = "cut by a rectangle", .text = "Rectangle", .size = 20, .rect = {9, 8, 51, 9}},
    {.name = "masked", .text = "Masked", .size = 20, .masked = true},
    {.name = "masked, cut, turned",
     .text = "Mask",
     .transform = {4, 20, 1, 1, 20},
     .masked = true,
     .rect = {5, 8, 41, 9}},
    {.name = "blending off", .text = "Off, Ag", .mode = Mode::BlendingOff},
    {.name = "other factors", .text = "Others", .mode = Mode::OtherFactors},
    {.name = "clipped", .text = "Clipped", .size = 22, .mode = Mode::Clipped},
    {.name = "narrow format", .text = "Pack", .mode = Mode::Pack},
};

constexpr VuPoint kPosition{3, 2};
constexpr VuColor kColor{0xC0F0A040};

/// The letters in their places; `width` becomes that of the line.
std::vector<Letter> LayOut(const Line& l, int& width) {
  const FreeType own(FontFile(l.file), l.size), cjk(FontFile("cjk.ttf"), l.size + 4);
  FT_Face previousFace = nullptr;
  FT_UInt previous = 0;
  std::vector<Letter> letters;
  width = 0;
  int length;
  for (const char* next = l.text; *next; next += std::max(length, 1)) {
    const uint32_t code = GetUtf8Char(next, &length);
    if (length == 0) continue;
    const bool lent = !FT_Get_Char_Index(own.face, code) && FT_Get_Char_Index(cjk.face, code);
    const FreeType& from = lent ? cjk : own;
    Letter letter =
        from.Render(FT_Get_Char_Index(from.face, code), l.outline, l.thickness,
                    l.mode == Mode::Bold && !(from.face->style_flags & FT_STYLE_FLAG_BOLD));
    FT_Vector kerning = {0, 0};
    if (from.face == previousFace && letter.index != 0)
      FT_Get_Kerning(from.face, previous, letter.index, FT_KERNING_DEFAULT, &kerning);
    width += static_cast<int>(kerning.x >> 6);
    letter.x += kPosition.x + width;
    letter.y += kPosition.y + own.Ascender() - from.Ascender();
    letters.push_back(letter);
    width += letter.advance;
    previousFace = from.face;
    previous = letter.index;
  }
  return letters;
}

/// Draws a letter as a bitmap, which the model checks. `mask` covers the whole line, which is
/// `lineWidth` by `lineHeight`.
void DrawLetter(ModelCheck& check, const Line& l, const Letter& letter, VuBitmap& coverage,
                const VuBitmap* mask, float lineWidth, float lineHeight) {
  coverage.SetPixels(coverage.GetBounds(), letter.coverage.data(),
                     static_cast<unsigned>(letter.width));
  coverage.SetScaleMode(VuScaleMode::Bilinear);
  // The rectangle is cut before the matrix, destination and source alike.
  const VuRect r = l.rect.width != 0 ? l.rect : VuRect{-99, -99, 999, 999};
  const int x0 = std::max(letter.x, r.x), x1 = std::min(letter.x + letter.width, r.x + r.width);
  const int y0 = std::max(letter.y, r.y), y1 = std::min(letter.y + letter.height, r.y + r.height);
  VuTVector2D<float> coords[4];
  for (int i = 0; i < 4; ++i)
    coords[i] = {float((i == 1 || i == 2 ? x1 : x0) - kPosition.x) / lineWidth * 8,
                 float((i >= 2 ? y1 : y0) - kPosition.y) / lineHeight * 4};
  check.DrawObject({x0, y0, x1 - x0, y1 - y0}, coverage,
                   {x0 - letter.x, y0 - letter.y, x1 - x0, y1 - y0},
                   VuTMatrix2D<float>(l.transform), kColor, {mask, coords});
}

void Prepare(VuBitmap& bitmap, Mode mode) {
  FillWithNoise(bitmap, bitmap.GetBounds(), 1);
  bitmap.SetBlendEnabled(mode != Mode::BlendingOff);
  if (mode == Mode::OtherFactors)
    bitmap.SetBlendingFunc(Factor::DstAlpha, Factor::OneMinusSrcColor);
  if (mode == Mode::Clipped) bitmap.SetClippingRect(VuRect{13, 9, 31, 8});
}

TEST_P(Text, IsItsLettersDrawnOneByOne) {
  const auto mask = New(8, 4, Format::A8), solid = New(1, 1, Format::A8);
  FillWithNoise(*mask, mask->GetBounds(), 3);
  mask->SetScaleMode(VuScaleMode::Bilinear);
  solid->Clear(white);
  for (const Line& l : kLines) {
    SCOPED_TRACE(l.name);
    TestFont font(l.file, l.size, l.mode == Mode::Bold);
    const TestFont cjk("cjk.ttf", l.size + 4);
    font.SetFallbackFont(&cjk);
    font.SetOutlineType(l.outline);
    font.SetOutlineThickness(l.thickness);
    const Format format = l.mode == Mode::Pack ? Format::RGB565 : Format::ARGB8888;
    ModelCheck check(NewTarget(96, 48, format), GetParam());
    if (l.mode == Mode::OtherFactors)
      check.SetFactors(
          {Factor::DstAlpha, Factor::OneMinusSrcColor, Factor::DstAlpha, Factor::OneMinusSrcColor});
    Prepare(check.Target(), l.mode);
    int width = 0;
    const std::vector<Letter> letters = LayOut(l, width);
    for (const Letter& letter : letters)
      if (!letter.coverage.empty())
        DrawLetter(check, l, letter, *New(letter.width, letter.height, Format::A8),
                   l.masked ? mask.get() : nullptr, float(width), float(font.GetOneLineHeight()));
    const model::Picture expected(check.Target());
    // What goes through a mask is rounded at other places. One of Mesa's renderers blends in
    // floating point, and rounds only once where the letters of a line lie over each other.
    const bool through = l.masked || l.rect.width != 0;
    const double step = format == Format::RGB565 ? 255.0 / 31 : 1;
    const double tolerance = through || !IsReference(GetParam()) ? step + 0.1 : 0;
    // First the atlas is made, and grows at every other glyph; then all glyphs are there.
    for (const char* time : {"first time", "again"}) {
      const auto target = NewTarget(96, 48, format);
      Prepare(*target, l.mode);
      if (through)
        target->DrawText(font, l.text, kPosition, kColor, l.transform, l.masked ? *mask : *solid,
                         nullptr, l.rect);
      else
        target->DrawText(font, l.text, kPosition, kColor, l.transform);
      const model::Picture drawn(*target);
      for (size_t i = 0; i < drawn.pixels.size() && !HasFailure(); ++i)
        for (size_t c = 0; c < 4; ++c)
          ASSERT_NEAR(drawn.pixels[i][c] * 255, expected.pixels[i][c] * 255, tolerance)
              << "pixel (" << i % 96 << ", " << i / 96 << ") channel " << c << ", " << time;
    }
    EXPECT_EQ(font.GetOneLineWidth(l.text), width);
  }
}

Pixels Drawn(std::unique_ptr<VuBitmap> target, const VuFont& font, const char* text) {
  target->DrawText(font, text, VuPoint{2, 2}, white);
  return PixelsOf(*target);
}

Pixels Drawn(VuGraphics& graphics, const VuFont& font, const char* text) {
  return Drawn(NewTarget(graphics, 160, 40), font, text);
}

TEST_P(Text, MoreGlyphsThanTheAtlasHoldsAreAllDrawn) {
  if (std::getenv("ZIRK_TEST_EMULATED") && !IsReference(GetParam()))
    GTEST_SKIP() << "1700 pictures take a renderer many minutes on an emulated processor";
  using helpers::Symbols;
  constexpr int kLine = 20, kWidth = kLine * Symbols::kSize;
  const Symbols symbols;
  const VuFont font(new VuFontAtlas(symbols.Path(), 0, Symbols::kSize, false, false));
  const FreeType face(symbols.Path(), Symbols::kSize);
  const auto target = NewTarget(kWidth, Symbols::kSize);
  // The atlas is emptied when it is full, and then kept, since what it held has come back.
  for (int drawn = 0; drawn < 2 * Symbols::kCount; drawn += kLine) {
    Pixels expected(kWidth * Symbols::kSize);
    std::string text;
    for (int i = 0; i < kLine; ++i) {
      const int symbol = (drawn + i) % Symbols::kCount;
      text += Symbols::Text(symbol);
      const Letter letter = face.Render(FT_Get_Char_Index(face.face, FT_ULong(0xE000 + symbol)));
      for (int at = 0; at < letter.width * letter.height; ++at)
        expected[size_t((letter.y + at / letter.width) * kWidth + i * Symbols::kSize + letter.x +
                        at % letter.width)] = letter.coverage[size_t(at)] * 0x01010101u;
    }
    target->Clear();
    target->DrawText(font, text.c_str(), VuPoint{0, 0}, white);
    ASSERT_TRUE(PixelsOf(*target) == expected) << drawn;
  }
}

TEST_P(Text, ThreadsShareAFontAndChangeTheirOwn) {
  if (GetParam() == std::string("OpenGLES2"))
    GTEST_SKIP() << "OpenGL is used from one thread at a time";
  const char* const kTexts[] = {"Sphinx of black", "quartz, judge my", "ÅÉÑ ΩЖД vow", "0123456789"};
  // Screens may be drawn by OpenGL.
  const auto drawn = [](VuGraphics& graphics, const VuFont& font, const char* text) {
    return Drawn(std::unique_ptr<VuBitmap>(graphics.CreateBitmap(160, 40, {})), font, text);
  };
  const auto outlined = [&](VuGraphics& graphics, TestFont& font, int type) {
    font.SetOutlineType(Outline(type));
    font.SetOutlineThickness(1.5f);
    return drawn(graphics, font, "Rim");
  };
  const TestFont reference("sans.ttf", 18);
  TestFont own[] = {{"sans.ttf", 20}, {"sans.ttf", 20}, {"sans.ttf", 20}};
  std::vector<Pixels> texts, outlines;
  for (int i = 0; i < 4; ++i) {
    texts.push_back(drawn(*graphics_, reference, kTexts[i]));
    outlines.push_back(outlined(*graphics_, own[2], i));
  }
  const auto otherContext = Open(GetParam());
  // A new one for every round, with glyphs to be rendered.
  std::unique_ptr<TestFont> shared;
  int round = 0;
  const auto prepare = [&](int now) {
    round = now;
    shared = std::make_unique<TestFont>("sans.ttf", 18);
  };
  const auto use = [&](bool isOther) {
    VuGraphics& graphics = isOther && round % 2 ? *otherContext : *graphics_;
    const size_t i = size_t(round + isOther) % 4;
    EXPECT_EQ(drawn(graphics, *shared, kTexts[i]), texts[i]);
    EXPECT_EQ(shared->GetOneLineWidth(kTexts[i]), reference.GetOneLineWidth(kTexts[i]));
    EXPECT_EQ(outlined(graphics, own[isOther], int(i)), outlines[i]);
    if (IsReference(GetParam())) std::unique_ptr<VuGraphics>(VuGraphics::Create(GetParam(), false));
  };
  helpers::InRounds(50, prepare, use);
}

TEST_P(Text, FontsOutliveContextsAndTheOtherWayRound) {
  auto font = std::make_unique<TestFont>("sans.ttf", 20);
  const Pixels first = Drawn(*graphics_, *font, "First");
  graphics_ = Open(GetParam());
  // The atlas grows where its context has gone.
  font->SetOutlineType(Outline::Stroked);
  font->SetOutlineThickness(8);
  Drawn(*graphics_, *font, "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789");
  font->SetOutlineType(Outline::None);
  EXPECT_EQ(Drawn(*graphics_, *font, "First"), first);
  const auto target = NewTarget(160, 40);
  graphics_.reset();
  target->DrawText(*font, "First", VuPoint{2, 2}, white);
  font.reset();
  EXPECT_EQ(PixelsOf(*target), first);
}

TEST_P(Text, HostileArgumentsDrawNothing) {
  const TestFont font("sans.ttf", 20), none("absent.ttf", 20);
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const auto target = NewTarget(80, 40), mask = New(4, 4, Format::A8);
  mask->Clear(white);
  const auto draw = [&](VuPoint at, VuTransform t, VuRect rect = {}, const char* text = "Text") {
    if (rect.x == 0) target->DrawText(font, text, at, white, t);
    target->DrawText(font, text, at, white, t, *mask, nullptr, rect);
  };
  draw({2, 2}, {}, {}, nullptr);
  draw({2, 2}, {}, {}, "");
  target->DrawText(none, "Text", VuPoint{2, 2}, white);
  for (const int32_t far : {INT32_MIN, INT32_MIN + 9, INT32_MAX - 30, INT32_MAX}) {
    draw({far, 2}, {-9, 5, 1, 1, 0});
    draw({2, far}, {2e9f, -2e9f, 1, 1, 0});
    draw({far, far}, {0, 0, 2, 2, 30});
    draw({2, 2}, {}, {far, far, 9, 9});
  }
  for (const float bad : {nan, 0.0f}) draw({2, 2}, {0, 0, bad, 1, 0});
  for (const VuRect& rect : {VuRect{2, 2, 0, 9}, VuRect{2, 2, 30, -9}, VuRect{1, 1, 0, 0}})
    draw({2, 2}, {}, rect);
  EXPECT_EQ(PixelsOf(*target), Pixels(80 * 40));
}

}  // namespace
}  // namespace ZIRK::scenes
