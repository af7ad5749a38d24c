#pragma once

#include <gtest/gtest.h>
#include <zirk/zirk.h>

#include <cstdint>
#include <iterator>
#include <memory>
#include <random>

#include "scenes/model.h"

namespace ZIRK::scenes {

/// Numbers that are the same everywhere.
class Random {
 public:
  explicit Random(unsigned seed) : engine_(seed) {}
  uint32_t operator()() { return static_cast<uint32_t>(engine_()); }
  bool OneIn(unsigned n) { return (*this)() % n == 0; }
  int From(int low, int high) {
    return low + static_cast<int>((*this)() % static_cast<unsigned>(high - low + 1));
  }
  float Real(float low, float high) {
    return low + static_cast<float>((*this)() % 1000) / 1000 * (high - low);
  }
  template <class Rows>
  auto& Of(Rows& rows) {
    return rows[(*this)() % std::size(rows)];
  }

 private:
  std::mt19937 engine_;
};

struct MaskArgument {
  const VuBitmap* bitmap = nullptr;
  VuTVector2D<float>* coords = nullptr;  ///< Four, two of a line, one of a point; or null.
};

/// Draws on a bitmap and checks every pixel after every operation against the model. The model
/// starts each time from what the bitmap held, so that errors do not add up.
class ModelCheck {
 public:
  /// Without `looking` it only draws, and reads nothing.
  ModelCheck(std::unique_ptr<VuBitmap> target, const char* backend, bool looking = true);

  /// The bitmap, to set its state.
  VuBitmap& Target() { return *target_; }

  void SetFactors(model::Factors factors);

  void DrawPoint(VuPoint at, float size, VuColor color, VuTMatrix2D<float> m, MaskArgument mask);
  void DrawLine(VuPoint from, VuPoint to, VuColor color, VuTMatrix2D<float> m, MaskArgument mask);
  void DrawRect(VuRect rect, VuColor color, VuTMatrix2D<float> m = {}, MaskArgument mask = {});
  void DrawObject(VuRect dst, VuBitmap& src, VuRect srcRect, VuTMatrix2D<float> m = {},
                  VuColor color = white, MaskArgument mask = {});
  void DrawSubPixel(VuTRect2D<float> dst, VuBitmap& src, VuTRect2D<float> srcRect,
                    VuTMatrix2D<float> m = {}, VuColor color = white, MaskArgument mask = {});
  void CopyPixels(VuPoint at, VuBitmap& src, VuRect part);

 private:
  model::Operation Operation(VuTMatrix2D<float> m, VuColor color) const;
  template <class Rect>
  void Blit(model::Operation op, Rect dst, VuBitmap& src, Rect srcRect, MaskArgument mask);
  template <typename F>
  void Check(model::Operation op, VuBitmap* src, const MaskArgument& mask, F&& draw);
  void CheckPixel(const model::Operation& op, const model::Outcome& expected,
                  const model::Picture& before, const model::Picture& after, int x, int y);

  const bool onlyDropsBits_;  ///< Narrow formats are never rounded to.
  const bool looking_;
  std::unique_ptr<VuBitmap> target_;
  model::Factors factors_{VuBlendingFactor::One, VuBlendingFactor::OneMinusSrcAlpha,
                          VuBlendingFactor::One, VuBlendingFactor::OneMinusSrcAlpha};
};

/// Fills `part` of `bitmap` with many colours and alphas, the same every time: as pixels, or if
/// `locked` in its memory.
void FillWithNoise(VuBitmap& bitmap, VuRect part, unsigned seed, bool locked = false);

}  // namespace ZIRK::scenes
