#pragma once

#include <gtest/gtest.h>
#include <zirk/zirk.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <memory>
#include <optional>
#include <random>
#include <tuple>
#include <utility>
#include <vector>

#include "scenes/backends.h"
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

/// Fills `part` of `bitmap` with many colours and alphas, the same every time: as pixels, or if
/// `locked` in its memory.
inline void FillWithNoise(VuBitmap& bitmap, VuRect part, unsigned seed, bool locked = false) {
  Random random(seed);
  const model::Layout& layout = model::LayoutOf(bitmap.GetInfo().format);
  const auto width = static_cast<size_t>(part.width) * layout.bytes;
  // Every other time it lies between words.
  const size_t offset = locked ? 0 : seed % 2;
  std::vector<uint8_t> rows(offset);
  for (int i = 0; i < part.width * part.height; ++i) {
    const uint32_t alphas[] = {255, 0, random() & 255, 128}, alpha = random.Of(alphas);
    uint32_t word = 0;
    for (const size_t c : {0, 1, 2, 3}) {
      const uint32_t value = c == 3 ? alpha : random() % (alpha + 1);
      // A8 has alpha where others have blue.
      if (layout.bytes > 1 || c == 3) word |= value >> (8 - layout.bits[c]) << layout.shift[c];
    }
    for (size_t byte = 0; byte < layout.bytes; ++byte)
      rows.push_back(static_cast<uint8_t>(word >> 8 * byte));
  }
  if (!locked || !bitmap.Lock()) {
    bitmap.SetPixels(part, rows.data() + offset, static_cast<unsigned>(width));
    return;
  }
  const VuBitmapInfo info = bitmap.GetInfo();
  for (int y = 0; y < part.height; ++y)
    std::copy_n(rows.data() + static_cast<size_t>(y) * width, width,
                static_cast<uint8_t*>(info.pixels) + ptrdiff_t{part.y + y} * info.pitch +
                    static_cast<size_t>(part.x) * layout.bytes);
  bitmap.Unlock();
}

// Roundings on the way: of the colour, of its product with coverage, of the blend.
constexpr double kSteps = 2.01;
// A filter's weights have 8 bits, which is half a step more for each axis.
constexpr double kFilterSteps = 3.01;
// Coverage has 8 bits, and is rounded once more.
constexpr double kEdgeSteps = 4;

/// Whether the source is multiplied by itself, which doubles its error.
inline bool MultipliesSourceByItself(const model::Factors& f) {
  const auto depends = [](VuBlendingFactor factor) {
    return (factor >= VuBlendingFactor::SrcColor && factor <= VuBlendingFactor::OneMinusSrcAlpha) ||
           factor == VuBlendingFactor::SrcAlphaSaturate;
  };
  return depends(f.srcColor) || depends(f.srcAlpha);
}

inline std::tuple<double, double, double, double> Numbers(const VuRect& r) {
  return {r.x, r.y, r.width, r.height};
}

inline std::tuple<double, double, double, double> Numbers(const VuTRect2D<float>& r) {
  return {r.x(), r.y(), r.width(), r.height()};
}

struct MaskArgument {
  const VuBitmap* bitmap = nullptr;
  VuTVector2D<float>* coords = nullptr;  ///< Four, two of a line, one of a point; or null.
};

/// Draws on a bitmap and checks every pixel after every operation against the model. The model
/// starts each time from what the bitmap held, so that errors do not add up.
class ModelCheck {
 public:
  /// Without `looking` it only draws, and reads nothing.
  ModelCheck(std::unique_ptr<VuBitmap> target, const char* backend, bool looking = true)
      : onlyDropsBits_(IsReference(backend)), looking_(looking), target_(std::move(target)) {
    FillWithNoise(*target_, target_->GetBounds(), 1);
  }

  VuBitmap& Target() { return *target_; }

  void SetFactors(model::Factors f) {
    factors_ = f;
    target_->SetBlendingFunc(f.srcColor, f.dstColor, f.srcAlpha, f.dstAlpha);
  }

  void DrawPoint(VuPoint at, float size, VuColor color, VuTMatrix2D<float> m, MaskArgument mask) {
    model::Operation op = Operation(m, color);
    op.width = op.height = double(size);
    op.x = at.x + 0.5 - op.width / 2;
    op.y = at.y + 0.5 - op.height / 2;
    VuTVector2D<float> everywhere[4];
    if (mask.bitmap) std::fill_n(everywhere, 4, mask.coords[0]);
    Check(op, nullptr, {mask.bitmap, everywhere}, [&](const auto&... through) {
      if constexpr (sizeof...(through) > 0)
        target_->DrawPoint(at, size, color, m, *mask.bitmap, mask.coords[0]);
      else
        target_->DrawPoint(at, size, color, m);
    });
  }

  void DrawLine(VuPoint from, VuPoint to, VuColor color, VuTMatrix2D<float> m, MaskArgument mask) {
    model::Operation op = Operation(m, color);
    op.line = true;
    std::tie(op.x, op.y, op.width, op.height) =
        Numbers(VuRect{from.x, from.y, to.x - from.x, to.y - from.y});
    Check(op, nullptr, mask,
          [&](const auto&... through) { target_->DrawLine(from, to, color, m, through...); });
  }

  void DrawRect(VuRect r, VuColor color, VuTMatrix2D<float> m = {}, MaskArgument mask = {}) {
    model::Operation op = Operation(m, color);
    std::tie(op.x, op.y, op.width, op.height) = Numbers(r);
    Check(op, nullptr, mask,
          [&](const auto&... through) { target_->DrawRect(r, color, m, through...); });
  }

