#pragma once

#include <gtest/gtest.h>
#include <zirk/zirk.h>

#include <cstdint>
#include <memory>
#include <random>

#include "scenes/model.h"

namespace ZIRK::scenes {

/// Numbers that are the same everywhere.
class Random {
 public:
  explicit Random(uint32_t seed) : engine_(seed) {}
  uint32_t operator()() { return static_cast<uint32_t>(engine_()); }

 private:
  std::mt19937 engine_;
};

struct MaskArgument {
  const VuBitmap* bitmap = nullptr;
  VuTVector2D<float>* coords = nullptr;  ///< Four, or null.
};

/// Draws on a bitmap and checks every pixel after every operation against the model. The model
/// starts each time from what the bitmap held, so that errors do not add up.
class ModelCheck {
 public:
  ModelCheck(VuGraphics& graphics, int width, int height, VuPixelFormat format,
             const char* backend);

  /// The bitmap, to set its state.
  VuBitmap& Target() { return *target_; }

  void SetFactors(model::Factors factors);
  void SetBlendColor(VuColor color);

  void DrawRect(VuRect rect, VuColor color, VuTMatrix2D<float> m = {}, MaskArgument mask = {});
  void DrawObject(VuRect dst, VuBitmap& src, VuRect srcRect, VuTMatrix2D<float> m = {},
                  VuColor color = white, MaskArgument mask = {});
  void DrawSubPixel(VuTRect2D<float> dst, VuBitmap& src, VuTRect2D<float> srcRect,
                    VuTMatrix2D<float> m = {}, VuColor color = white, MaskArgument mask = {});
  /// The target must have no clipping rectangle.
  void CopyPixels(VuPoint at, VuBitmap& src, VuRect part);

 private:
  template <class Rect>
  void Blit(model::Operation op, Rect dst, VuBitmap& src, Rect srcRect, VuTMatrix2D<float> m,
            VuColor color, MaskArgument mask);
  template <typename F>
  void Check(model::Operation op, VuBitmap* src, const MaskArgument& mask, F&& draw);
  void CheckPixel(const model::Operation& op, const model::Picture& before,
                  const model::Picture& after, int x, int y);

  const bool onlyDropsBits_;  ///< Narrow formats are never rounded to.
  std::unique_ptr<VuBitmap> target_;
  model::Factors factors_{VuBlendingFactor::One, VuBlendingFactor::OneMinusSrcAlpha,
                          VuBlendingFactor::One, VuBlendingFactor::OneMinusSrcAlpha};
};

/// Fills `bitmap` with many colours and alphas, the same every time.
void FillWithNoise(VuBitmap& bitmap, unsigned seed);

}  // namespace ZIRK::scenes
