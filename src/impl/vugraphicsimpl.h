#pragma once

#include <zirk/export.h>
#include <zirk/vuenums.h>
#include <zirk/vuscreendescription.h>

#include <iosfwd>

namespace ZIRK {

class VuBitmapImpl;
class VuScreenImpl;

/// A graphics backend: what a plug-in's "CreateVuGraphics" returns. VuGraphics documents the
/// operations; the comments here add what a backend may rely on.
///
/// Plug-ins are built separately from the library, which calls these operations by their position.
/// The order is fixed: nothing is inserted, moved or removed.
///
/// The front end forwards arguments as the application gave them: sizes may be zero or negative,
/// paths may not exist. A creation operation returns null for what it cannot create, after one
/// error line with the reason; the front end adds none. The caller owns what it returns, and
/// deletes it through its virtual destructor before the graphics object.
///
/// **Threads**: one at a time, except for PrintBitmapList().
class ZIRK_API VuGraphicsImpl {
 public:
  VuGraphicsImpl() = default;
  virtual ~VuGraphicsImpl();  // slots 1 and 2
  VuGraphicsImpl(const VuGraphicsImpl&) = delete;
  VuGraphicsImpl& operator=(const VuGraphicsImpl&) = delete;

  /// Slot 3: creates the default screen.
  [[nodiscard]] virtual VuScreenImpl* CreateScreen(bool flag) = 0;
  /// Slot 4: creates a screen as described.
  [[nodiscard]] virtual VuScreenImpl* CreateScreen(const VuScreenDescription& description) = 0;

  /// Slot 5: creates a bitmap.
  [[nodiscard]] virtual VuBitmapImpl* CreateBitmap(int width, int height, VuPixelFormat format) = 0;
  /// Slot 6: creates a bitmap with the picture in a file, at its own size.
  [[nodiscard]] virtual VuBitmapImpl* CreateBitmapFromFile(const char* path) = 0;
  /// Slot 7: the same at the size that VuGraphics::GetScaledDimensions() gives.
  [[nodiscard]] virtual VuBitmapImpl* CreateBitmapFromFile(const char* path, int width, int height,
                                                           VuScaleMode scaleMode,
                                                           VuDisplayMode displayMode) = 0;
  /// Slot 8: creates a bitmap with an encoded picture in memory, which is read during the call
  /// only.
  [[nodiscard]] virtual VuBitmapImpl* CreateBitmapFromMemory(const void* data, unsigned size) = 0;
  /// Slot 9: the same, stretched to a size.
  [[nodiscard]] virtual VuBitmapImpl* CreateBitmapFromMemory(const void* data, unsigned size,
                                                             int width, int height,
                                                             VuScaleMode scaleMode) = 0;

  /// Slot 10: memory left for surfaces.
  [[nodiscard]] virtual unsigned AvailableMemory() const = 0;
  /// Slot 11: memory for surfaces in all. The front end prints the difference to slot 10 as used.
  [[nodiscard]] virtual unsigned TotalMemory() const = 0;

  /// Slot 12: memory that slot 5 would take for these arguments; 0 if it would fail.
  [[nodiscard]] virtual unsigned BitmapSize(int width, int height, VuPixelFormat format) const = 0;
  /// Slot 13: memory that slot 6 would take; 0 if it would fail.
  [[nodiscard]] virtual unsigned BitmapSize(const char* path) const = 0;
  /// Slot 14: memory that slot 7 would take with the mode Stretch; 0 if it would fail.
  [[nodiscard]] virtual unsigned BitmapSize(const char* path, int width, int height) const = 0;
  /// Slot 15: memory that slot 8 would take; 0 if it would fail.
  [[nodiscard]] virtual unsigned BitmapSize(const void* data, unsigned size) const = 0;
  /// Slot 16: memory that slot 9 would take; 0 if it would fail.
  [[nodiscard]] virtual unsigned BitmapSize(const void* data, unsigned size, int width,
                                            int height) const = 0;

  /// Slot 17: writes one line per surface; addresses are printed XORed with `key`. Any thread may
  /// call.
  virtual void PrintBitmapList(unsigned key, std::ostream& os) = 0;

  /// Slot 18: submits pending drawing to the device.
  virtual void Flush() = 0;

  /// Slot 19: does nothing unless overridden.
  virtual void SetTerminateOnDestruct(bool terminate);

  /// Slot 20: the backend's type code; 0 if its textures lose their contents when they grow.
  [[nodiscard]] virtual int GetGraphicsType() const = 0;

  /// Slot 21: the largest side of a surface, in pixels; 2048 unless overridden.
  [[nodiscard]] virtual int GetMaxTextureSize() const;
};

}  // namespace ZIRK
