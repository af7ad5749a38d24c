#pragma once

#include <gtest/gtest.h>
#include <zirk/zirk.h>

#include <memory>
#include <string>

#include "helpers/fonts.h"
#include "helpers/pixels.h"

namespace ZIRK::kit {

inline const VuFont& Sans() {
  static const VuFont font(helpers::FontFile("sans.ttf").c_str(), 0, 16);
  return font;
}

inline int WidthOf(const std::string& text) {
  return Sans().GetOneLineWidth(text.c_str());
}

/// Two surfaces, one for what the kit draws and one for what the library draws.
struct Stage {
  std::unique_ptr<VuGraphics> graphics{VuGraphics::Create("FB", false)};
  std::unique_ptr<VuBitmap> drawn = New(), expected = New();

  std::unique_ptr<VuBitmap> New() {
    return std::unique_ptr<VuBitmap>(graphics->CreateBitmap(400, 160, VuPixelFormat::ARGB8888));
  }
  void Compare() {
    EXPECT_TRUE(helpers::PixelsOf(*drawn) == helpers::PixelsOf(*expected));
    drawn->Clear();
    expected->Clear();
  }
};

}  // namespace ZIRK::kit
