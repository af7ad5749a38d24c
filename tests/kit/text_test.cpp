#include <gtest/gtest.h>
#include <zirk/kit/text.h>

#include <algorithm>
#include <string>

#include "kit/stage.h"

namespace ZIRK::kit {
namespace {

/// As if it were terminated there, at any length and with kerning between the pieces it goes in.
TEST(Text, NeedsNoTerminator) {
  std::string text;
  while (text.size() < 2300) text += "AVATAR Tö LT, WA\u2026";
  text.replace(700, 1, "\xFF");
  Stage stage;
  for (size_t size = 0; size < text.size();
       size += size < 20 || (size > 505 && size < 520) ? 1 : 97) {
    const size_t start = std::min<size_t>(size, size % 7);
    const std::string terminated = text.substr(start, size - start);
    const std::string_view view(text.data() + start, size - start);
    EXPECT_EQ(GetWidth(Sans(), view), WidthOf(terminated)) << size;
    const VuPoint at{390 - WidthOf(terminated), 20};
    DrawText(*stage.drawn, Sans(), view, at, white);
    stage.expected->DrawText(Sans(), terminated.c_str(), at, white);
    const VuTransform t(9, 40, 1, 1.5f, 0);
    DrawText(*stage.drawn, Sans(), view, at, 0x80FF0000, t);
    stage.expected->DrawText(Sans(), terminated.c_str(), at, 0x80FF0000, t);
    stage.Compare();
  }
  EXPECT_EQ(GetWidth(Sans(), std::string_view("A\0V", 3)), WidthOf("AV"));
  EXPECT_EQ(GetWidth(Sans(), std::string_view()), 0);
  EXPECT_EQ(GetWidth(Sans(), std::string(2000, '\xFF')), 0);
}

}  // namespace
}  // namespace ZIRK::kit
