#include <gtest/gtest.h>
#include <zirk/backend.h>

#include "doubles/fakeobject.h"
#include "helpers/logged.h"

namespace ZIRK {
namespace {

using namespace doubles;
using helpers::LoggedAt;

const std::string kFailed = ": bitmap allocation failed\n";
using Size = std::pair<int, int>;
const Size old{100, 50}, grown{2048, 2048};

/// Atlases of 100 x 50. A call that no test expects crashes.
struct TextureAtlas : testing::Test {
  static VuBitmapImpl* Create(void*, int width, int height, VuPixelFormat format) {
    return Entry<void>(nullptr, width, height, format), next;
  }
  VuTextureAtlasImpl Make(VuBitmapImpl* bitmap) {
    next = bitmap;
    graphics.Set(5, &Create);
    return VuTextureAtlasImpl(graphics.get(), 100, 50, VuPixelFormat::A8);
  }
  static inline VuBitmapImpl* next;
  FakeObject<VuBitmapImpl> first, second;
  FakeObject<VuGraphicsImpl> graphics;
};

TEST_F(TextureAtlas, GrowsToANewBitmapOrNotAtAll) {
  VuTextureAtlasImpl atlas = Make(first.get());
  EXPECT_EQ(atlas.GetRegion(100, 50), (BinRect{0, 0, 100, 50}));
  next = nullptr;
  for (const auto& [width, height] : {Size{2049, 10}, {10, 2049}, {100, 60}}) {
    const auto tooMuch = [&, w = width, h = height] { EXPECT_EQ(atlas.Resize(w, h), old); };
    EXPECT_EQ(LoggedAt(4, tooMuch), width == 100 ? "<ZIRK.warning>: Resize" + kFailed : "");
  }
  EXPECT_EQ(atlas.GetRegion(1, 1), (BinRect{}));
  const auto note = +[](void*, const char* name) { received += name; };
  for (auto* surface : {&first, &second}) surface->Set(4, note);
  atlas.SetName("font");
  first.entries[3] = nullptr;
  first.Set(9, &Entry<VuRect>);
  second.Set(38, &Entry<bool, VuPoint, void*, VuRect>);
  received.clear();
  next = second.get();
  EXPECT_EQ(atlas.Resize(2048, 2048), grown);
  EXPECT_EQ(received, "called " + Bytes(2048) + Bytes(2048) + Bytes(VuPixelFormat::A8) + "font" +
                          "called " + "called " + Bytes(VuPoint{}) + Bytes(first.get()) +
                          Bytes(Answer<VuRect>()));
  EXPECT_EQ(first.deleted, 1);
  EXPECT_EQ(atlas.GetRegion(100, 1998), (BinRect{0, 50, 100, 1998}));
  const auto use = [&] {
    atlas.SetRegion(1, 2, 3, 4, nullptr, 5), atlas.Reset(), atlas.GetRegion(1, 2);
  };
  EXPECT_EQ(LoggedAt(7, use),
            "<ZIRK.debug>: SetRegion: font 1,2 3x4\n"
            "<ZIRK.debug>: GetRegion: font 1x2\n<ZIRK.debug>: Insert: 0,0 1x2\n");
}

TEST_F(TextureAtlas, HasNoRegionsWithoutABitmap) {
  const auto use = [&] {
    VuTextureAtlasImpl atlas = Make(nullptr);
    next = first.get();
    atlas.SetName(nullptr);
    atlas.SetRegion(1, 2, 3, 4, this, 5);
    EXPECT_EQ(atlas.Resize(10, 10).first + atlas.GetHeight() + atlas.GetRegion(-1, -1).height, 0);
  };
  EXPECT_EQ(LoggedAt(4, use), "<ZIRK.warning>: VuTextureAtlasImpl" + kFailed);
}

}  // namespace
}  // namespace ZIRK
