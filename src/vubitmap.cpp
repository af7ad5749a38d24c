#include <zirk/impl/log.h>
#include <zirk/impl/vubitmapimpl.h>
#include <zirk/impl/vuscreenimpl.h>
#include <zirk/vubitmap.h>
#include <zirk/vufont.h>
#include <zirk/vuperfcounter.h>

#include "assertalways.h"
#include "floattoint.h"

// Every operation passes its arguments to the backend unchanged: nothing is clipped, clamped or
// tested here. A masked form differs from the unmasked one only in the mask that it passes.
//
// While LogOverdraw is set, a full form then adds the area it covered to the surface's counter.
// The short forms call a full one, so each drawing counts once. Lines never count.

namespace ZIRK {

// --- Handle ---------------------------------------------------------------------------------

// The bitmap owns the surface, so there must be one.
// The assertion stays on line 24: its message is known by file and line.
VuBitmap::VuBitmap(VuBitmapImpl* impl_) : impl(impl_) {
  assert(impl);
}

VuBitmap::~VuBitmap() {
  delete impl;
}

// --- Overdraw ---------------------------------------------------------------------------------

namespace {

float Area(float pointSize) {
  return pointSize * pointSize;
}

float Area(const VuRect& r) {
  return static_cast<float>(WrappingProduct(r.width, r.height));
}

float Area(const VuTRect2D<float>& r) {
  const VuTVector2D<float>& min = r.minPoint();
  const VuTVector2D<float>& max = r.maxPoint();
  if (min.x() > max.x() || min.y() > max.y()) return 0;
  return (max.x() - min.x()) * (max.y() - min.y());
}

/// The area of the box of `text` on one line.
float Area(const VuFont& font, const char* text) {
  const int width = font.GetOneLineWidth(text);
  const int height = font.GetOneLineHeight();
  return static_cast<float>(WrappingProduct(width, height));
}

// Kept out of line, so that a drawing call that is not counted pays for one test of the flag.

[[gnu::cold, gnu::noinline]] void CountOverdraw(VuBitmapImpl& surface, float area) {
  // Summed in single precision: a large counter grows in steps of its resolution.
  surface.overdrawPixels = TruncateToUint32(static_cast<float>(surface.overdrawPixels) + area);
}

[[gnu::cold, gnu::noinline]] void CountOverdraw(VuBitmapImpl& surface, float area,
                                                const VuTransform& t) {
  CountOverdraw(surface, area * t.scaleX * t.scaleY);
}

[[gnu::cold, gnu::noinline]] void CountTextOverdraw(VuBitmapImpl& surface, const VuFont& font,
                                                    const char* text, const VuTransform& t) {
  CountOverdraw(surface, Area(font, text), t);
}

[[gnu::cold, gnu::noinline]] void ReportOverdraw(VuBitmapImpl& surface) {
  const float area = Area(surface.GetBounds());
  const float ratio = static_cast<float>(surface.overdrawPixels) / area;
  ZIRK_LOG_WARNING("Overdraw: %fx", static_cast<double>(ratio));
  surface.overdrawPixels = 0;
}

}  // namespace

// --- State ------------------------------------------------------------------------------------

void VuBitmap::Clear() {
  impl->Clear();
}

void VuBitmap::Clear(VuColor color) {
  impl->Clear(color);
}

VuBitmapInfo VuBitmap::GetInfo() const {
  return impl->GetInfo();
}

uint32_t VuBitmap::GetSize() const {
  return impl->GetSize();
}

VuRect VuBitmap::GetBounds() const {
  return impl->GetBounds();
}

VuRect VuBitmap::GetClippingRect() const {
  return impl->GetClippingRect();
}

void VuBitmap::SetClippingRect(VuRect rect) {
  impl->SetClippingRect(rect);
}

void VuBitmap::SetName(const char* name) {
  impl->SetName(name);
}

void VuBitmap::GetBlendingFunc(VuBlendingFactor& src, VuBlendingFactor& dst) const {
  impl->GetBlendingFunc(src, dst);
}

void VuBitmap::SetBlendingFunc(VuBlendingFactor src, VuBlendingFactor dst) {
  impl->SetBlendingFunc(src, dst);
}

void VuBitmap::SetBlendingFunc(VuBlendingFactor srcColor, VuBlendingFactor dstColor,
                               VuBlendingFactor srcAlpha, VuBlendingFactor dstAlpha) {
  impl->SetBlendingFunc(srcColor, dstColor, srcAlpha, dstAlpha);
}

bool VuBitmap::GetBlendEnabled() const {
  return impl->GetBlendEnabled();
}

void VuBitmap::SetBlendEnabled(bool enabled) {
  impl->SetBlendEnabled(enabled);
}

VuColor VuBitmap::GetBlendColor() const {
  return impl->GetBlendColor();
}

void VuBitmap::SetBlendColor(VuColor color) {
  impl->SetBlendColor(color);
}

VuScaleMode VuBitmap::GetScaleMode() const {
  return impl->GetScaleMode();
}

void VuBitmap::SetScaleMode(VuScaleMode mode) {
  impl->SetScaleMode(mode);
}

// --- Points, lines, filled rectangles ---------------------------------------------------------

void VuBitmap::DrawPoint(VuPoint p, float size, VuColor color) {
  DrawPoint(p, size, color, VuTransform());
}

// Only masked points count at the size at which they are drawn.

void VuBitmap::DrawPoint(VuPoint p, float size, VuColor color, VuTransform t) {
  impl->DrawPoint(p, size, color, t, nullptr, {});
  if (LogOverdraw) CountOverdraw(*impl, Area(size));
}

void VuBitmap::DrawPoint(VuPoint p, float size, VuColor color, VuTransform t, const VuBitmap& mask,
                         VuTVector2D<float> maskCoord) {
  impl->DrawPoint(p, size, color, t, mask.impl, maskCoord);
  if (LogOverdraw) CountOverdraw(*impl, Area(size), t);
}

void VuBitmap::DrawPoint(VuPoint p, float size, VuColor color, VuTMatrix2D<float> m) {
  impl->DrawPoint(p, size, color, m, nullptr, {});
  if (LogOverdraw) CountOverdraw(*impl, Area(size));
}

void VuBitmap::DrawPoint(VuPoint p, float size, VuColor color, VuTMatrix2D<float> m,
                         const VuBitmap& mask, VuTVector2D<float> maskCoord) {
  impl->DrawPoint(p, size, color, m, mask.impl, maskCoord);
  if (LogOverdraw) CountOverdraw(*impl, Area(size), m);
}

void VuBitmap::DrawLine(VuPoint from, VuPoint to, VuColor color) {
  DrawLine(from, to, color, VuTransform());
}

void VuBitmap::DrawLine(VuPoint from, VuPoint to, VuColor color, VuTransform t) {
  impl->DrawLine(from, to, color, t, nullptr, nullptr);
}

void VuBitmap::DrawLine(VuPoint from, VuPoint to, VuColor color, VuTransform t,
                        const VuBitmap& mask, VuTVector2D<float>* maskCoords) {
  impl->DrawLine(from, to, color, t, mask.impl, maskCoords);
}

void VuBitmap::DrawLine(VuPoint from, VuPoint to, VuColor color, VuTMatrix2D<float> m) {
  impl->DrawLine(from, to, color, m, nullptr, nullptr);
}

void VuBitmap::DrawLine(VuPoint from, VuPoint to, VuColor color, VuTMatrix2D<float> m,
                        const VuBitmap& mask, VuTVector2D<float>* maskCoords) {
  impl->DrawLine(from, to, color, m, mask.impl, maskCoords);
}

void VuBitmap::DrawRect(VuRect rect, VuColor color) {
  DrawRect(rect, color, VuTransform());
}

void VuBitmap::DrawRect(VuRect rect, VuColor color, VuTransform t) {
  impl->DrawRect(rect, color, t, nullptr, nullptr);
  if (LogOverdraw) CountOverdraw(*impl, Area(rect), t);
}

void VuBitmap::DrawRect(VuRect rect, VuColor color, VuTransform t, const VuBitmap& mask,
                        VuTVector2D<float>* maskCoords) {
  impl->DrawRect(rect, color, t, mask.impl, maskCoords);
  if (LogOverdraw) CountOverdraw(*impl, Area(rect), t);
}

void VuBitmap::DrawRect(VuRect rect, VuColor color, VuTMatrix2D<float> m) {
  impl->DrawRect(rect, color, m, nullptr, nullptr);
  if (LogOverdraw) CountOverdraw(*impl, Area(rect), m);
}

void VuBitmap::DrawRect(VuRect rect, VuColor color, VuTMatrix2D<float> m, const VuBitmap& mask,
                        VuTVector2D<float>* maskCoords) {
  impl->DrawRect(rect, color, m, mask.impl, maskCoords);
  if (LogOverdraw) CountOverdraw(*impl, Area(rect), m);
}

// --- Bitmaps ----------------------------------------------------------------------------------

void VuBitmap::DrawObject(VuRect dst, const VuBitmap& src) {
  DrawObject(dst, src, src.GetBounds(), VuTransform(), white);
}

void VuBitmap::DrawObject(VuRect dst, const VuBitmap& src, VuRect srcRect) {
  DrawObject(dst, src, srcRect, VuTransform(), white);
}

void VuBitmap::DrawObject(VuRect dst, const VuBitmap& src, VuTransform t) {
  DrawObject(dst, src, src.GetBounds(), t, white);
}

void VuBitmap::DrawObject(VuRect dst, const VuBitmap& src, VuRect srcRect, VuTransform t) {
  DrawObject(dst, src, srcRect, t, white);
}

void VuBitmap::DrawObject(VuRect dst, const VuBitmap& src, VuRect srcRect, VuTransform t,
                          VuColor color) {
  impl->DrawObject(dst, src.impl, srcRect, t, color, nullptr, nullptr);
  if (LogOverdraw) CountOverdraw(*impl, Area(dst), t);
}

void VuBitmap::DrawObject(VuRect dst, const VuBitmap& src, VuRect srcRect, VuTransform t,
                          VuColor color, const VuBitmap& mask, VuTVector2D<float>* maskCoords) {
  impl->DrawObject(dst, src.impl, srcRect, t, color, mask.impl, maskCoords);
  if (LogOverdraw) CountOverdraw(*impl, Area(dst), t);
}

void VuBitmap::DrawObject(VuRect dst, const VuBitmap& src, VuTMatrix2D<float> m) {
  DrawObject(dst, src, src.GetBounds(), m, white);
}

void VuBitmap::DrawObject(VuRect dst, const VuBitmap& src, VuRect srcRect, VuTMatrix2D<float> m) {
  DrawObject(dst, src, srcRect, m, white);
}

void VuBitmap::DrawObject(VuRect dst, const VuBitmap& src, VuRect srcRect, VuTMatrix2D<float> m,
                          VuColor color) {
  impl->DrawObject(dst, src.impl, srcRect, m, color, nullptr, nullptr);
  if (LogOverdraw) CountOverdraw(*impl, Area(dst), m);
}

void VuBitmap::DrawObject(VuRect dst, const VuBitmap& src, VuRect srcRect, VuTMatrix2D<float> m,
                          VuColor color, const VuBitmap& mask, VuTVector2D<float>* maskCoords) {
  impl->DrawObject(dst, src.impl, srcRect, m, color, mask.impl, maskCoords);
  if (LogOverdraw) CountOverdraw(*impl, Area(dst), m);
}

void VuBitmap::DrawObject(VuTRect2D<float> dst, const VuBitmap& src, VuTRect2D<float> srcRect,
                          VuTMatrix2D<float> m, VuColor color) {
  impl->DrawObject(dst, src.impl, srcRect, m, color, nullptr, nullptr);
  if (LogOverdraw) CountOverdraw(*impl, Area(dst), m);
}

void VuBitmap::DrawObject(VuTRect2D<float> dst, const VuBitmap& src, VuTRect2D<float> srcRect,
                          VuTMatrix2D<float> m, VuColor color, const VuBitmap& mask,
                          VuTVector2D<float>* maskCoords) {
  impl->DrawObject(dst, src.impl, srcRect, m, color, mask.impl, maskCoords);
  if (LogOverdraw) CountOverdraw(*impl, Area(dst), m);
}

// --- Text -------------------------------------------------------------------------------------

void VuBitmap::DrawText(const VuFont& font, const char* text, VuPoint pos, VuColor color) {
  DrawText(font, text, pos, color, VuTransform());
}

void VuBitmap::DrawText(const VuFont& font, const char* text, VuPoint pos, VuColor color,
                        VuTransform t) {
  impl->DrawText(font.impl, text, pos, color, t, nullptr, nullptr, VuRect{});
  if (LogOverdraw) CountTextOverdraw(*impl, font, text, t);
}

void VuBitmap::DrawText(const VuFont& font, const char* text, VuPoint pos, VuColor color,
                        VuTransform t, const VuBitmap& mask, VuTVector2D<float>* maskCoords,
                        VuRect rect) {
  impl->DrawText(font.impl, text, pos, color, t, mask.impl, maskCoords, rect);
  if (LogOverdraw) CountTextOverdraw(*impl, font, text, t);
}

void VuBitmap::DrawText(const VuFont& font, const char* text, VuPoint pos, VuColor color,
                        VuTMatrix2D<float> m) {
  impl->DrawText(font.impl, text, pos, color, m, nullptr, nullptr, VuRect{});
  if (LogOverdraw) CountTextOverdraw(*impl, font, text, m);
}

void VuBitmap::DrawText(const VuFont& font, const char* text, VuPoint pos, VuColor color,
                        VuTMatrix2D<float> m, const VuBitmap& mask, VuTVector2D<float>* maskCoords,
                        VuRect rect) {
  impl->DrawText(font.impl, text, pos, color, m, mask.impl, maskCoords, rect);
  if (LogOverdraw) CountTextOverdraw(*impl, font, text, m);
}

// --- Pixels -----------------------------------------------------------------------------------

bool VuBitmap::Lock() {
  return Lock(true);
}

bool VuBitmap::Lock(bool write) {
  return impl->Lock(write);
}

bool VuBitmap::Unlock() {
  return impl->Unlock();
}

bool VuBitmap::GetPixels(VuRect rect, void* dst) {
  return impl->GetPixels(rect, dst);
}

bool VuBitmap::SetPixels(VuRect rect, const void* src, unsigned int pitch) {
  return impl->SetPixels(rect, src, pitch);
}

bool VuBitmap::CopyPixels(VuPoint dst, const VuBitmap& src, VuRect srcRect) {
  return impl->CopyPixels(dst, src.impl, srcRect);
}

bool VuBitmap::IsTextureBacked() const {
  return impl->IsTextureBacked();
}

// --- End of a frame ---------------------------------------------------------------------------

void VuBitmap::Flush() {
  impl->Flush();
}

void VuBitmap::Finish() {
  impl->Finish();
  if (LogOverdraw) ReportOverdraw(*impl);
}

void VuBitmap::SwapBuffers() {
  if (auto* const screen = dynamic_cast<VuScreenImpl*>(impl))
    screen->SwapBuffers();
  else
    impl->Finish();
  if (LogOverdraw) ReportOverdraw(*impl);
}

}  // namespace ZIRK