  void DrawObject(VuRect dst, VuBitmap& src, VuRect srcRect, VuTMatrix2D<float> m = {},
                  VuColor color = white, MaskArgument mask = {}) {
    Blit(Operation(m, color), dst, src, srcRect, mask);
  }

  void DrawSubPixel(VuTRect2D<float> dst, VuBitmap& src, VuTRect2D<float> srcRect,
                    VuTMatrix2D<float> m = {}, VuColor color = white, MaskArgument mask = {}) {
    model::Operation op = Operation(m, color);
    op.subPixel = true;
    Blit(op, dst, src, srcRect, mask);
  }

  void CopyPixels(VuPoint at, VuBitmap& src, VuRect part) {
    model::Operation op;
    std::tie(op.x, op.y, op.width, op.height) =
        Numbers(VuRect{at.x, at.y, part.width, part.height});
    std::tie(op.srcX, op.srcY, op.srcWidth, op.srcHeight) = Numbers(part);
    op.blend = false;
    op.clip = target_->GetBounds();
    Check(op, &src, {}, [&](const auto&...) { target_->CopyPixels(at, src, part); });
  }

 private:
  model::Operation Operation(VuTMatrix2D<float> m, VuColor color) const {
    model::Operation op;
    op.matrix = m;
    op.color = color;
    op.blend = target_->GetBlendEnabled();
    op.factors = factors_;
    op.blendColor = target_->GetBlendColor();
    op.clip = target_->GetClippingRect();
    return op;
  }

  template <class Rect>
  void Blit(model::Operation op, Rect dst, VuBitmap& src, Rect srcRect, MaskArgument mask) {
    std::tie(op.x, op.y, op.width, op.height) = Numbers(dst);
    std::tie(op.srcX, op.srcY, op.srcWidth, op.srcHeight) = Numbers(srcRect);
    Check(op, &src, mask, [&](const auto&... through) {
      target_->DrawObject(dst, src, srcRect, op.matrix, op.color, through...);
    });
  }

  /// `draw` takes the arguments for the mask, if there is one.
  template <typename F>
  void Check(model::Operation op, VuBitmap* src, const MaskArgument& mask, F&& draw) {
    const auto run = [&] { mask.bitmap ? draw(*mask.bitmap, mask.coords) : draw(); };
    if (!looking_) return run();
    const model::Picture before(*target_);
    std::optional<model::Picture> source, masked;
    if (src) op.source = {&source.emplace(*src), src->GetScaleMode() == VuScaleMode::Bilinear};
    if (mask.bitmap) {
      op.mask = {&masked.emplace(const_cast<VuBitmap&>(*mask.bitmap)),
                 mask.bitmap->GetScaleMode() == VuScaleMode::Bilinear};
      op.maskCoords = mask.coords;
    }
    run();
    const model::Picture after(*target_);
    const std::vector<model::Outcome> expected = model::Draw(op, before);
    for (size_t i = 0; i < expected.size() && !testing::Test::HasFailure(); ++i)
      CheckPixel(op, expected[i], before, after, int(i) % after.width, int(i) / after.width);
  }

  void CheckPixel(const model::Operation& op, const model::Outcome& expected,
                  const model::Picture& before, const model::Picture& after, int x, int y) {
    // So little may be rounded to nothing, or to something, which is much where blending is off.
    const bool little = expected.partly && expected.share * 255 < kEdgeSteps;
    if (little || expected.ambiguous) return;
    const std::array<int, 4>& bits = model::LayoutOf(after.format).bits;
    const bool filtered = op.source.bilinear || op.mask.bilinear;
    const double precision =
        (filtered ? kFilterSteps : kSteps) * (MultipliesSourceByItself(op.factors) ? 2 : 1);
    const double tolerance = expected.partly ? kEdgeSteps : expected.share > 0 ? precision : 0.01;
    for (size_t c = after.format == VuPixelFormat::A8 ? 3 : 0; c < 4 && bits[c] > 0; ++c) {
      // A narrow channel stands for all values that it may have been narrowed from: by dropping
      // bits, or with some drivers of OpenGL by rounding to the nearest level.
      const double most = (1 << bits[c]) - 1, level = std::round(after.At(x, y)[c] * most);
      const double step = 256 >> bits[c], nearest = level * 255 / most, half = 127.5 / most;
      double low = level, high = level;
      if (bits[c] < 8) {
        low = onlyDropsBits_ ? level * step : std::min(level * step, nearest - half);
        high = onlyDropsBits_ ? (level + 1) * step : std::max((level + 1) * step, nearest + half);
      }
      const double value = expected.value[c] * 255;
      ASSERT_TRUE(value >= low - tolerance && value <= high + tolerance)
          << "pixel (" << x << ", " << y << ") channel "
          << "RGBA"[c] << ": drawn " << after.At(x, y)[c] * 255 << ", expected " << value
          << ", before " << before.At(x, y)[c] * 255;
    }
  }

  const bool onlyDropsBits_;  ///< Narrow formats are never rounded to.
  const bool looking_;
  std::unique_ptr<VuBitmap> target_;
  model::Factors factors_{VuBlendingFactor::One, VuBlendingFactor::OneMinusSrcAlpha,
                          VuBlendingFactor::One, VuBlendingFactor::OneMinusSrcAlpha};
};

}  // namespace ZIRK::scenes
