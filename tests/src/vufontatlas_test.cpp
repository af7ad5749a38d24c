#include <gmock/gmock.h>
#include <sys/stat.h>
#include <zirk/backend.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <future>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "doubles/memorygraphics.h"
#include "helpers/calls.h"
#include "helpers/fonts.h"
#include "helpers/freetype.h"
#include "helpers/logged.h"
#include "helpers/rows.h"
#include "helpers/threads.h"

namespace ZIRK {
namespace {

using doubles::MemoryBitmap;
using doubles::MemoryGraphics;
using helpers::FontFile;
using helpers::FreeType;
using helpers::Letter;
using helpers::LoggedAt;
using Type = VuFont::OutlineType;

const MemoryBitmap& Surface(const VuTextureAtlasImpl& atlas) {
  return dynamic_cast<const MemoryBitmap&>(*atlas.GetBitmap());
}

Letter Placed(const Glyph& g, const VuTextureAtlasImpl& atlas) {
  EXPECT_TRUE(g.inAtlas);
  const auto pixels = Surface(atlas).At({g.x, g.y, g.width, g.height});
  return {g.index, g.left, g.top, g.width, g.height, g.advance, pixels};
}

class FontAtlas : public testing::Test {
 protected:
  FontAtlas() { LogLevel = 2; }

  static VuFontAtlas Open(const char* file, int size, bool bold = false) {
    return VuFontAtlas(FontFile(file).c_str(), 0, size, bold, false);
  }
  static const Glyph* Add(const VuFontAtlas& font, unsigned code) {
    return font.GetGlyph(code, false);
  }

