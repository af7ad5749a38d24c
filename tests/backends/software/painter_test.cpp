#include "software/painter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "software/pixeltransfer.h"

namespace ZIRK::backends {
namespace {

TEST(Painter, PixelsMayBeSomebodyElsesAndMove) {
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
    CopyRect(read, {0, 0}, pixels, {1, 1, 2, 1});
    EXPECT_EQ(read.Row32(0)[1], 0xFF0000FFu);
  }
}

}  // namespace
}  // namespace ZIRK::backends
