#pragma once

#include <zirk/export.h>
#include <zirk/vuenums.h>
#include <zirk/vuscreendescription.h>

#include <iosfwd>

namespace ZIRK {

class VuBitmapImpl;
class VuScreenImpl;

/// A graphics backend: what a plug-in's "CreateVuGraphics" returns.
///
/// Plug-ins are built apart from the library, which calls these operations by their position. The
/// order is fixed: nothing is inserted, moved or removed.
///
/// The front end forwards arguments as the application gave them: sizes may be zero or negative,
/// paths may name nothing. A creation operation returns null for what it cannot make, after one
/// error line that says why; the front end adds none. What it returns is owned by the caller and
/// deleted through its virtual destructor, before the graphics object.
class ZIRK_API VuGraphicsImpl {
 public:
  VuGraphicsImpl() = default;
  virtual ~VuGraphicsImpl();  // slots 1 and 2
  VuGraphicsImpl(const VuGraphicsImpl&) = delete;
  VuGraphicsImpl& operator=(const VuGraphicsImpl&) = delete;

  /// Slots 3 and 4: the default screen, and one as described.
  virtual VuScreenImpl* CreateScreen(bool flag) = 0;
  virtual VuScreenImpl* CreateScreen(const VuScreenDescription& description) = 0;

  /// Slots 5 to 9: bitmaps. A form with a size fits the picture: files by
  /// VuGraphics::GetScaledDimensions() with `displayMode`, memory as if by mode Stretch. Encoded
  /// pictures in memory are read during the call only.
  virtual VuBitmapImpl* CreateBitmap(int width, int height, VuPixelFormat format) = 0;
  virtual VuBitmapImpl* CreateBitmapFromFile(const char* path) = 0;
  virtual VuBitmapImpl* CreateBitmapFromFile(const char* path, int width, int height,
                                             VuScaleMode scaleMode, VuDisplayMode displayMode) = 0;
  virtual VuBitmapImpl* CreateBitmapFromMemory(const void* data, unsigned size) = 0;
  virtual VuBitmapImpl* CreateBitmapFromMemory(const void* data, unsigned size, int width,
                                               int height, VuScaleMode scaleMode) = 0;

  /// Slots 10 and 11: free and total texture memory; the front end prints total - available as
  /// used.
  virtual unsigned AvailableMemory() const = 0;
  virtual unsigned TotalMemory() const = 0;

  /// Slots 12 to 16: memory that the corresponding creation operation would take; 0 if it would
  /// fail.
  virtual unsigned BitmapSize(int width, int height, VuPixelFormat format) const = 0;
  virtual unsigned BitmapSize(const char* path) const = 0;
  virtual unsigned BitmapSize(const char* path, int width, int height) const = 0;
  virtual unsigned BitmapSize(const void* data, unsigned size) const = 0;
  virtual unsigned BitmapSize(const void* data, unsigned size, int width, int height) const = 0;

  /// Slot 17: one line per bitmap; addresses are printed XORed with `key`. May be called from any
  /// thread.
  virtual void PrintBitmapList(unsigned key, std::ostream& os) = 0;

  /// Slot 18: push pending drawing to the device.
  virtual void Flush() = 0;

  /// Slot 19: does nothing unless overridden.
  virtual void SetTerminateOnDestruct(bool terminate);

  /// Slot 20: the backend's type code; 0 if its textures lose their contents when they grow.
  virtual int GetGraphicsType() const = 0;

  /// Slot 21: the largest side of a surface, in pixels; 2048 unless overridden.
  virtual int GetMaxTextureSize() const;
};

}  // namespace ZIRK
