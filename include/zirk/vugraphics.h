#pragma once

#include <zirk/export.h>
#include <zirk/vuenums.h>
#include <zirk/vuscreendescription.h>

#include <functional>
#include <iosfwd>
#include <string>

namespace ZIRK {

class VuBitmap;
class VuGraphicsImpl;

/// A graphics context: the way in. It owns one backend, opened from a plug-in, and creates the
/// screens and bitmaps that are drawn on.
///
///     std::unique_ptr<VuGraphics> graphics(VuGraphics::Create());
///     std::unique_ptr<VuBitmap> screen(graphics->CreateScreen(1280, 720, true));
///     screen->DrawRect(VuRect{10, 10, 100, 50}, VuColor{0xFF336699});
///     screen->SwapBuffers();
///
/// Backends: "OpenGLES2", "DirectFB", "Hybrid", "Stub", "FB". Creating contexts and the static
/// queries belong to one thread; a context and what it created may then be used from any one
/// thread at a time. Bitmaps are deleted before their context.
class ZIRK_API VuGraphics {
 public:
  /// The type that GetFeatureDetails() takes, under the name that it has beside it.
  using FeatureType = ZIRK::FeatureType;

  /// Opens the default backend: what SetGraphicsOverride() installed; else "Stub" when the
  /// environment has `ZIRK_STUB`; else the backend that `ZIRK_DEFAULT_GFX_BACKEND` or
  /// SetDefaultImpl() named ("Hybrid" at first). "Default", in any case, stands for "OpenGLES2"
  /// and, failing that, "DirectFB". `flag` is handed to the backend; ours take no notice of it, so
  /// pass false. The caller owns the result;
  /// null, with an error line, if no backend could be opened or memory runs out.
  static VuGraphics* Create(bool flag);
  static VuGraphics* Create();

  /// Opens the named backend. A null name and "Default" are as Create(). Null, with an error
  /// line, for an unknown name or a plug-in that does not open, and where memory runs out.
  static VuGraphics* Create(const char* name, bool flag);

  /// Opens "Hybrid" if that is the default backend, otherwise "OpenGLES2".
  static VuGraphics* CreateGL(bool flag);
  static VuGraphics* CreateGL();
  /// Opens "DirectFB".
  static VuGraphics* CreateDFB();
  /// Opens "Stub".
  static VuGraphics* CreateStub();

  /// Names the backend of Create(); null restores "Hybrid". `ZIRK_DEFAULT_GFX_BACKEND` replaces
  /// the name once, when the first context is created or the first query made.
  static void SetDefaultImpl(const char* name);
  /// The default backend's name, valid until it changes.
  static const char* GetDefaultImpl();

  /// Makes Create() and Create(bool) return whatever `f` returns; an empty `f` ends that.
  static void SetGraphicsOverride(std::function<VuGraphics*(bool)> f);

  /// Wraps a backend of the application's own, which the context owns from here on.
  explicit VuGraphics(VuGraphicsImpl* impl);
  ~VuGraphics();
  VuGraphics(const VuGraphics&) = delete;
  VuGraphics& operator=(const VuGraphics&) = delete;

  /// Screens and bitmaps. The caller owns what comes back; null, with the backend's error line,
  /// where the backend could not make it (no memory, a broken image, an absurd size).
  ///
  /// The form with a flag alone asks for the device's own size, or 1280 x 720 where it has none, in
  /// ARGB8888 with two buffers. `flag` and `option` are the same field of the description, of which
  /// ours take no notice.
  VuBitmap* CreateScreen(bool flag);
  VuBitmap* CreateScreen(const VuScreenDescription& description);
  /// `index` is cut to its low 8 bits.
  VuBitmap* CreateScreen(int width, int height, bool doubleBuffer, int index, bool option,
                         VuPixelFormat format);
  VuBitmap* CreateScreen(int width, int height, bool doubleBuffer, int index, bool option);
  VuBitmap* CreateScreen(int width, int height, bool doubleBuffer, int index);
  VuBitmap* CreateScreen(int width, int height, bool doubleBuffer);

