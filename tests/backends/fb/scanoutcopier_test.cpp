#include "fb/scanoutcopier.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace ZIRK::backends {
namespace {

TEST(ScanoutCopier, TurnsEachPixelToItsPlace) {
  constexpr int kWidth = 70, kHeight = 37;  // Of the display: more than two tiles, and an odd rest.
  for (const auto format : {PIXMAN_x8r8g8b8, PIXMAN_b8g8r8, PIXMAN_r5g6b5})
    for (const auto rotation :
         {Rotation::None, Rotation::Quarter, Rotation::Half, Rotation::ThreeQuarters}) {
      const DeviceLayout layout = LayoutOf(format);
      const size_t bytes = layout.BytesPerPixel(), pitch = kWidth * bytes + 4;
      ScanoutCopier copier(layout, kWidth, kHeight, rotation);
      std::vector<uint32_t> picture(kWidth * kHeight);
      for (size_t i = 0; i < picture.size(); ++i)
        picture[i] = static_cast<uint32_t>(i * 2654435761u) & 0xF8FCF8u;
      std::vector<uint8_t> memory(pitch * kHeight, 0xEE);
      const Box part = {3, 2, copier.Width() - 1, copier.Height() - 2};
      ASSERT_TRUE(copier.SetSource(reinterpret_cast<uint8_t*>(picture.data()), copier.Width() * 4,
                                   VuPixelFormat::XRGB8888, part));
      copier.Copy(part, memory.data(), pitch);
      const Box shown = copier.OnDisplay(part);
      for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x) {
          int fromX = x, fromY = y;
          if (rotation == Rotation::Quarter) fromX = y, fromY = kWidth - 1 - x;
          if (rotation == Rotation::Half) fromX = kWidth - 1 - x, fromY = kHeight - 1 - y;
          if (rotation == Rotation::ThreeQuarters) fromX = kHeight - 1 - y, fromY = x;
          ASSERT_EQ(part.Contains(fromX, fromY), shown.Contains(x, y));
          const uint32_t word =
              layout.Pack(picture[static_cast<size_t>(fromY * copier.Width() + fromX)]);
          uint32_t expected = 0xEEEEEEEE, seen = 0xEEEEEEEE;
          if (part.Contains(fromX, fromY)) std::memcpy(&expected, &word, bytes);
          std::memcpy(&seen,
                      &memory[static_cast<size_t>(y) * pitch + static_cast<size_t>(x) * bytes],
                      bytes);
          ASSERT_EQ(seen, expected) << x << ", " << y << " turned " << static_cast<int>(rotation);
        }
    }
}

}  // namespace
}  // namespace ZIRK::backends
