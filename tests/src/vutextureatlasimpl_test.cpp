#include <gmock/gmock.h>
#include <zirk/backend.h>

#include <string>
#include <utility>

#include "doubles/mocks.h"
#include "helpers/logged.h"

namespace ZIRK {
namespace {

using helpers::LoggedAt;
using testing::Return;

const std::string kFailed = ": bitmap allocation failed\n";
using Size = std::pair<int, int>;

TEST(TextureAtlas, GrowsToANewBitmapOrNotAtAll) {
  auto *const first = new doubles::Bitmap, *const second = new doubles::Bitmap;
  doubles::Graphics graphics;
  EXPECT_CALL(graphics, CreateBitmap(100, 50, VuPixelFormat::A8)).WillOnce(Return(first));
  EXPECT_CALL(graphics, CreateBitmap(100, 60, VuPixelFormat::A8));
  EXPECT_CALL(graphics, CreateBitmap(2048, 2048, VuPixelFormat::A8)).WillOnce(Return(second));
  VuTextureAtlasImpl atlas(&graphics, 100, 50, VuPixelFormat::A8);
  EXPECT_EQ(atlas.GetRegion(100, 50), (BinRect{0, 0, 100, 50}));
  for (const auto& [width, height] : {Size{2049, 10}, {10, 2049}, {100, 60}}) {
    const auto grow = [&, w = width, h = height] { EXPECT_EQ(atlas.Resize(w, h), Size(100, 50)); };
    EXPECT_EQ(LoggedAt(4, grow), width == 100 ? "<ZIRK.warning>: Resize" + kFailed : "");
  }
  EXPECT_EQ(atlas.GetRegion(1, 1), (BinRect{}));

  EXPECT_CALL(*first, SetName(testing::StrEq("font")));
  atlas.SetName("font");
  EXPECT_CALL(*first, GetBounds).WillOnce(Return(VuRect{1, 2, 3, 4}));
  EXPECT_CALL(*second, SetName(testing::StrEq("font")));
  EXPECT_CALL(*second, CopyPixels(VuPoint{}, first, VuRect{1, 2, 3, 4}));
  EXPECT_EQ(atlas.Resize(2048, 2048), Size(2048, 2048));
  EXPECT_EQ(atlas.GetRegion(100, 1998), (BinRect{0, 50, 100, 1998}));
  EXPECT_CALL(*second, SetPixels(VuRect{1, 2, 3, 4}, first, 5));
  const auto use = [&] {
    atlas.SetRegion(1, 2, 3, 4, nullptr, 5), atlas.SetRegion(1, 2, 3, 4, first, 5);
    atlas.Reset(), atlas.GetRegion(1, 2);
  };
  const std::string line = "<ZIRK.debug>: SetRegion: font 1,2 3x4\n";
  EXPECT_EQ(LoggedAt(7, use),
            line + line + "<ZIRK.debug>: GetRegion: font 1x2\n<ZIRK.debug>: Insert: 0,0 1x2\n");
}

TEST(TextureAtlas, HasNoRegionsWithoutABitmap) {
  doubles::Graphics graphics;
  EXPECT_CALL(graphics, CreateBitmap);
  const auto use = [&] {
    VuTextureAtlasImpl atlas(&graphics, 100, 50, VuPixelFormat::A8);
    atlas.SetName(nullptr);
    atlas.SetRegion(1, 2, 3, 4, this, 5);
    EXPECT_EQ(atlas.Resize(10, 10).first + atlas.GetHeight() + atlas.GetRegion(-1, -1).height, 0);
  };
  EXPECT_EQ(LoggedAt(4, use), "<ZIRK.warning>: VuTextureAtlasImpl" + kFailed);
}

}  // namespace
}  // namespace ZIRK