  /// An off-screen bitmap, transparent, or black where the format has no alpha. The caller owns it;
  /// null, with the backend's error line, for a size or format that no surface can have, and where
  /// memory does not allow it.
  VuBitmap* CreateBitmap(int width, int height, VuPixelFormat format);

  /// A bitmap of ARGB8888 with the picture in a file, at its own size, or at the size that
  /// GetScaledDimensions() gives for the box `width` x `height` (Stretch where no mode is given).
  /// `scaleMode` says how it is filtered on the way; the bitmap's own scale mode stays Nearest.
  VuBitmap* CreateBitmapFromFile(const char* path);
  VuBitmap* CreateBitmapFromFile(const char* path, int width, int height, VuScaleMode scaleMode,
                                 VuDisplayMode displayMode);
  VuBitmap* CreateBitmapFromFile(const char* path, int width, int height, VuScaleMode scaleMode);

  /// The same for an encoded picture of `size` bytes, read during the call only. The second form
  /// stretches it to `width` x `height`.
  VuBitmap* CreateBitmapFromMemory(const void* data, unsigned size);
  VuBitmap* CreateBitmapFromMemory(const void* data, unsigned size, int width, int height,
                                   VuScaleMode scaleMode);

  /// Memory that a bitmap would take, in the backend's unit (ours: bytes); 0 for a picture that
  /// cannot be read.
  unsigned BitmapSize(int width, int height, VuPixelFormat format) const;
  unsigned BitmapSize(const char* path) const;
  unsigned BitmapSize(const char* path, int width, int height) const;
  unsigned BitmapSize(const void* data, unsigned size) const;
  unsigned BitmapSize(const void* data, unsigned size, int width, int height) const;

  /// Memory for bitmaps in the same unit, what is left of it and all.
  unsigned AvailableMemory() const;
  unsigned TotalMemory() const;

  /// Lists the backend's bitmaps, one line each.
  void PrintBitmapList(std::ostream& os);

  /// Pushes pending drawing to the device.
  void Flush();
  /// Handed to the backend; ours take no notice.
  void SetTerminateOnDestruct(bool terminate);

  /// The backend's type code: a BackendType, or another number for a backend of others.
  int GetGraphicsType() const;
  /// Largest side of a bitmap, in pixels; 2048 where the backend does not say.
  int GetMaxTextureSize() const;

  /// The size at which a picture of `srcWidth` x `srcHeight` is shown in the box `width` x
  /// `height`, which it replaces; fractions are cut off. A box without extent takes the picture's
  /// size. Narrower is who has the smaller quotient of width and height: Fit scales a picture that
  /// is narrower than the box to the box's height, others to its width. Fill scales one that is
  /// narrower to the box's width and leaves others at their own size, which may not cover the box.
  /// An unknown mode leaves the box, with a warning.
  static void GetScaledDimensions(int srcWidth, int srcHeight, int& width, int& height,
                                  VuDisplayMode mode);

  /// Whether the plug-in of the backend `name` (not null) lies under /lib or /usr/lib.
  static bool HasBackend(const char* name);
  /// The names for which HasBackend() holds, in no particular order; sets `count`. The array is
  /// valid until the next call.
  static const char* const* GetSupportedBackends(unsigned& count);
  /// The backend's feature bits; 0, with a warning, for an unknown name. "Default" is "Hybrid".
  static unsigned GetSupportedFeatures(std::string name);
  /// For FeatureType::Details stores the backend's detail bits, a `uint32_t`, at `out`; for any
  /// other type stores nothing.
  static void GetFeatureDetails(std::string name, FeatureType type, void* out);

 private:
  friend class VuGraphicsMgr;

  VuGraphicsImpl* impl;
};

/// Lists every live context with its bitmaps and memory. Printed addresses are XORed with `key`.
/// Any thread may call.
ZIRK_API void PrintBitmapList(unsigned key, std::ostream& os);

}  // namespace ZIRK
