#include "graphics.h"

#include <new>
#include <ostream>

namespace ZIRK::plain {

//! [make]
/// A creation operation returns null for what it cannot make, after one line that says why.
template <class Made>
Made* Graphics::Make(int width, int height, VuPixelFormat format) {
  const unsigned bytes = BitmapSize(width, height, format);
  if (bytes == 0) {
    ZIRK_LOG_ERROR("Plain: no surface of %d x %d in format %d", width, height, int(format));
    return nullptr;
  }
  try {
    if (bytes <= AvailableMemory()) return new Made(live_, width, height, format);
  } catch (const std::bad_alloc&) {
  }
  ZIRK_LOG_ERROR("Plain: no memory for a surface of %d x %d", width, height);
  return nullptr;
}
//! [make]

VuScreenImpl* Graphics::CreateScreen(bool flag) {
  return CreateScreen({0, 0, 0, 2, VuPixelFormat::ARGB8888, flag});
}

VuScreenImpl* Graphics::CreateScreen(const VuScreenDescription& d) {
  // Without a size, the screen gets the size of the device.
  if (d.width <= 0 || d.height <= 0) return Make<Screen>(640, 360, d.format);
  return Make<Screen>(d.width, d.height, d.format);
}

VuBitmapImpl* Graphics::CreateBitmap(int width, int height, VuPixelFormat format) {
  return Make<Surface>(width, height, format);
}

VuBitmapImpl* Graphics::CreateBitmapFromFile(const char* path) {
  ZIRK_LOG_ERROR("Plain: %s: unknown image format", path ? path : "(no path)");
  return nullptr;
}

VuBitmapImpl* Graphics::CreateBitmapFromFile(const char* path, int, int, VuScaleMode,
                                             VuDisplayMode) {
  return CreateBitmapFromFile(path);
}

VuBitmapImpl* Graphics::CreateBitmapFromMemory(const void*, unsigned) {
  return CreateBitmapFromFile("the picture in memory");
}

VuBitmapImpl* Graphics::CreateBitmapFromMemory(const void*, unsigned, int, int, VuScaleMode) {
  return CreateBitmapFromFile("the picture in memory");
}

unsigned Graphics::AvailableMemory() const {
  const std::lock_guard lock(live_.mutex);
  unsigned used = 0;
  for (const Surface* surface : live_.surfaces) used += surface->GetSize();
  return used < TotalMemory() ? TotalMemory() - used : 0;
}

/// In bytes; 0 for a bitmap that cannot be made.
unsigned Graphics::BitmapSize(int width, int height, VuPixelFormat format) const {
  const bool known = format == VuPixelFormat::ARGB8888 || format == VuPixelFormat::A8;
  const int most = GetMaxTextureSize();
  if (!known || width <= 0 || height <= 0 || width > most || height > most) return 0;
  return static_cast<unsigned>(width) * static_cast<unsigned>(height) * 4;
}

void Graphics::PrintBitmapList(unsigned key, std::ostream& os) {
  const std::lock_guard lock(live_.mutex);
  for (const Surface* surface : live_.surfaces) surface->Print(key, os);
}

}  // namespace ZIRK::plain
