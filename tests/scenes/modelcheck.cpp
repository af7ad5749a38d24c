#include "scenes/modelcheck.h"

#include <algorithm>
#include <cmath>
#include <tuple>
#include <vector>

#include "scenes/backends.h"

namespace ZIRK::scenes {

namespace {

// Roundings on the way: of the colour, of its product with coverage, of the blend.
constexpr double kSteps = 2.01;
// A filter's weights have 8 bits, which is half a step more for each axis.
constexpr double kFilterSteps = 3.01;
// The model looks at 16 x 16 points of a pixel; a slanted edge may miss a row of them.
constexpr double kEdgeSteps = 13;

/// Which doubles the error that the source came with.
bool MultipliesSourceByItself(const model::Factors& f) {
  const auto depends = [](VuBlendingFactor factor) {
    return (factor >= VuBlendingFactor::SrcColor && factor <= VuBlendingFactor::OneMinusSrcAlpha) ||
           factor == VuBlendingFactor::SrcAlphaSaturate;
  };
  return depends(f.srcColor) || depends(f.srcAlpha);
}

std::tuple<double, double, double, double> Numbers(const VuRect& r) {
  return {r.x, r.y, r.width, r.height};
}

std::tuple<double, double, double, double> Numbers(const VuTRect2D<float>& r) {
  return {r.x(), r.y(), r.width(), r.height()};
}

}  // namespace

ModelCheck::ModelCheck(VuGraphics& graphics, int width, int height, VuPixelFormat format,
                       const char* backend)
    : onlyDropsBits_(IsReference(backend)), target_(NewTarget(graphics, width, height, format)) {
  FillWithNoise(*target_, 1);
}

void ModelCheck::SetFactors(model::Factors f) {
  factors_ = f;
  target_->SetBlendingFunc(f.srcColor, f.dstColor, f.srcAlpha, f.dstAlpha);
}

void ModelCheck::SetBlendColor(VuColor color) {
  target_->SetBlendColor(color);
}

void ModelCheck::DrawRect(VuRect r, VuColor color, VuTMatrix2D<float> m, MaskArgument mask) {
  model::Operation op;
  std::tie(op.x, op.y, op.width, op.height) = Numbers(r);
  op.matrix = m;
  op.color = color;
  Check(op, nullptr, mask, [&] {
    if (mask.bitmap)
      target_->DrawRect(r, color, m, *mask.bitmap, mask.coords);
    else
      target_->DrawRect(r, color, m);
  });
}

template <class Rect>
void ModelCheck::Blit(model::Operation op, Rect dst, VuBitmap& src, Rect srcRect,
                      VuTMatrix2D<float> m, VuColor color, MaskArgument mask) {
  std::tie(op.x, op.y, op.width, op.height) = Numbers(dst);
  std::tie(op.srcX, op.srcY, op.srcWidth, op.srcHeight) = Numbers(srcRect);
  op.matrix = m;
  op.color = color;
  Check(op, &src, mask, [&] {
    if (mask.bitmap)
      target_->DrawObject(dst, src, srcRect, m, color, *mask.bitmap, mask.coords);
    else
      target_->DrawObject(dst, src, srcRect, m, color);
  });
}

void ModelCheck::DrawObject(VuRect dst, VuBitmap& src, VuRect srcRect, VuTMatrix2D<float> m,
                            VuColor color, MaskArgument mask) {
  Blit({}, dst, src, srcRect, m, color, mask);
}

void ModelCheck::DrawSubPixel(VuTRect2D<float> dst, VuBitmap& src, VuTRect2D<float> srcRect,
                              VuTMatrix2D<float> m, VuColor color, MaskArgument mask) {
  model::Operation op;
  op.subPixel = true;
  Blit(op, dst, src, srcRect, m, color, mask);
}

void ModelCheck::CopyPixels(VuPoint at, VuBitmap& src, VuRect part) {
  model::Operation op;
  std::tie(op.x, op.y, op.width, op.height) = Numbers(VuRect{at.x, at.y, part.width, part.height});
  std::tie(op.srcX, op.srcY, op.srcWidth, op.srcHeight) = Numbers(part);
  const bool blended = target_->GetBlendEnabled();
  target_->SetBlendEnabled(false);
  Check(op, &src, {}, [&] { target_->CopyPixels(at, src, part); });
  target_->SetBlendEnabled(blended);
}

template <typename F>
void ModelCheck::Check(model::Operation op, VuBitmap* src, const MaskArgument& mask, F&& draw) {
  const model::Picture before(*target_);
  std::unique_ptr<model::Picture> source, masked;
  if (src) {
    source = std::make_unique<model::Picture>(*src);
    op.source = {source.get(), src->GetScaleMode() == VuScaleMode::Bilinear};
  }
  if (mask.bitmap) {
    masked = std::make_unique<model::Picture>(const_cast<VuBitmap&>(*mask.bitmap));
    op.mask = {masked.get(), mask.bitmap->GetScaleMode() == VuScaleMode::Bilinear};
    op.maskCoords = mask.coords;
  }
  op.blend = target_->GetBlendEnabled();
  op.factors = factors_;
  op.blendColor = target_->GetBlendColor();
  op.clip = target_->GetClippingRect();
  draw();
  const model::Picture after(*target_);
  for (int y = 0; y < after.height && !testing::Test::HasFailure(); ++y)
    for (int x = 0; x < after.width && !testing::Test::HasFailure(); ++x)
      CheckPixel(op, before, after, x, y);
}

void ModelCheck::CheckPixel(const model::Operation& op, const model::Picture& before,
                            const model::Picture& after, int x, int y) {
  const model::Outcome expected = model::Draw(op, before, x, y);
  if (!expected.touched && expected.near) return;
  if (expected.ambiguous) return;
  const std::array<int, 4>& bits = model::LayoutOf(after.format).bits;
  const bool filtered = op.source.bilinear || op.mask.bilinear;
  const double precision =
      (filtered ? kFilterSteps : kSteps) * (MultipliesSourceByItself(op.factors) ? 2 : 1);
  const double tolerance = expected.partly ? kEdgeSteps : expected.touched ? precision : 0.01;
  for (size_t c = after.format == VuPixelFormat::A8 ? 3 : 0; c < 4 && bits[c] > 0; ++c) {
    // A narrow channel stands for all values that it may have been narrowed from: by dropping bits,
    // or with some drivers of OpenGL by rounding to the nearest level.
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

void FillWithNoise(VuBitmap& bitmap, unsigned seed) {
  const VuRect bounds = bitmap.GetBounds();
  Random random(seed);
  const bool blended = bitmap.GetBlendEnabled();
  bitmap.SetBlendEnabled(false);
  for (int y = 0; y < bounds.height; ++y)
    for (int x = 0; x < bounds.width; ++x) {
      const uint32_t alphas[] = {0xFF000000u, 0, random() & 0xFF000000u, 0x80000000u};
      bitmap.DrawRect(VuRect{x, y, 1, 1}, VuColor{alphas[random() % 4] | (random() & 0x00FFFFFFu)});
    }
  bitmap.SetBlendEnabled(blended);
}

}  // namespace ZIRK::scenes
