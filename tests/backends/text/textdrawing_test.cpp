// Text whose glyph atlas another context has made, on surfaces in memory.

#include <gtest/gtest.h>
#include <zirk/vutextureatlasimpl.h>

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
                          kHeight, VuPixelFormat::ARGB8888, resolver);
    target.DrawText(&font, text, {2, 2}, white, VuTMatrix2D<float>(), nullptr, nullptr, {});
    std::vector<uint32_t> pixels(kWidth * kHeight);
    target.GetPixels({0, 0, kWidth, kHeight}, pixels.data());
    return pixels;
  }

  std::shared_ptr<MemoryBudget> budget;
  std::shared_ptr<PixelSourceResolver> resolver =
      std::make_shared<FbSourceResolver>(budget, TypeCode(BackendType::FB));
};

const std::vector<uint32_t> kNothing(kWidth* kHeight);

TEST(TextDrawing, NeedsAnAtlasOfItsOwnKind) {
  StubGraphics stub;
  const std::string text = Symbols::Text(1);
  VuFontAtlas foreign = Open(), orphan = Open();
  foreign.GetAtlas(&stub);
  const Context context(1 << 24);
  // The other font's atlas has no bitmap, and the context that was to make it is gone.
  EXPECT_EQ(Context(100).Draw(orphan, text.c_str()), kNothing);
  for (VuFontAtlas* font : {&foreign, &orphan}) {
    EXPECT_TRUE(helpers::LogsOneError("glyph atlas", [&] { context.Draw(*font, text.c_str()); }));
    EXPECT_EQ(context.Draw(*font, text.c_str()), kNothing);
  }
}

}  // namespace
}  // namespace ZIRK::backends
