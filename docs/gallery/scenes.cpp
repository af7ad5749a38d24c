#include "gallery/scenes.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace ZIRK::gallery {

namespace {

using BitmapPtr = std::unique_ptr<VuBitmap>;
using Factor = VuBlendingFactor;
using Format = VuPixelFormat;

constexpr VuColor kRed{0xFFE04030}, kGreen{0xFF30C060}, kBlue{0xFF3060E0}, kYellow{0xFFF0D040};
constexpr VuColor kHalfWhite{0x80FFFFFF};

BitmapPtr New(VuGraphics& g, int width, int height, Format format = Format::ARGB8888) {
  return BitmapPtr(g.CreateBitmap(width, height, format));
}

/// A coloured checkerboard with a white frame of one pixel, opaque or not.
BitmapPtr Board(VuGraphics& g, int size, Format format = Format::ARGB8888, uint32_t alpha = 0xFF) {
  BitmapPtr board = New(g, size, size, format);
  board->Clear(VuColor{alpha << 24 | 0xFFFFFF});
  board->SetBlendEnabled(false);
  const int cell = size / 8;
  for (int y = 1; y < size - 1; ++y)
    for (int x = 1; x < size - 1; ++x) {
      const auto shade = static_cast<uint32_t>(255 * x / size) << 16 |
                         static_cast<uint32_t>(255 * y / size) << 8 |
                         ((x / cell + y / cell) % 2 ? 0xC0u : 0x20u);
      board->DrawRect(VuRect{x, y, 1, 1}, VuColor{alpha << 24 | shade});
    }
  board->SetBlendEnabled(true);
  return board;
}

/// Coverage that falls off from the middle, in an A8 bitmap.
BitmapPtr Disc(VuGraphics& g, int size) {
  BitmapPtr disc = New(g, size, size, Format::A8);
  std::vector<uint8_t> row(static_cast<size_t>(size));
  for (int y = 0; y < size; ++y) {
    for (int x = 0; x < size; ++x) {
      const double distance = std::hypot(x + 0.5 - size / 2.0, y + 0.5 - size / 2.0);
      const double alpha = std::fmin(1, std::fmax(0, (size / 2.0 - distance) / 4));
      row[static_cast<size_t>(x)] = static_cast<uint8_t>(std::lround(alpha * 255));
    }
    disc->SetPixels(VuRect{0, y, size, 1}, row.data(), static_cast<unsigned>(size));
  }
  return disc;
}

void Points(VuGraphics&, VuBitmap& t) {
  for (int i = 0; i < 12; ++i) {
    t.DrawPoint(VuPoint{8 + i * 15, 12}, static_cast<float>(i) * 0.75f + 0.5f, kYellow);
    t.DrawPoint(VuPoint{8 + i * 15, 36}, static_cast<float>(i) + 1, kHalfWhite);
  }
  t.DrawPoint(VuPoint{0, 0}, 20, kRed, VuTransform(60, 90, 2, 1, 0));
  t.DrawPoint(VuPoint{0, 0}, 24, kGreen, VuTransform(120, 90, 1, 1, 30));
}

void Lines(VuGraphics&, VuBitmap& t) {
  for (int i = 0; i < 24; ++i) {
    const double angle = i * 3.14159265358979 / 12;
    const VuPoint end{60 + static_cast<int>(std::lround(50 * std::cos(angle))),
                      70 + static_cast<int>(std::lround(50 * std::sin(angle)))};
    t.DrawLine(VuPoint{60, 70}, end, kHalfWhite);
  }
  // The same lines there and back, which is seen if they differ: half of white twice.
  for (int i = 0; i < 6; ++i) {
    t.DrawLine(VuPoint{130, 20 + i * 7}, VuPoint{180, 24 + i * 15}, VuColor{0x8030C060});
    t.DrawLine(VuPoint{180, 24 + i * 15}, VuPoint{130, 20 + i * 7}, VuColor{0x8030C060});
  }
  t.DrawLine(VuPoint{-1000, 130}, VuPoint{1000, 140}, kRed);
  t.DrawLine(VuPoint{0, 0}, VuPoint{10, 4}, kYellow, VuTransform(10, 10, 4, 2, 0));
  t.DrawLine(VuPoint{150, 120}, VuPoint{150, 120}, kYellow);
}

void Rectangles(VuGraphics&, VuBitmap& t) {
  t.DrawRect(VuRect{10, 10, 70, 50}, kRed);
  t.DrawRect(VuRect{40, 30, 70, 50}, VuColor{0x8030C060});
  t.DrawRect(VuRect{70, 50, 70, 50}, VuColor{0x403060E0});
  for (int i = 0; i < 16; ++i) t.DrawRect(VuRect{8 + i * 11, 110, i, 24}, kYellow);
}

void TurnedRectangles(VuGraphics&, VuBitmap& t) {
  for (int i = 0; i < 12; ++i)
    t.DrawRect(VuRect{20, -6, 42, 12}, VuColor{0xC0F0D040},
               VuTransform(70, 72, 1, 1, static_cast<float>(i) * 30));
  VuTMatrix2D<float> sheared;
  sheared.translate({150, 72});
  sheared.rotate(0.5f);
  sheared.scale({1.5f, 0.5f});
  sheared.rotate(0.8f);
  t.DrawRect(VuRect{-20, -20, 40, 40}, kGreen, sheared);
}

void Blits(VuGraphics& g, VuBitmap& t) {
  const BitmapPtr board = Board(g, 32), glass = Board(g, 32, Format::ARGB8888, 0x90);
  t.DrawObject(VuRect{8, 8, 32, 32}, *board);
  t.DrawObject(VuRect{48, 8, 32, 32}, *glass);
  t.DrawObject(VuRect{88, 8, 16, 16}, *board, VuRect{8, 8, 16, 16});
  t.DrawObject(VuRect{-10, 60, 32, 32}, *board);
  t.DrawObject(VuRect{8, 100, 32, 32}, *board, VuRect{0, 0, 32, 32}, VuTransform(),
               VuColor{0xFFFF8000});
  t.DrawObject(VuRect{48, 100, 32, 32}, *board, VuRect{0, 0, 32, 32}, VuTransform(),
               VuColor{0x60FFFFFF});
  t.DrawObject(VuRect{40, 50, 32, 32}, *board, VuTransform(0.4f, 0.6f, 1, 1, 0));
  t.DrawObject(VuRect{0, 0, 32, 32}, *board, VuTransform(144, 8, -1, 1, 0));
  t.DrawObject(VuRect{0, 0, 32, 32}, *board, VuTransform(150, 40, 1, 1, 90));
  t.DrawObject(VuRect{0, 0, 32, 32}, *board, VuTransform(184, 90, 1, -1.5f, 180));
}

void Scaled(VuGraphics& g, VuBitmap& t) {
  const BitmapPtr board = Board(g, 24);
  for (int i = 0; i < 2; ++i) {
    board->SetScaleMode(i ? VuScaleMode::Bilinear : VuScaleMode::Nearest);
    t.DrawObject(VuRect{4, 4 + i * 70, 61, 53}, *board);
    t.DrawObject(VuRect{70, 4 + i * 70, 13, 17}, *board);
    t.DrawObject(VuRect{90, 4 + i * 70, 60, 60}, *board, VuRect{6, 6, 6, 6});
    t.DrawObject(VuRect{70, 30 + i * 70, 24, 24}, *board, VuTransform(80, 40, -0.34f, 0.61f, 0));
  }
}

void Turned(VuGraphics& g, VuBitmap& t) {
  const BitmapPtr board = Board(g, 40), glass = Board(g, 40, Format::ARGB8888, 0x80);
  board->SetScaleMode(VuScaleMode::Bilinear);
  t.DrawObject(VuRect{-20, -20, 40, 40}, *board, VuTransform(40, 40, 1.3f, 1.3f, 30));
  t.DrawObject(VuRect{-20, -20, 40, 40}, *glass, VuTransform(110, 40, 1.2f, 1.2f, -20));
  t.DrawObject(VuRect{-20, -20, 40, 40}, *board, VuRect{5, 5, 20, 20},
               VuTransform(50, 105, 1, 1, 45), VuColor{0xFF80FFFF});
  t.DrawObject(VuRect{-20, -20, 40, 40}, *board, VuTransform(130, 105, 2, 0.7f, 160));
}

void SubPixel(VuGraphics& g, VuBitmap& t) {
  const BitmapPtr board = Board(g, 32);
  board->SetScaleMode(VuScaleMode::Bilinear);
  for (int i = 0; i < 4; ++i) {
    const float offset = static_cast<float>(i) * 0.25f;
    t.DrawObject(
        VuTRect2D<float>(8 + static_cast<float>(i) * 44 + offset, 8 + offset, 36.5f, 36.5f), *board,
        VuTRect2D<float>(0, 0, 32, 32), VuTMatrix2D<float>(), white);
    t.DrawObject(VuTRect2D<float>(8 + static_cast<float>(i) * 44, 60, 32, 32), *board,
                 VuTRect2D<float>(offset * 4, offset * 4, 20.5f, 20.5f), VuTMatrix2D<float>(),
                 white);
  }
  t.DrawObject(VuTRect2D<float>(-15.5f, -15.5f, 31, 31), *board, VuTRect2D<float>(0, 0, 32, 32),
               VuTransform(40, 118, 1, 1, 12), white);
}

void Masked(VuGraphics& g, VuBitmap& t) {
  const BitmapPtr board = Board(g, 48), disc = Disc(g, 48), glass = Board(g, 24);
  const VuRect all{0, 0, 48, 48};
  t.DrawObject(VuRect{4, 4, 48, 48}, *board, all, VuTransform(), white, *disc, nullptr);
  t.DrawRect(VuRect{60, 4, 48, 48}, kRed, VuTransform(), *disc, nullptr);
  disc->SetScaleMode(VuScaleMode::Bilinear);
  t.DrawRect(VuRect{116, 4, 72, 48}, kGreen, VuTransform(), *disc, nullptr);
  VuTVector2D<float> part[4] = {{0, 0}, {24, 0}, {24, 24}, {0, 24}};
  t.DrawRect(VuRect{4, 60, 40, 40}, kYellow, VuTransform(), *disc, part);
  VuTVector2D<float> turned[4] = {{24, 0}, {48, 24}, {24, 48}, {0, 24}};
  t.DrawObject(VuRect{52, 60, 48, 48}, *board, all, VuTransform(), white, *disc, turned);
  t.DrawObject(VuRect{-24, -24, 48, 48}, *board, all, VuTransform(145, 95, 1.2f, 1.2f, 25), white,
               *disc, nullptr);
  VuTVector2D<float> ends[2] = {{0, 24}, {24, 24}};
  for (int i = 0; i < 8; ++i)
    t.DrawLine(VuPoint{4, 110 + i * 4}, VuPoint{100, 112 + i * 4}, white, VuTransform(), *disc,
               ends);
  for (int i = 0; i < 8; ++i)
    t.DrawPoint(VuPoint{110 + i * 9, 138}, 6, white, VuTransform(), *disc,
                {static_cast<float>(i) * 3, 24});
}

void Blending(VuGraphics& g, VuBitmap& t) {
  const BitmapPtr glass = Board(g, 16, Format::ARGB8888, 0xA0);
  const BitmapPtr layer = New(g, kWidth, kHeight);
  for (int i = 0; i < 8; ++i)
    layer->DrawRect(VuRect{i * 24, 0, 24, kHeight},
                    VuColor{static_cast<uint32_t>(i * 36) << 24 | 0x40C0FF});
  layer->SetBlendColor(VuColor{0x80FF8040});
  constexpr Factor kPairs[][2] = {{Factor::One, Factor::One},
                                  {Factor::DstColor, Factor::Zero},
                                  {Factor::SrcAlpha, Factor::OneMinusSrcAlpha},
                                  {Factor::DstAlpha, Factor::OneMinusSrcAlpha},
                                  {Factor::OneMinusDstAlpha, Factor::SrcAlpha},
                                  {Factor::SrcAlphaSaturate, Factor::One},
                                  {Factor::BlendColor, Factor::OneMinusBlendAlpha},
                                  {Factor::OneMinusDstColor, Factor::One}};
  for (int row = 0; row < 8; ++row) {
    layer->SetBlendingFunc(kPairs[row][0], kPairs[row][1]);
    for (int i = 0; i < 8; ++i) layer->DrawObject(VuRect{4 + i * 24, 1 + row * 18, 16, 16}, *glass);
  }
  t.DrawObject(VuRect{0, 0, kWidth, kHeight}, *layer);
}

void BlendingOff(VuGraphics& g, VuBitmap& t) {
  const BitmapPtr glass = Board(g, 40, Format::ARGB8888, 0x60), disc = Disc(g, 40);
  const BitmapPtr layer = New(g, kWidth, kHeight);
  layer->Clear(kBlue);
  layer->SetBlendEnabled(false);
  layer->DrawObject(VuRect{8, 8, 40, 40}, *glass);
  layer->DrawRect(VuRect{56, 8, 40, 40}, kHalfWhite);
  layer->DrawRect(VuRect{104, 8, 40, 40}, kRed, VuTransform(), *disc, nullptr);
  layer->DrawRect(VuRect{-20, -20, 40, 40}, kHalfWhite, VuTransform(40, 100, 1, 1, 20));
  t.DrawObject(VuRect{0, 0, kWidth, kHeight}, *layer);
}

void Clipped(VuGraphics& g, VuBitmap& t) {
  const BitmapPtr board = Board(g, 64);
  board->SetScaleMode(VuScaleMode::Bilinear);
  for (int i = 0; i < 6; ++i) {
    t.SetClippingRect(VuRect{4 + i % 3 * 62, 4 + i / 3 * 70, 54, 62});
    t.DrawObject(VuRect{i * 10, i * 5, 120, 120}, *board);
    t.DrawRect(VuRect{-50, -50, 100, 100}, VuColor{0x80F0D040},
               VuTransform(30 + static_cast<float>(i) * 30, 70, 1, 1, 30));
    t.DrawLine(VuPoint{0, i * 20}, VuPoint{kWidth, kHeight - i * 20}, white);
  }
}

void OntoItself(VuGraphics& g, VuBitmap& t) {
  const BitmapPtr board = Board(g, 48);
  t.DrawObject(VuRect{8, 8, 48, 48}, *board);
  t.DrawObject(VuRect{20, 20, 48, 48}, t, VuRect{8, 8, 48, 48});
  t.DrawObject(VuRect{90, 10, 90, 120}, t, VuRect{0, 0, 90, 80});
  t.CopyPixels(VuPoint{4, 90}, t, VuRect{10, 60, 60, 50});
  t.CopyPixels(VuPoint{16, 96}, t, VuRect{4, 90, 60, 40});
}

void Formats(VuGraphics& g, VuBitmap& t) {
  constexpr Format kFormats[] = {Format::ARGB8888, Format::XRGB8888, Format::RGB565,
                                 Format::ARGB4444, Format::ARGB1555, Format::A8};
  const BitmapPtr glass = Board(g, 20, Format::ARGB8888, 0xA0);
  for (int i = 0; i < 6; ++i) {
    const BitmapPtr canvas = New(g, 28, 60, kFormats[i]);
    canvas->Clear(VuColor{0xC02060A0});
    canvas->DrawObject(VuRect{4, 4, 20, 20}, *glass);
    canvas->DrawRect(VuRect{-8, -8, 16, 16}, kHalfWhite, VuTransform(14, 44, 1, 1, 30));
    t.DrawObject(VuRect{4 + i * 31, 4, 28, 60}, *canvas);
    t.CopyPixels(VuPoint{4 + i * 31, 74}, *canvas, VuRect{0, 0, 28, 60});
  }
}

void Images(VuGraphics& g, VuBitmap& t) {
  constexpr struct {
    const char* file;
    int width, height;
    VuDisplayMode mode;
  } kImages[] = {{"rgba8.png", 60, 60, VuDisplayMode::Fit},
                 {"rgb.jpg", 60, 40, VuDisplayMode::Stretch},
                 {"palette8.png", 9, 9, VuDisplayMode::Stretch},
                 {"rgba8interlaced.png", 100, 100, VuDisplayMode::Natural}};
  int x = 4;
  for (const auto& image : kImages) {
    const std::string path = std::string(ZIRK_GALLERY_IMAGES) + image.file;
    const BitmapPtr own(g.CreateBitmapFromFile(path.c_str()));
    const BitmapPtr fitted(g.CreateBitmapFromFile(path.c_str(), image.width, image.height,
                                                  VuScaleMode::Bilinear, image.mode));
    if (!own || !fitted) continue;
    t.DrawObject(VuRect{x, 4, own->GetBounds().width, own->GetBounds().height}, *own);
    t.DrawObject(VuRect{x, 72, fitted->GetBounds().width, fitted->GetBounds().height}, *fitted);
    x += 47;
  }
}

}  // namespace

const std::vector<Scene>& Scenes() {
  static const std::vector<Scene> scenes = [] {
    std::vector<Scene> all = {
        {"points", Points},
        {"lines", Lines},
        {"rectangles", Rectangles},
        {"turned_rectangles", TurnedRectangles},
        {"blits", Blits},
        {"scaled", Scaled},
        {"turned", Turned},
        {"sub_pixel", SubPixel},
        {"masked", Masked},
        {"blending", Blending},
        {"blending_off", BlendingOff},
        {"clipped", Clipped},
        {"onto_itself", OntoItself},
        {"formats", Formats},
        {"images", Images},
    };
    for (const Scene& scene : TextScenes()) all.push_back(scene);
    for (const Scene& scene : ShapeScenes()) all.push_back(scene);
    return all;
  }();
  return scenes;
}

const Scene& SceneCalled(const char* name) {
  const std::vector<Scene>& all = Scenes();
  return *std::find_if(all.begin(), all.end(),
                       [=](const Scene& scene) { return scene.name == std::string(name); });
}

}  // namespace ZIRK::gallery
