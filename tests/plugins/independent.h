#pragma once

// The interface as a plug-in sees it that was written from its documentation, without our headers:
// same classes, same order, types of its own. Nothing here may be derived from ours, since this is
// what shows that plug-ins built apart still fit.

#include <cstdint>
#include <iosfwd>

namespace ZIRK {

class VuFontImpl;
struct Point {
  int32_t x, y;
};
struct Rect {
  int32_t x, y, width, height;
};
struct Transform {
  float x, y, scaleX, scaleY, rotation;
};
struct Vector {
  float x, y;
};
struct Matrix {
  float m[9];
  uint8_t flags;
};
struct RectF {
  Vector min, max;
};
struct Color {
  uint32_t argb;
};
struct Info {
  int32_t width, height, format, pitch;
  void* pixels;
};
struct Screen {
  int32_t width, height;
  uint8_t index, buffers;
  int32_t format;
  bool option;
};

class VuBitmapImpl {
 public:
  virtual ~VuBitmapImpl() = default;
  virtual void Reserved() = 0;
  virtual void SetName(const char*) = 0;
  virtual void ClearAll() = 0;
  virtual void Clear(Color) = 0;
  virtual Info GetInfo() const = 0;
  virtual uint32_t GetSize() const = 0;
  virtual Rect GetBounds() const = 0;
  virtual Rect GetClippingRect() const = 0;
  virtual void SetClippingRect(Rect) = 0;
  virtual void GetBlendingFunc(int32_t&, int32_t&) const = 0;
  virtual void SetBlendingFunc2(int32_t, int32_t) = 0;
  virtual void SetBlendingFunc4(int32_t, int32_t, int32_t, int32_t) = 0;
  virtual bool GetBlendEnabled() const = 0;
  virtual void SetBlendEnabled(bool) = 0;
  virtual Color GetBlendColor() const = 0;
  virtual void SetBlendColor(Color) = 0;
  virtual int32_t GetScaleMode() const = 0;
  virtual void SetScaleMode(int32_t) = 0;
  virtual void DrawPointT(Point, float, Color, Transform, VuBitmapImpl*, Vector) = 0;
  virtual void DrawPointM(Point, float, Color, Matrix, VuBitmapImpl*, Vector) = 0;
  virtual void DrawLineT(Point, Point, Color, Transform, VuBitmapImpl*, Vector*) = 0;
  virtual void DrawLineM(Point, Point, Color, Matrix, VuBitmapImpl*, Vector*) = 0;
  virtual void DrawRectT(Rect, Color, Transform, VuBitmapImpl*, Vector*) = 0;
  virtual void DrawRectM(Rect, Color, Matrix, VuBitmapImpl*, Vector*) = 0;
  virtual void DrawObjectT(Rect, VuBitmapImpl*, Rect, Transform, Color, VuBitmapImpl*, Vector*) = 0;
  virtual void DrawObjectM(Rect, VuBitmapImpl*, Rect, Matrix, Color, VuBitmapImpl*, Vector*) = 0;
  virtual void DrawObjectF(RectF, VuBitmapImpl*, RectF, Matrix, Color, VuBitmapImpl*, Vector*) = 0;
  virtual void DrawTextT(VuFontImpl*, const char*, Point, Color, Transform, VuBitmapImpl*, Vector*,
                         Rect) = 0;
  virtual void DrawTextM(VuFontImpl*, const char*, Point, Color, Matrix, VuBitmapImpl*, Vector*,
                         Rect) = 0;
  virtual bool Lock(bool) = 0;
  virtual bool Unlock() = 0;
  virtual void Finish() = 0;
  virtual void Flush() = 0;
  virtual bool GetPixels(Rect, void*) = 0;
  virtual bool SetPixels(Rect, const void*, unsigned) = 0;
  virtual bool CopyPixels(Point, VuBitmapImpl*, Rect) = 0;
  virtual bool IsTextureBacked() const = 0;

  uint32_t overdrawPixels = 0;
};

class VuScreenImpl : public virtual VuBitmapImpl {
 public:
  ~VuScreenImpl() override = default;
  virtual void SwapBuffers() = 0;
};

class VuGraphicsImpl {
 public:
  virtual ~VuGraphicsImpl() = default;
  virtual VuScreenImpl* CreateScreen(bool) = 0;
  virtual VuScreenImpl* CreateDescribedScreen(const Screen&) = 0;
  virtual VuBitmapImpl* CreateBitmap(int, int, int32_t) = 0;
  virtual VuBitmapImpl* FromFile(const char*) = 0;
  virtual VuBitmapImpl* FromFileFitted(const char*, int, int, int32_t, int32_t) = 0;
  virtual VuBitmapImpl* FromMemory(const void*, unsigned) = 0;
  virtual VuBitmapImpl* FromMemoryFitted(const void*, unsigned, int, int, int32_t) = 0;
  virtual unsigned AvailableMemory() const = 0;
  virtual unsigned TotalMemory() const = 0;
  virtual unsigned SizeOf(int, int, int32_t) const = 0;
  virtual unsigned SizeOfFile(const char*) const = 0;
  virtual unsigned SizeOfFileFitted(const char*, int, int) const = 0;
  virtual unsigned SizeOfMemory(const void*, unsigned) const = 0;
  virtual unsigned SizeOfMemoryFitted(const void*, unsigned, int, int) const = 0;
  virtual void PrintBitmapList(unsigned, std::ostream&) = 0;
  virtual void Flush() = 0;
  virtual void SetTerminateOnDestruct(bool) = 0;
  virtual int GetGraphicsType() const = 0;
  virtual int GetMaxTextureSize() const = 0;
};

}  // namespace ZIRK