  const helpers::Tunables restored;
  MemoryGraphics graphics;
  const VuFontAtlas cjk = Open("cjk.ttf", 30);
};

struct Face {
  const char* name;
  const char* file;
  int size;
  std::array<int, 6> metrics;
};
class Metrics : public helpers::Rows<Face> {};

TEST_P(Metrics, OfAFace) {
  auto* const atlas =
      new VuFontAtlas(FontFile(GetParam().file).c_str(), 0, GetParam().size, false, false);
  const VuFont font(atlas);
  std::array<int, 6> m;
  atlas->GetFontMetrics(m[0], m[1], m[2], m[3]);
  atlas->GetUnderlineMetrics(m[4], m[5]);
  EXPECT_EQ(m, GetParam().metrics);
  const std::array alone = {font.GetOneLineHeight(), font.GetAscent(), -font.GetDescent(),
                            font.GetMaxAdvance()};
  EXPECT_THAT(alone, testing::ElementsAre(m[0], m[1], m[2], m[3]));
}

ROWS(Metrics,  //
     {.name = "sans", .file = "sans.ttf", .size = 37, .metrics{45, 35, -9, 40, -1, 2}},
     {.name = "no_size", .file = "sans.ttf", .size = 0, .metrics{3, 1, -1, 1, 0, 0}},
     {.name = "large", .file = "cjk.ttf", .size = 300, .metrics{353, 281, -71, 300, -44, 15}},
     {.name = "small", .file = "cjk.ttf", .size = 16, .metrics{20, 15, -4, 16, -1, 1}},
     {.name = "bitmap", .file = "bitmap.bdf", .size = 10, .metrics{11, 8, -2, 12, 0, 0}},
     {.name = "bitmap_of_no_such_size", .file = "bitmap.bdf", .size = 11, .metrics{1}});

const std::string kText = FontFile("README.md"), kPair = FontFile("collection.ttc"),
                  kPipe = testing::TempDir() + "zirk_font_pipe",
                  kUnsupported = ": font format is unsupported ",
                  kUnknown = " FT_Error (0x02) : unknown file format\n",
                  kFromFile = "NewFace: error 1 creating FT font from file ",
                  kNoFace = "NewFace: error 6 creating FT font from file " + kPair +
                            " FT_Error (0x06) : invalid argument\n";

const auto kTextSize = static_cast<unsigned>(helpers::FontBytes("README.md").size());

/// A file or, if that is null, so many bytes of a text; and how the error line begins.
struct Unopened {
  const char* name;
  const char* path = nullptr;
  int faceIndex = 0;
  unsigned size = 0;
  std::string line;
};
class UnopenedFont : public helpers::Rows<Unopened> {};

TEST_P(UnopenedFont, HasNothingAndLogsOneLine) {
  const auto& [name, path, faceIndex, size, line] = GetParam();
  mkfifo(kPipe.c_str(), 0600);
  const std::vector<unsigned char> bytes = helpers::FontBytes("README.md");
  MemoryGraphics graphics;
  const auto run = [&, p = path, i = faceIndex, n = size] {
    const VuFontAtlas font =
        p ? VuFontAtlas(p, i, 9, false, false) : VuFontAtlas(bytes.data(), n, 0, 9, true, false);
    EXPECT_EQ(font.GetFontFace(), nullptr);
    EXPECT_EQ(font.GetOneLineHeight() + font.GetAscent() + font.GetMaxAdvance(), 0);
    EXPECT_EQ(font.GetOneLineWidth("text"), 0);
    EXPECT_EQ(font.GetGlyph('A', true), nullptr);
    EXPECT_EQ(font.GetAtlas(&graphics), nullptr);
  };
  EXPECT_TRUE(helpers::LogsOneError(line, run));
}

ROWS(UnopenedFont,  //
     {.name = "text", .path = kText.c_str(), .line = "NewFace" + kUnsupported + kText + kUnknown},
     {.name = "no_name", .path = "", .line = kFromFile + " FT_Error (0x01) : cannot open resource"},
     {.name = "pipe", .path = kPipe.c_str(), .line = kFromFile + kPipe},
     {.name = "face_2_of_2", .path = kPair.c_str(), .faceIndex = 2, .line = kNoFace},
     {.name = "face_below_0", .path = kPair.c_str(), .faceIndex = -1, .line = kNoFace},
     {.name = "memory", .size = kTextSize, .line = "NewFaceFromMemory" + kUnsupported + "[memory]"},
     {.name = "empty_memory", .line = "NewFaceFromMemory: error "});

TEST_F(FontAtlas, FilesAreOpenedByFtNewFace) {
  helpers::calls.faces.clear();
  const VuFontAtlas font = Open("sans.ttf", 9);
  EXPECT_THAT(helpers::calls.faces, testing::ElementsAre(FontFile("sans.ttf")));
  const std::vector<unsigned char> pair = helpers::FontBytes("collection.ttc");
  const VuFontAtlas second(pair.data(), unsigned(pair.size()), 1, 9, false, false);
  EXPECT_STREQ(second.GetFontFace()->family_name, "ZIRK Test Two");
}

TEST_F(FontAtlas, OddFaces) {
  const auto unmapped = [] { EXPECT_EQ(Open("nounicode.bdf", 10).GetOneLineWidth("A"), 8); };
  EXPECT_THAT(LoggedAt(6, unmapped),
              testing::StartsWith(
                  "<ZIRK.info>: NewFace: couldn't select Unicode encoding, falling back to Latin1\n"
                  "<ZIRK.error>: NewFace: couldn't fallback to Latin1, error 6 FT_Error (0x06) : "
                  "invalid argument\n<ZIRK.info>: VuFontAtlas: font "));
  // Entry 23 of the table belongs to another error.
  const auto unsized = [] { EXPECT_EQ(Open("bitmap.bdf", 11).GetOneLineHeight(), 1); };
  EXPECT_EQ(LoggedAt(3, unsized),
            "<ZIRK.error>: NewFace: cannot set desired pixel height 11 error 23 filename " +
                FontFile("bitmap.bdf") + " FT_Error (0x21) : invalid library handle\n");
  // FreeType refuses glyphs of the largest size. No atlas holds those of the other, which would
  // also take too long to be made bold.
  for (const int size : {-1, 10000}) {
    const VuFontAtlas font = Open("sans.ttf", size, true);
    font.GetAtlas(&graphics);
    const auto render = [&] { EXPECT_FALSE(font.GetGlyph('A', true)->inAtlas); };
    EXPECT_THAT(LoggedAt(4, render),
                testing::HasSubstr(size < 0 ? "LoadGlyph: failed to load glyph from face ZIRK Test "
                                              "Sans Regular glyph 34 FT_Error (0x"
                                            : ".  No room to fit glyph 34 after resize\n"));
    EXPECT_EQ(LoggedAt(4, render), "") << "neither is tried again";
  }
}

TEST_F(FontAtlas, WhatFailedIsTriedAgainOnceTheCachesAreCleared) {
  VuFontAtlas font = Open("sans.ttf", -1);
  font.GetAtlas(&graphics);
  for (int time = 0; time < 2; ++time) {
    helpers::calls.loads.clear();
    for (const bool render : {false, true, true}) font.GetGlyph('A', render);
    EXPECT_EQ(helpers::calls.loads.size(), 2u) << "the first one measures";
    font.SetFallbackFont(nullptr);
  }
}

TEST_F(FontAtlas, WhatNoAtlasHoldsIsMeasuredButNotRendered) {
  constexpr int kLook = FT_LOAD_IGNORE_GLOBAL_ADVANCE_WIDTH, kRender = kLook | FT_LOAD_RENDER;
  const std::tuple<char, Type, float, bool, std::vector<int>> cases[] = {
      {'A', Type::None, 0, false, {kLook, kLook}},
      {'.', Type::None, 0, true, {kLook, kRender, kLook, kRender}},
      {'.', Type::Outer, 900, false, {kLook | FT_LOAD_NO_BITMAP, kLook | FT_LOAD_NO_BITMAP}},
  };
  for (const auto& [code, type, thickness, fits, loads] : cases) {
    SCOPED_TRACE(testing::Message() << code << int(type));
    const FreeType reference(FontFile("sans.ttf"), 3000);
    VuFontAtlas font = Open("sans.ttf", 3000);
    font.SetOutlineType(type);
    font.SetOutlineThickness(thickness);
    helpers::calls.loads.clear();
    const Glyph* const g = Add(font, unsigned(code));
    font.GetAtlas(&graphics);
    for (int time = 0; time < 3; ++time) font.GetGlyph(unsigned(code), true);
    EXPECT_EQ(helpers::calls.loads, loads);
    EXPECT_EQ(g->inAtlas, fits);
    Letter expected = reference.Render(g->index, type, thickness);
    expected.coverage.clear();
    EXPECT_EQ((Letter{g->index, g->left, g->top, g->width, g->height, g->advance, {}}), expected);
  }
}

TEST_F(FontAtlas, WhatStandsInForMissingGlyphs) {
  constexpr unsigned kHan = 0x65E5, kMissing = 0x1F600, kOmega = 0x3A9, kOhm = 0x2126;
  const std::string cjkFile = FontFile("cjk.ttf");
  const unsigned han = FT_Get_Char_Index(cjk.GetFontFace(), kHan);
  VuFontAtlas font = Open("sans.ttf", 20);
  const unsigned mark = FT_Get_Char_Index(font.GetFontFace(), '?');
  EXPECT_EQ(Add(font, kHan)->index, 0u);
  font.SetFallbackGlyph('?');
  EXPECT_EQ(Add(font, kHan)->index, 0u) << "known already";
  EXPECT_EQ(Add(font, kMissing)->charcode, kMissing);
  EXPECT_EQ(Add(font, kMissing)->index, mark);
  EXPECT_EQ(Add(font, '?'), Add(font, kMissing));
  EXPECT_EQ(Add(font, kOhm), Add(font, kOmega));

  const std::vector<unsigned char> bytes = helpers::FontBytes("cjk.ttf");
  const VuFontAtlas fromMemory(bytes.data(), unsigned(bytes.size()), 0, 30, false, false);
  doubles::Font foreign;
  const char* const nothing =
      "<ZIRK.error>: NewFace: error 1 creating FT font from file  FT_Error (0x01) : cannot open "
      "resource\n";
  const std::pair<const VuFontImpl*, const char*> without[] = {
      {nullptr, ""}, {&foreign, ""}, {&fromMemory, nothing}};
  for (const auto& [none, logged] : without) {
    font.SetFallbackFont(std::make_unique<VuFontAtlas>(cjkFile.c_str(), 0, 30, true, false).get());
    const auto atlas = font.GetAtlas(&graphics);
    const Glyph* const glyph = font.GetGlyph(kHan, true);
    EXPECT_EQ(glyph->index, han);
    EXPECT_EQ(Placed(*glyph, *atlas).coverage, FreeType(cjkFile, 30).Render(han).coverage);
    EXPECT_EQ(glyph->top, font.GetAscent() - glyph->face->glyph->bitmap_top);
    EXPECT_EQ(font.GetOneLineWidth("\u65E5"), 30);
    EXPECT_EQ(LoggedAt(6, [&, n = none] { font.SetFallbackFont(n); }), logged);
    EXPECT_EQ(Add(font, kHan)->index, mark);
    EXPECT_EQ(font.GetOneLineWidth("\u65E5"), font.GetOneLineWidth("?"));
    EXPECT_NE(font.GetAtlas(&graphics), atlas);
  }
}

TEST_F(FontAtlas, SaysWhatItWasMadeOf) {
  const std::vector<unsigned char> bytes = helpers::FontBytes("collection.ttc");
  VuFontAtlas font(bytes.data(), unsigned(bytes.size()), 1, -1, true, true);
  const auto isAsked = [](const FontSource& source, const char* path, int face, int size, bool is) {
    EXPECT_STREQ(source.path, path);
    EXPECT_EQ(std::tie(source.faceIndex, source.pixelSize, source.bold, source.italic),
              std::tie(face, size, is, is));
  };
  const FontSource inMemory = font.GetSource();
  isAsked(inMemory, nullptr, 1, -1, true);
  EXPECT_NE(inMemory.data, bytes.data());
  EXPECT_EQ(std::vector(inMemory.data, inMemory.data + inMemory.size), bytes);
  isAsked(VuFontAtlas("no file", -2, 0, false, false).GetSource(), "no file", -2, 0, false);
  font.SetFallbackFont(std::make_unique<VuFontAtlas>(kPair.c_str(), 1, 30, true, true).get());
  isAsked(font.GetFallbackSource(), kPair.c_str(), 1, 30, false);
  for (const VuFontImpl* const none : std::initializer_list<const VuFontImpl*>{&font, nullptr}) {
    font.SetFallbackFont(none);
    isAsked(font.GetFallbackSource(), nullptr, 0, 0, false);
  }
}

TEST_F(FontAtlas, GlyphsStayWhereTheyAre) {
  VuFontAtlas font = Open("sans.ttf", 16);
  std::set<const Glyph*> found;
  for (const Type type : {Type::None, Type::Stroked, Type::Outer, Type::Inner})
    for (int thickness = 1; thickness <= 50; ++thickness) {
      font.SetOutlineType(type);
      font.SetOutlineThickness(float(thickness));
      // The second time the font remembers which outline was the latest.
      for (int time = 0; time < 2; ++time) found.insert(Add(font, 'A'));
    }
  EXPECT_EQ(found.size(), 151u) << "without an outline its thickness is nothing";
  font.SetOutlineType(Type::None);
  const Glyph* const a = Add(font, 'A');
  EXPECT_EQ(found.count(a), 1u);
  for (unsigned code = ' '; code < 0x460; ++code) Add(font, code);
  EXPECT_EQ(Add(font, 'A'), a);
  EXPECT_EQ(a->advance, 11);
}

TEST_F(FontAtlas, WhatIsLookedUpIsLogged) {
  VuFontAtlas font = Open("sans.ttf", 16);
  const auto lookUp = [&] { Add(font, 0x4E41); };
  font.SetFallbackGlyph('?');
  EXPECT_EQ(LoggedAt(7, lookUp),
            "<ZIRK.debug>: AddGlyph: replace with fallback code 0x3f index 32\n"
            "<ZIRK.debug>: LoadGlyph: font " +
                FontFile("sans.ttf") +
                " 20 load glyph 32\n"
                "<ZIRK.debug>: LoadGlyph: 'A' charcode 0x4e41 index 32 width 7 advance 9 left 1 "
                "height 12 top 3\n"
                "<ZIRK.debug>: AddGlyph: inserting glyph 32 outline type 0 outline thickness 0\n"
                "<ZIRK.debug>: AddGlyph: inserting charcode 20033 index 32\n"
                "<ZIRK.info>: AddGlyph: total chars 1 glyphs 1\n");
  EXPECT_EQ(LoggedAt(7, lookUp), "");
  EXPECT_EQ(font.GetOneLineWidth("\u4E41"), 9);
  // The character is known, but not with the new outline.
  font.SetOutlineType(Type::Outer);
  font.SetOutlineThickness(2);
  font.SetFallbackGlyph('!');
  const auto face = static_cast<int>(reinterpret_cast<intptr_t>(font.GetFontFace()));
  EXPECT_EQ(LoggedAt(6, lookUp),
            "<ZIRK.info>: AddGlyph: total chars 1 glyphs 2\n<ZIRK.info>: GetGlyph: glyph " +
                std::to_string(face) + " outline type 32 outline thickness 2 not found\n");
  EXPECT_EQ(font.GetOneLineWidth("\u4E41"), 0);
  const auto measure = [&] { EXPECT_EQ(font.GetOneLineWidth("\x80\xFF"), 0); };
  EXPECT_EQ(LoggedAt(6, measure),
            "<ZIRK.info>: invalid header byte: 0x80\n<ZIRK.info>: GetOneLineWidth: encountered "
            "invalid UTF-8 encoding at 0x80 in the string '\x80\xFF'\n"
            "<ZIRK.info>: invalid header byte: 0xff\n<ZIRK.info>: GetOneLineWidth: encountered "
            "invalid UTF-8 encoding at 0xff in the string '\x80\xFF'\n");
}

/// The width of a line, glyph by glyph.
int WidthOf(const VuFontAtlas& font, const std::string& text) {
  int width = 0;
  const Glyph* previous = nullptr;
  for (size_t at = 0; at < text.size();) {
    int n = 0;
    const unsigned code = GetUtf8Char(&text[at], &n);
    at += size_t(std::max(n, 1));
    const Glyph* const glyph = n > 0 ? font.GetGlyph(code, false) : nullptr;
    if (!glyph) continue;
    if (previous) width += int(font.GetKerning(*previous, *glyph).x >> 6);
    width += glyph->advance;
    previous = glyph;
  }
  return width;
}

TEST_F(FontAtlas, WidthsWithKerning) {
  VuFontAtlas font = Open("sans.ttf", 48);
  const auto width = [&](const std::string& text) { return font.GetOneLineWidth(text.c_str()); };
  FT_Vector kern;
  FT_Get_Kerning(font.GetFontFace(), Add(font, 'A')->index, Add(font, 'V')->index, 0, &kern);
  EXPECT_LT(kern.x, 0);
  EXPECT_EQ(font.GetKerning(*Add(font, 'A'), *Add(Open("sans.ttf", 48), 'V')).x, 0);
  EXPECT_EQ(width("AV"), width("A") + width("V") + int(std::floor(double(kern.x) / 64)));
  EXPECT_EQ(width("") + font.GetOneLineWidth(nullptr), 0);
  const int many = 1 << 20;
  EXPECT_EQ(width(std::string(many, 'n')), width("n") * many);

  font.SetFallbackFont(&cjk);
  std::vector<std::string> parts = {"\u65E5", "\u042F", "\U0001F600", "\xC3", "\xE2\x82"};
  for (const char byte : {'A', 'V', 'T', 'U', 'o', '.', '\x80', '\xFF'})
    parts.emplace_back(1, byte);
  std::mt19937 random(1);
  for (int round = 0; round < 2000; ++round) {
    // More outlines than the font remembers advances for.
    font.SetOutlineType(Type(round % 4));
    font.SetOutlineThickness(float(round % 601) / 64);
    std::string text;
    for (int part = 0; part < 12; ++part) text += parts[random() % parts.size()];
    const int expected = WidthOf(font, text);
    ASSERT_EQ(width(text), expected) << testing::PrintToString(text);
    TextCursor cursor(text.c_str());
    while (font.NextGlyph(cursor, false)) continue;
    ASSERT_EQ(cursor.width, expected) << testing::PrintToString(text);
  }
  // A fallback font may have the address of the one before.
  VuFontAtlas other = Open("cjk.ttf", 30);
  for (const int size : {16, 60}) {
    const VuFontAtlas latin = Open("sans.ttf", size);
    other.SetFallbackFont(&latin);
    EXPECT_EQ(other.GetOneLineWidth("AV"), latin.GetOneLineWidth("AV"));
  }
}

TEST_F(FontAtlas, AGlyphThatLoadsLaterGetsItsAdvance) {
  const VuFontAtlas font = Open("sans.ttf", 48), whole = Open("sans.ttf", 48);
  const int width = whole.GetOneLineWidth("AV"), advance = Add(whole, 'A')->advance;
  helpers::calls.glyphsToRefuse = 1;
  EXPECT_EQ(font.GetOneLineWidth("AV"), width - advance);
  const Glyph* const a = Add(font, 'A');
  EXPECT_EQ(a->advance, 0);
  EXPECT_EQ(font.GetGlyph('A', true), a);
  EXPECT_EQ(a->advance, advance);
  EXPECT_EQ(font.GetOneLineWidth("AV"), width);
}

TEST_F(FontAtlas, MeasuringWhatIsKnownWaitsForNobody) {
  VuFontAtlas font = Open("sans.ttf", 16);
  for (const Type type : {Type::None, Type::Outer}) {
    font.SetFallbackFont(nullptr);
    font.SetOutlineType(type);
    font.GetOneLineWidth("AVA");
    std::future<int> width;
    // While the font loads its glyphs.
    graphics.onCreate = [&] {
      width = std::async(std::launch::async, [&] { return font.GetOneLineWidth("AVA"); });
      EXPECT_EQ(width.wait_for(std::chrono::seconds(10)), std::future_status::ready);
    };
    font.GetAtlas(&graphics);
  }
}

TEST_F(FontAtlas, SanitizedAnyThreadLoadsAndMeasures) {
  VuFontAtlas font = Open("sans.ttf", 16);
  font.SetOutlineType(Type::Outer);
  const auto prepare = [&](int round) {
    font.SetFallbackFont(nullptr);
    font.SetOutlineThickness(float(round) / 64);
    if (round % 2 == 0) font.GetOneLineWidth("A V T L Y K O P R");
  };
  const auto use = [&](bool backwards) {
    font.GetOneLineWidth(backwards ? "TAVATAR" : "VLYKOPA");
    font.GetAtlas(&graphics);
  };
  helpers::InRounds(300, prepare, use);
}

TEST_F(FontAtlas, TheAtlasGrowsUntilItIsFull) {
  const helpers::Symbols symbols;
  constexpr int kFb = TypeCode(BackendType::FB);
  for (const int type : {kFb, 0}) {
    graphics.type = type;
    graphics.heights.clear();
    const VuFontAtlas font(symbols.Path(), 0, symbols.kSize, false, false);
    const auto atlas = font.GetAtlas(&graphics);
    EXPECT_EQ(font.GetAtlas(nullptr), atlas);
    EXPECT_EQ(graphics.format, VuPixelFormat::A8);
    unsigned there = 0;
    const std::string full = LoggedAt(4, [&] {
      for (unsigned code = 0xE000; code < 0xE000 + symbols.kCount; ++code) {
        const Glyph* const g = font.GetGlyph(code, true);
        const auto x = float(g->x), y = float(g->y), height = float(atlas->GetHeight());
        if (!g->inAtlas) continue;
        ++there;
        EXPECT_THAT((std::array{g->u0, g->v0}), testing::ElementsAre(x / 2048, 1 - y / height));
        EXPECT_EQ(g->u1, (x + float(g->width)) / 2048);
        EXPECT_EQ(g->v1, 1 - (y + float(g->height)) / height);
      }
    });
    // A row of 50 pixels holds 40. An atlas that begins anew with each row is never full.
    for (size_t i = 0; i < 10; ++i) EXPECT_EQ(graphics.heights[i], 2 + 50 * int(i));
    EXPECT_EQ(atlas->GetHeight(), type == kFb ? 2048 : 452);
    const std::string name = symbols.Path() + (" " + std::to_string(font.GetOneLineHeight()));
    EXPECT_EQ(Surface(*atlas).name, name) << "as the first one";
    EXPECT_EQ(std::count(graphics.heights.begin(), graphics.heights.end(), 2048), type == kFb);
    EXPECT_GE(there, type == kFb ? 1560u : 40u);
    EXPECT_EQ(full.find("LoadGlyph: GetRegion(50x50) returned 0x0.  No room to fit glyph 1700 "
                        "after resize\n") != std::string::npos,
              type == kFb);
  }
}

TEST_F(FontAtlas, AFullAtlasIsEmptiedOnceOrKept) {
  const helpers::Symbols symbols;
  const VuFontAtlas font(symbols.Path(), 0, symbols.kSize, false, false);
  const FreeType reference(symbols.Path(), symbols.kSize);
  const auto atlas = font.GetAtlas(&graphics);
  /// Draws symbols until `count` of them are left out.
  const auto leaveOut = [&](int symbol, size_t count) {
    std::vector<const Glyph*> out;
    for (; out.size() < count; ++symbol) {
      const std::string text = symbols.Text(symbol % symbols.kCount);
      TextCursor cursor(text.c_str());
      const Glyph* const glyph = font.NextGlyph(cursor, true);
      if (!glyph->inAtlas) out.push_back(glyph);
    }
    return out;
  };
  const auto first = leaveOut(0, 2);
  EXPECT_EQ(LoggedAt(4, [&] { leaveOut(0, 2); }), "") << "they are not tried again";
  for (const Glyph* const glyph : first) EXPECT_EQ(font.PlaceLeftOut(*glyph), nullptr);
  EXPECT_TRUE(first[0]->inAtlas && first[1]->inAtlas) << "emptied for the first alone";
  EXPECT_FALSE(Add(font, 0xE000)->inAtlas);
  for (const Glyph* const glyph : leaveOut(0, 3)) {
    const auto alone = font.PlaceLeftOut(*glyph);
    EXPECT_FALSE(glyph->inAtlas);
    EXPECT_EQ(reinterpret_cast<const MemoryBitmap&>(*alone).pixels,
              reference.Render(glyph->index).coverage);
  }
  // Until emptying the atlas costs no more than drawing them alone has cost.
  const Glyph* const last = leaveOut(0, 1)[0];
  int alone = 3;
  while (font.PlaceLeftOut(*last)) ++alone;
  EXPECT_TRUE(last->inAtlas);
  EXPECT_NEAR(alone, 1600, 50);
}

TEST_F(FontAtlas, TheAtlasGrowsBeforeTheContextIsAskedForItsType) {
  const VuFontAtlas font = Open("sans.ttf", 24);
  font.GetAtlas(&graphics);
  font.GetGlyph('A', true);
  graphics.onCreate = [this] { graphics.type = 0; };
  unsigned code = 'A';
  while (graphics.type != 0) ASSERT_TRUE(font.GetGlyph(++code, true)->inAtlas);
  EXPECT_FALSE(Add(font, 'A')->inAtlas) << "the atlas was not emptied";
}

TEST_F(FontAtlas, WithoutMemoryForTheAtlas) {
  const VuFontAtlas font = Open("sans.ttf", 24);
  const auto atlas = font.GetAtlas(&graphics);
  EXPECT_EQ(LoggedAt(6, [&] { font.GetGlyph('A', true); }),
            "<ZIRK.info>: LoadGlyph: GetRegion(19x20) for glyph 34 returned 0x0\n"
            "<ZIRK.info>: AddGlyph: total chars 1 glyphs 1\n");
  // Where it cannot grow, it begins anew.
  graphics.highest = 60;
  unsigned code = 'A';
  while (Add(font, 'A')->inAtlas) ASSERT_TRUE(font.GetGlyph(++code, true)->inAtlas);
  EXPECT_GT(code, unsigned('Z'));
  const FreeType reference(FontFile("sans.ttf"), 24);
  for (const unsigned c : {code, unsigned('A')}) {
    const Glyph* const g = font.GetGlyph(c, true);
    EXPECT_EQ(Placed(*g, *atlas), reference.Render(g->index));
  }

  const VuFontAtlas none = Open("sans.ttf", 24);
  graphics.highest = 0;
  EXPECT_EQ(none.GetAtlas(&graphics)->GetHeight(), 0);
  EXPECT_THAT(LoggedAt(6, [&] { EXPECT_FALSE(none.GetGlyph('A', true)->inAtlas); }),
              testing::StartsWith("<ZIRK.info>: LoadGlyph: texture atlas allocation failure\n"));
}

}  // namespace
}  // namespace ZIRK
