#pragma once

#include <zirk/zirk.h>

#include <memory>

namespace ZIRK::showcase {

using BitmapPtr = std::unique_ptr<VuBitmap>;
using Matrix = VuTMatrix2D<float>;

/// Bitmaps that are drawn with rather than looked at. All are filtered bilinearly.

/// Coverage of a rounded rectangle that fills `width` x `height` but for `margin` on each side; its
/// edge fades out over `softness` pixels.
struct RoundedShape {
  int width, height;
  float radius;
  float margin = 0;
  float softness = 1;
};
BitmapPtr MakeRounded(VuGraphics& graphics, const RoundedShape& shape);

/// Coverage of its outline, `line` pixels wide.
BitmapPtr MakeOutline(VuGraphics& graphics, const RoundedShape& shape, float line);

/// A round spot of light, white in the middle, for additive drawing.
BitmapPtr MakeGlow(VuGraphics& graphics, int size);

/// A strip from `first` to `last`, to be stretched: upright or lying.
BitmapPtr MakeGradient(VuGraphics& graphics, VuColor first, VuColor last, bool isUpright = true);

/// `a` at 0, `b` at 1, and the colours between, channel by channel.
VuColor Mix(VuColor a, VuColor b, float t);

/// Places what is drawn around (0, 0) at (x, y), turned counter-clockwise and scaled.
Matrix At(float x, float y, float degrees = 0, float scale = 1);

/// A straight stroke of any width, with smooth edges.
void DrawStroke(VuBitmap& target, VuTVector2D<float> from, VuTVector2D<float> to, float width,
                VuColor color);

/// While it lives, what is drawn is added to what is there.
class Additive {
 public:
  explicit Additive(VuBitmap& target) : target_(target) {
    target_.SetBlendingFunc(VuBlendingFactor::One, VuBlendingFactor::One);
  }
  ~Additive() {
    target_.SetBlendingFunc(VuBlendingFactor::One, VuBlendingFactor::OneMinusSrcAlpha);
  }
  Additive(const Additive&) = delete;
  Additive& operator=(const Additive&) = delete;

 private:
  VuBitmap& target_;
};

/// While it lives, nothing is drawn outside `rect`.
class Clipped {
 public:
  Clipped(VuBitmap& target, VuRect rect) : target_(target), before_(target.GetClippingRect()) {
    target_.SetClippingRect(rect);
  }
  ~Clipped() { target_.SetClippingRect(before_); }
  Clipped(const Clipped&) = delete;
  Clipped& operator=(const Clipped&) = delete;

 private:
  VuBitmap& target_;
  const VuRect before_;
};

}  // namespace ZIRK::showcase
