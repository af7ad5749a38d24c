#include <gtest/gtest.h>
#include <zirk/kit/color.h>

#include <cmath>

namespace ZIRK::kit {
namespace {

TEST(Color, MixesChannelByChannel) {
  const VuColor from = 0x00FF8001, to = 0xFF00C002;
  EXPECT_EQ(Mix(from, to, 0), from);
  EXPECT_EQ(Mix(from, to, 1), to);
  EXPECT_EQ(Mix(from, to, 0.25f), 0x40BF9001u);
  EXPECT_EQ(Mix(from, to, 0.5f), 0x8080A002u);
  EXPECT_EQ(Mix(from, to, -7), from);
  EXPECT_EQ(Mix(from, to, HUGE_VALF), to);
  EXPECT_EQ(Mix(from, to, NAN), from);
}

}  // namespace
}  // namespace ZIRK::kit
