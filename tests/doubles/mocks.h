#pragma once

#include <gmock/gmock.h>
#include <zirk/backend.h>

namespace ZIRK::doubles {

using Matrix = VuTMatrix2D<float>;
using Vector = VuTVector2D<float>;
using RectF = VuTRect2D<float>;
using Factor = VuBlendingFactor;

struct MockBitmap : VuBitmapImpl {
  MockBitmap();
  ~MockBitmap() override;
  MOCK_METHOD(void, SetName, (const char*), (override));
  MOCK_METHOD(void, Clear, (VuColor), (override));
  MOCK_METHOD(VuBitmapInfo, GetInfo, (), (const, override));
  MOCK_METHOD(uint32_t, GetSize, (), (const, override));
  MOCK_METHOD(VuRect, GetBounds, (), (const, override));
  MOCK_METHOD(VuRect, GetClippingRect, (), (const, override));
  MOCK_METHOD(void, SetClippingRect, (VuRect), (override));
  MOCK_METHOD(void, GetBlendingFunc, (Factor&, Factor&), (const, override));
  MOCK_METHOD(void, SetBlendingFunc, (Factor, Factor), (override));
  MOCK_METHOD(void, SetBlendingFunc, (Factor, Factor, Factor, Factor), (override));
  MOCK_METHOD(bool, GetBlendEnabled, (), (const, override));
  MOCK_METHOD(void, SetBlendEnabled, (bool), (override));
  MOCK_METHOD(VuColor, GetBlendColor, (), (const, override));
  MOCK_METHOD(void, SetBlendColor, (VuColor), (override));
  MOCK_METHOD(VuScaleMode, GetScaleMode, (), (const, override));
  MOCK_METHOD(void, SetScaleMode, (VuScaleMode), (override));
  MOCK_METHOD(void, DrawPoint, (VuPoint, float, VuColor, VuTransform, VuBitmapImpl*, Vector),
              (override));
  MOCK_METHOD(void, DrawPoint, (VuPoint, float, VuColor, Matrix, VuBitmapImpl*, Vector),
              (override));
  MOCK_METHOD(void, DrawLine, (VuPoint, VuPoint, VuColor, VuTransform, VuBitmapImpl*, Vector*),
              (override));
  MOCK_METHOD(void, DrawLine, (VuPoint, VuPoint, VuColor, Matrix, VuBitmapImpl*, Vector*),
              (override));
  MOCK_METHOD(void, DrawRect, (VuRect, VuColor, VuTransform, VuBitmapImpl*, Vector*), (override));
  MOCK_METHOD(void, DrawRect, (VuRect, VuColor, Matrix, VuBitmapImpl*, Vector*), (override));
  MOCK_METHOD(void, DrawObject,
              (VuRect, VuBitmapImpl*, VuRect, VuTransform, VuColor, VuBitmapImpl*, Vector*),
              (override));
  MOCK_METHOD(void, DrawObject,
              (VuRect, VuBitmapImpl*, VuRect, Matrix, VuColor, VuBitmapImpl*, Vector*), (override));
  MOCK_METHOD(void, DrawObject,
              (RectF, VuBitmapImpl*, RectF, Matrix, VuColor, VuBitmapImpl*, Vector*), (override));
  MOCK_METHOD(void, DrawText,
              (VuFontImpl*, const char*, VuPoint, VuColor, VuTransform, VuBitmapImpl*, Vector*,
               VuRect),
              (override));
  MOCK_METHOD(void, DrawText,
              (VuFontImpl*, const char*, VuPoint, VuColor, Matrix, VuBitmapImpl*, Vector*, VuRect),
              (override));
  MOCK_METHOD(bool, Lock, (bool), (override));
  MOCK_METHOD(bool, Unlock, (), (override));
  MOCK_METHOD(void, Finish, (), (override));
  MOCK_METHOD(void, Flush, (), (override));
  MOCK_METHOD(bool, GetPixels, (VuRect, void*), (override));
  MOCK_METHOD(bool, SetPixels, (VuRect, const void*, unsigned), (override));
  MOCK_METHOD(bool, CopyPixels, (VuPoint, VuBitmapImpl*, VuRect), (override));
};

struct MockGraphics : VuGraphicsImpl {
  MockGraphics();
  ~MockGraphics() override;
  MOCK_METHOD(VuScreenImpl*, CreateScreen, (bool), (override));
  MOCK_METHOD(VuScreenImpl*, CreateScreen, (const VuScreenDescription&), (override));
  MOCK_METHOD(VuBitmapImpl*, CreateBitmap, (int, int, VuPixelFormat), (override));
  MOCK_METHOD(VuBitmapImpl*, CreateBitmapFromFile, (const char*), (override));
  MOCK_METHOD(VuBitmapImpl*, CreateBitmapFromFile,
              (const char*, int, int, VuScaleMode, VuDisplayMode), (override));
  MOCK_METHOD(VuBitmapImpl*, CreateBitmapFromMemory, (const void*, unsigned), (override));
  MOCK_METHOD(VuBitmapImpl*, CreateBitmapFromMemory, (const void*, unsigned, int, int, VuScaleMode),
              (override));
  MOCK_METHOD(unsigned, AvailableMemory, (), (const, override));
  MOCK_METHOD(unsigned, TotalMemory, (), (const, override));
  MOCK_METHOD(unsigned, BitmapSize, (int, int, VuPixelFormat), (const, override));
  MOCK_METHOD(unsigned, BitmapSize, (const char*), (const, override));
  MOCK_METHOD(unsigned, BitmapSize, (const char*, int, int), (const, override));
  MOCK_METHOD(unsigned, BitmapSize, (const void*, unsigned), (const, override));
  MOCK_METHOD(unsigned, BitmapSize, (const void*, unsigned, int, int), (const, override));
  MOCK_METHOD(void, PrintBitmapList, (unsigned, std::ostream&), (override));
  MOCK_METHOD(void, Flush, (), (override));
  MOCK_METHOD(void, SetTerminateOnDestruct, (bool), (override));
  MOCK_METHOD(int, GetGraphicsType, (), (const, override));
};

struct MockFont : VuFontImpl {
  MockFont();
  ~MockFont() override;
  MOCK_METHOD(void, GetFontMetrics, (int&, int&, int&, int&), (const, override));
  MOCK_METHOD(int, GetOneLineWidth, (const char*), (const, override));
  MOCK_METHOD(int, GetOneLineHeight, (), (const, override));
  MOCK_METHOD(int, GetAscent, (), (const, override));
  MOCK_METHOD(int, GetDescent, (), (const, override));
  MOCK_METHOD(int, GetMaxAdvance, (), (const, override));
  MOCK_METHOD(void, GetUnderlineMetrics, (int&, int&), (const, override));
  MOCK_METHOD(void, SetFallbackFont, (const VuFontImpl*), (override));

  using VuFontImpl::fallbackGlyph_;
  using VuFontImpl::outlineThickness_;
  using VuFontImpl::outlineType_;
};

/// Whatever a test does not ask for is allowed, and does nothing.
using Bitmap = testing::NiceMock<MockBitmap>;
using Graphics = testing::NiceMock<MockGraphics>;
using Font = testing::NiceMock<MockFont>;

}  // namespace ZIRK::doubles
