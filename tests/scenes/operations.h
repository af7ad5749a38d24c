#pragma once

#include <cstring>
#include <memory>
#include <vector>

#include "scenes/backends.h"

namespace ZIRK::scenes {

constexpr int kOperationWidth = 40, kOperationHeight = 30;

/// What operations read, and sometimes write.
struct Sources {
  explicit Sources(VuGraphics& g)
      : bitmap(g.CreateBitmap(kOperationWidth, kOperationHeight, VuPixelFormat::ARGB8888)),
        narrow(g.CreateBitmap(kOperationWidth, kOperationHeight, VuPixelFormat::ARGB1555)),
        font("sans.ttf", 14) {
    Fill();
  }
  void Fill() {
    bitmap->Clear(VuColor{0x80408020});
    narrow->Clear(white);
  }

  const std::unique_ptr<VuBitmap> bitmap, narrow;
  const TestFont font;
  const VuRect all = bitmap->GetBounds(), place{7, 5, 9, 8}, part{0, 0, 9, 8}, less{0, 0, 3, 3};
  const VuPoint at{7, 5}, across{30, 5}, away{30, 15};
  const VuTransform turned{5, 20, 1, 1, 30};
  const VuTVector2D<float> texel{1, 1};
};

struct Operation {
  const char* name;
  /// Draws on a surface of that size that is not empty.
  void (*run)(VuBitmap& b, Sources& s);
};

/// One of each kind, all of which change the surface.
inline const Operation kOperations[] = {
    {"a rectangle", [](auto& b, auto& s) { b.DrawRect(s.place, white); }},
    {"a slanted rectangle", [](auto& b, auto& s) { b.DrawRect(s.place, white, s.turned); }},
    {"a masked rectangle",
     [](auto& b, auto& s) { b.DrawRect(s.place, white, VuTransform(), *s.bitmap, nullptr); }},
    {"a rectangle through itself",
     [](auto& b, auto& s) { b.DrawRect(s.all, white, VuTransform(), b, nullptr); }},
    {"a point", [](auto& b, auto& s) { b.DrawPoint(s.at, 3, white); }},
    {"a point through itself",
     [](auto& b, auto& s) { b.DrawPoint(s.away, 5, white, VuTransform(), b, s.texel); }},
    {"a line", [](auto& b, auto& s) { b.DrawLine(s.at, s.across, white); }},
    {"a slanted line", [](auto& b, auto& s) { b.DrawLine(s.at, s.away, white); }},
    {"a masked line",
     [](auto& b, auto& s) { b.DrawLine(s.at, s.away, white, VuTransform(), *s.bitmap, nullptr); }},
    {"a bitmap", [](auto& b, auto& s) { b.DrawObject(s.place, *s.bitmap, s.part); }},
    {"a scaled bitmap", [](auto& b, auto& s) { b.DrawObject(s.place, *s.bitmap, s.less); }},
    {"a slanted bitmap", [](auto& b, auto& s) { b.DrawObject(s.all, *s.narrow, s.all, s.turned); }},
    {"itself", [](auto& b, auto& s) { b.DrawObject(s.place, b, s.all); }},
    {"itself onto a bitmap",
     [](auto& b, auto& s) {
       s.bitmap->DrawObject(s.all, b, s.all);
       b.DrawObject(s.all, *s.bitmap, s.all);
     }},
    {"text", [](auto& b, auto& s) { b.DrawText(s.font, "g", s.at, white); }},
    {"slanted text", [](auto& b, auto& s) { b.DrawText(s.font, "g", s.at, white, s.turned); }},
    {"masked text",
     [](auto& b, auto& s) {
       b.DrawText(s.font, "g", s.at, white, VuTransform(), *s.bitmap, nullptr, VuRect{});
     }},
    {"pixels",
     [](auto& b, auto& s) {
       std::vector<uint32_t> pixels(kOperationWidth * kOperationHeight, 0xFF112233);
       b.SetPixels(s.place, pixels.data(), 4 * kOperationWidth);
       s.narrow->SetPixels(s.place, pixels.data(), 4 * kOperationWidth);
       b.GetPixels(s.all, pixels.data());
       s.narrow->GetPixels(s.all, pixels.data());
       b.DrawObject(s.less, *s.narrow, s.place);
     }},
    {"copied pixels", [](auto& b, auto& s) { b.CopyPixels(s.at, *s.bitmap, s.part); }},
    {"copied narrow pixels", [](auto& b, auto& s) { b.CopyPixels(s.at, *s.narrow, s.part); }},
    {"copies of copies",
     [](auto& b, auto& s) {
       b.CopyPixels({20, 10}, *s.narrow, s.all);
       b.CopyPixels({1, 1}, b, {19, 9, 20, 20});
       s.bitmap->CopyPixels({2, 2}, b, s.all);
       b.DrawObject(s.place, *s.bitmap, s.place);
     }},
    {"a locked surface",
     [](auto& b, auto&) {
       if (b.Lock()) std::memset(b.GetInfo().pixels, 0xFF, 9), b.Unlock();
     }},
    {"the end of a frame",
     [](auto& b, auto&) {
       b.Clear(white);
       b.SetName("target");
       b.Flush();
       b.Finish();
     }},
};

}  // namespace ZIRK::scenes
