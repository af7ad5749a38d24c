// Surfaces in memory: text where glyph atlases come to their limits, and pixels of somebody else's.

#include <gtest/gtest.h>
#include <zirk/vutextureatlasimpl.h>

#include <algorithm>
#include <string>
#include <vector>

#include "fb/fbgraphics.h"
#include "helpers/fonts.h"
#include "helpers/logged.h"
#include "stub/stubgraphics.h"

namespace ZIRK::backends {
namespace {

using helpers::Symbols;

constexpr int kWidth = 160, kHeight = 60;

VuFontAtlas Open() {
  return {Symbols().Path(), 0, Symbols::kSize, false, false};
}

/// A context's memory budget, and what makes atlases within it.
struct Context {
  explicit Context(uint64_t bytes) : budget(MemoryBudget::Create(bytes)) {}

  std::vector<uint32_t> Draw(VuFontImpl& font, const char* text) const {
    SoftwareBitmap target(MemoryBudget::Create(1 << 20)->Reserve(kWidth, kHeight, {}), kWidth,
                          kHeight, VuPixelFormat::ARGB8888, sources);
    target.DrawText(&font, text, {2, 2}, white, VuTMatrix2D<float>(), nullptr, nullptr, {});
    std::vector<uint32_t> pixels(kWidth * kHeight);
    target.GetPixels({0, 0, kWidth, kHeight}, pixels.data());
    return pixels;
  }

  std::shared_ptr<MemoryBudget> budget;
  std::shared_ptr<PixelSources> sources =
      std::make_shared<FbSources>(budget, TypeCode(BackendType::FB));
};

const std::vector<uint32_t> kNothing(kWidth* kHeight);

TEST(TextDrawing, AnAtlasThatMayNotGrowIsEmptiedAndFilledAgain) {
  VuFontAtlas tight = Open(), free = Open();
  // Room for one row of glyphs, and not for the copy that growth takes.
  tight.GetOneLineWidth(Symbols::Text(0).c_str());
  const Context small(2048 * 60), large(1 << 24);
  for (int i = 0; i < 120; ++i) {
    std::string text;
    for (int symbol = i; symbol < i + 3; ++symbol) text += Symbols::Text(symbol % 100);
    const std::vector<uint32_t> expected = large.Draw(free, text.c_str());
    ASSERT_NE(expected, kNothing);
    ASSERT_EQ(small.Draw(tight, text.c_str()), expected) << i;
  }
  EXPECT_LT(small.budget->Available(), 2048u * 20);
}

TEST(TextDrawing, NeedsAnAtlasOfItsOwnKind) {
  StubGraphics stub;
  const std::string text = Symbols::Text(1);
  VuFontAtlas foreign = Open(), orphan = Open();
  foreign.GetAtlas(&stub);
  const Context context(1 << 24);
  // The other font's atlas got no bitmap, and whoever was to make it has gone.
  EXPECT_EQ(Context(100).Draw(orphan, text.c_str()), kNothing);
  for (VuFontAtlas* font : {&foreign, &orphan}) {
    EXPECT_TRUE(helpers::LogsOneError("glyph atlas", [&] { context.Draw(*font, text.c_str()); }));
    EXPECT_EQ(context.Draw(*font, text.c_str()), kNothing);
  }
}

TEST(Painting, PixelsMayBeSomebodyElsesAndMove) {
  SurfaceState state{3, 2, VuPixelFormat::RGB565};
  PixelBuffer pixels = PixelBuffer::Elsewhere(3, 2, VuPixelFormat::RGB565);
  Painter painter(pixels, state);
  const VuTMatrix2D<float> identity;
  PixelBuffer glass(3, 2, VuPixelFormat::RGB565);
  ClearPixels(glass, VuColor{0xFF0000FF});
  for (const int pitch : {8, 12}) {
    std::vector<uint16_t> memory(static_cast<size_t>(pitch), 7);
    pixels.PlaceAt(memory.data(), pitch);
    painter.DrawRect({0, 0, 3, 1}, VuColor{0xFFFF0000}, identity, nullptr);
    // By way of Pixman, which keeps a description of the pixels.
    painter.DrawObject({1, 1, 2, 1}, {&glass, {}}, {0, 0, 2, 1}, Edges::OnWholePixels, identity,
                       white, nullptr);
    std::vector<uint16_t> expected(memory.size(), 7);
    std::fill_n(expected.begin(), 3, uint16_t{0xF800});
    std::fill_n(expected.begin() + pitch / 2 + 1, 2, uint16_t{0x001F});
    EXPECT_EQ(memory, expected) << pitch;
    PixelBuffer read(3, 2, VuPixelFormat::ARGB8888);
    CopyPixels(read, {0, 0}, pixels, {1, 1, 2, 1});
    EXPECT_EQ(read.Row32(0)[1], 0xFF0000FFu);
  }
}

}  // namespace
}  // namespace ZIRK::backends
