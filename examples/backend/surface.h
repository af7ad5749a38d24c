#pragma once

#include <zirk/backend.h>

#include <array>
#include <cstdint>
#include <iosfwd>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace ZIRK::plain {

class Surface;
using Matrix = VuTMatrix2D<float>;

/// The surfaces of a context. It outlives them.
struct LiveSurfaces {
  std::mutex mutex;
  std::set<const Surface*> surfaces;
};

struct Point {
  double x, y;
};
struct Box {
  double x, y, width, height;
};

/// Pixels to read from: those of another surface, or a copy of this one's.
struct Texture {
  const uint32_t* pixels;
  int width, height;
  bool smooth;

  /// Premultiplied blue, green, red, alpha from 0 to 1. Reads nothing outside `limits`.
  std::array<double, 4> Sample(Point at, const Box& limits) const;
};

/// The form to which all drawing operations are reduced: a rectangle, mapped by a matrix, in one
/// colour or in the pixels of a source multiplied with it, and perhaps through a mask.
struct Operation {
  Box box;
  Matrix matrix;
  VuColor color;
  bool wholePixels = true;  ///< Whether upright edges are rounded to whole pixels.
  Surface* source = nullptr;
  Box part{};  ///< The part of the source.
  bool smooth = false;
  Surface* mask = nullptr;
  std::array<Point, 4> maskCorners{};
};

/// A surface in memory, of format ARGB8888 or A8. Every pixel is stored as premultiplied ARGB. For
/// A8 all four channels hold the alpha: it is drawn as white with that alpha.
///
/// The base is virtual, so that a screen has only one.
class Surface : public virtual VuBitmapImpl {
 public:
  Surface(LiveSurfaces& live, int width, int height, VuPixelFormat format);
  ~Surface() override;

  void SetName(const char* name) override;
  void Clear() override { Clear({0}); }
  void Clear(VuColor color) override;

  VuBitmapInfo GetInfo() const override;
  uint32_t GetSize() const override { return static_cast<uint32_t>(pixels_.size() * 4); }
  VuRect GetBounds() const override { return {0, 0, width_, height_}; }
  VuRect GetClippingRect() const override { return clip_; }
  void SetClippingRect(VuRect rect) override { clip_ = rect; }
  void GetBlendingFunc(VuBlendingFactor& src, VuBlendingFactor& dst) const override;
  void SetBlendingFunc(VuBlendingFactor src, VuBlendingFactor dst) override;
  void SetBlendingFunc(VuBlendingFactor srcColor, VuBlendingFactor dstColor,
                       VuBlendingFactor srcAlpha, VuBlendingFactor dstAlpha) override;
  bool GetBlendEnabled() const override { return blend_; }
  void SetBlendEnabled(bool enabled) override { blend_ = enabled; }
  VuColor GetBlendColor() const override { return blendColor_; }
  void SetBlendColor(VuColor color) override { blendColor_ = color; }
  VuScaleMode GetScaleMode() const override { return scaleMode_; }
  void SetScaleMode(VuScaleMode mode) override { scaleMode_ = mode; }

  // A transform draws as the matrix made from it.
  void DrawPoint(VuPoint p, float size, VuColor color, VuTransform t, VuBitmapImpl* mask,
                 VuTVector2D<float> at) override {
    DrawPoint(p, size, color, Matrix(t), mask, at);
  }
  void DrawPoint(VuPoint p, float size, VuColor color, Matrix m, VuBitmapImpl* mask,
                 VuTVector2D<float> at) override;
  void DrawLine(VuPoint from, VuPoint to, VuColor color, VuTransform t, VuBitmapImpl* mask,
                VuTVector2D<float>* coords) override {
    DrawLine(from, to, color, Matrix(t), mask, coords);
  }
  void DrawLine(VuPoint from, VuPoint to, VuColor color, Matrix m, VuBitmapImpl* mask,
                VuTVector2D<float>* coords) override;
  //! [transform]
  void DrawRect(VuRect rect, VuColor color, VuTransform t, VuBitmapImpl* mask,
                VuTVector2D<float>* coords) override {
    DrawRect(rect, color, Matrix(t), mask, coords);
  }
  //! [transform]
  void DrawRect(VuRect rect, VuColor color, Matrix m, VuBitmapImpl* mask,
                VuTVector2D<float>* coords) override;
  void DrawObject(VuRect dst, VuBitmapImpl* src, VuRect srcRect, VuTransform t, VuColor color,
                  VuBitmapImpl* mask, VuTVector2D<float>* coords) override {
    DrawObject(dst, src, srcRect, Matrix(t), color, mask, coords);
  }
  void DrawObject(VuRect dst, VuBitmapImpl* src, VuRect srcRect, Matrix m, VuColor color,
                  VuBitmapImpl* mask, VuTVector2D<float>* coords) override;
  void DrawObject(VuTRect2D<float> dst, VuBitmapImpl* src, VuTRect2D<float> srcRect, Matrix m,
                  VuColor color, VuBitmapImpl* mask, VuTVector2D<float>* coords) override;
  void DrawText(VuFontImpl* font, const char* text, VuPoint pos, VuColor color, VuTransform t,
                VuBitmapImpl* mask, VuTVector2D<float>* coords, VuRect rect) override {
    DrawText(font, text, pos, color, Matrix(t), mask, coords, rect);
  }
  void DrawText(VuFontImpl* font, const char* text, VuPoint pos, VuColor color, Matrix m,
                VuBitmapImpl* mask, VuTVector2D<float>* coords, VuRect rect) override;

  bool Lock(bool) override { return false; }  // GetPixels() and SetPixels() do it.
  bool Unlock() override { return false; }
  void Finish() override {}
  void Flush() override {}
  bool GetPixels(VuRect rect, void* dst) override;
  bool SetPixels(VuRect rect, const void* src, unsigned int pitch) override;
  bool CopyPixels(VuPoint dst, VuBitmapImpl* src, VuRect srcRect) override;
  bool IsTextureBacked() const override { return false; }

  /// Writes a line about this surface. Its address can be read only with the key.
  void Print(unsigned key, std::ostream& os) const;

 protected:
  const std::vector<uint32_t>& Pixels() const { return pixels_; }

 private:
  bool SetMask(Operation& op, VuBitmapImpl* mask, const VuTVector2D<float>* coords) const;
  void Draw(const Operation& op);
  void Paint(const Operation& op);
  void Blend(uint32_t& pixel, const std::array<double, 4>& source) const;
  Texture Read(const Surface& from, bool smooth, std::vector<uint32_t>& copy) const;
  bool Contains(const VuRect& rect) const;
  uint32_t& At(int x, int y);

  LiveSurfaces& live_;
  const int width_, height_;
  const VuPixelFormat format_;
  std::vector<uint32_t> pixels_;
  std::string name_;
  VuRect clip_;
  std::array<VuBlendingFactor, 4> factors_;  ///< In the order of SetBlendingFunc().
  bool blend_ = true;
  VuColor blendColor_{0};
  VuScaleMode scaleMode_ = VuScaleMode::Nearest;
};

//! [screen]
/// A screen. Each frame goes to the file that the environment variable PLAIN_SCREEN names, where a
/// real one would go to a display.
class Screen final : public Surface, public VuScreenImpl {
 public:
  using Surface::Surface;

  void SwapBuffers() override;

 private:
  void Show() const;
};
//! [screen]

}  // namespace ZIRK::plain
