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

/// A graphics context, where every program starts. It owns one backend, opened from a plug-in, and
/// creates the screens and bitmaps to draw on.
///
///     std::unique_ptr<VuGraphics> graphics(VuGraphics::Create());
///     if (!graphics) return 1;
///     std::unique_ptr<VuBitmap> screen(graphics->CreateScreen(1280, 720, true));
///     if (!screen) return 1;
///     screen->DrawRect(VuRect{10, 10, 100, 50}, 0xFF336699);
///     screen->SwapBuffers();
///
/// Backends: "OpenGLES2", "DirectFB", "Hybrid", "Stub", "FB"; <zirk/backendtable.h> lists them.
///
/// **Threads**: create contexts and call the static functions from one thread of the process. A
/// context and what it created may then be used from any one thread at a time. **Ownership**: the
/// caller owns what a creation function returns, and deletes bitmaps and screens before their
/// context.
class ZIRK_API VuGraphics {
 public:
  /// Another name for ZIRK::FeatureType, the type that GetFeatureDetails() takes.
  using FeatureType = ZIRK::FeatureType;

  /// @name Creating a context
  /// @{

  /// Opens the default backend and returns a context, which the caller owns.
  ///
  /// The choice is, in this order: what SetGraphicsOverride() installed; "Stub" if the environment
  /// has `ZIRK_STUB`; the backend that `ZIRK_DEFAULT_GFX_BACKEND` or SetDefaultImpl() named,
  /// "Hybrid" at first. The name "Default", in any case, stands for "OpenGLES2" and, if that fails,
  /// "DirectFB". `flag` is passed to the backend; ZIRK's own ignore it, so pass false. Returns
  /// null, with an error line, if no backend can be opened or memory runs out.
  [[nodiscard]] static VuGraphics* Create(bool flag);
  /// The same as Create(false).
  [[nodiscard]] static VuGraphics* Create();
  /// Opens the backend `name`, in any case of letters, and returns a context, which the caller
  /// owns. Null and "Default" do the same as Create(). A name that
  /// GraphicsImplLoader::SetupGfxImpl() added is not known here; SetDefaultImpl() takes it. Returns
  /// null, with an error line, for an unknown name, a plug-in that does not open, and if memory
  /// runs out.
  [[nodiscard]] static VuGraphics* Create(const char* name, bool flag);
  /// Opens "Hybrid" if that is the default backend, otherwise "OpenGLES2". The caller owns the
  /// context; null, with an error line, if the plug-in does not open or memory runs out.
  [[nodiscard]] static VuGraphics* CreateGL(bool flag);
  /// The same as CreateGL(false).
  [[nodiscard]] static VuGraphics* CreateGL();
  /// The same as Create("DirectFB", false).
  [[nodiscard]] static VuGraphics* CreateDFB();
  /// The same as Create("Stub", false).
  [[nodiscard]] static VuGraphics* CreateStub();

  /// Sets the name of the backend that Create() opens; null restores "Hybrid". The name is copied
  /// and not checked. `ZIRK_DEFAULT_GFX_BACKEND` replaces it once, when the first context is
  /// created or the first query is made.
  static void SetDefaultImpl(const char* name);
  /// The name of the default backend. The string is valid until the name changes.
  [[nodiscard]] static const char* GetDefaultImpl();
  /// Makes Create() and Create(bool) return what `f` returns, null included. `f` receives their
  /// `flag`. An empty `f` removes the override.
  static void SetGraphicsOverride(std::function<VuGraphics*(bool)> f);

  /// Wraps a backend that the application made itself. The context owns `impl`, which must not be
  /// null.
  explicit VuGraphics(VuGraphicsImpl* impl);
  /// Deletes the backend. Delete the screens and bitmaps of the context first.
  ~VuGraphics();
  VuGraphics(const VuGraphics&) = delete;
  VuGraphics& operator=(const VuGraphics&) = delete;

  /// @}

  /// @name Screens
  /// @{

  /// Creates a screen of the device's own size, or of 1280 x 720 pixels if it has none, in ARGB8888
  /// with two buffers. `flag` is the option of a description. The caller owns the screen;
  /// null, with an error line, if it cannot be made.
  [[nodiscard]] VuBitmap* CreateScreen(bool flag);
  /// Creates the screen that `description` asks for. The caller owns the screen; null, with an
  /// error line, if it cannot be made: no memory, an unknown format or a side above the limit.
  [[nodiscard]] VuBitmap* CreateScreen(const VuScreenDescription& description);
  /// The same from single values. `doubleBuffer` asks for two buffers, else one. Of `index`, the
  /// number of the display from 0, only the low 8 bits count. `option` is passed to the backend;
  /// ZIRK's own ignore it.
  [[nodiscard]] VuBitmap* CreateScreen(int width, int height, bool doubleBuffer, int index,
                                       bool option, VuPixelFormat format);
  /// The same in ARGB8888.
  [[nodiscard]] VuBitmap* CreateScreen(int width, int height, bool doubleBuffer, int index,
                                       bool option);
  /// The same in ARGB8888, without the option.
  [[nodiscard]] VuBitmap* CreateScreen(int width, int height, bool doubleBuffer, int index);
  /// The same in ARGB8888 on display 0, without the option.
  [[nodiscard]] VuBitmap* CreateScreen(int width, int height, bool doubleBuffer);

  /// @}

  /// @name Bitmaps
  /// @{

  /// Creates an off-screen bitmap, transparent, or black if the format has no alpha. The caller
  /// owns it; null, with an error line, for a side below 1 or above the limit, an unknown format,
  /// and if memory does not allow it.
  [[nodiscard]] VuBitmap* CreateBitmap(int width, int height, VuPixelFormat format);

  /// Reads the picture file `path` into a bitmap of its own size, in ARGB8888 with scale mode
  /// Nearest. The caller owns the bitmap; null, with an error line, if the file cannot be read or
  /// decoded or memory does not allow it.
  [[nodiscard]] VuBitmap* CreateBitmapFromFile(const char* path);
  /// The same at the size that GetScaledDimensions() gives for the box `width` x `height` pixels
  /// and `displayMode`. `scaleMode` filters the picture while it is scaled; the bitmap's own scale
  /// mode is Nearest.
  [[nodiscard]] VuBitmap* CreateBitmapFromFile(const char* path, int width, int height,
                                               VuScaleMode scaleMode, VuDisplayMode displayMode);
  /// The same, stretched to `width` x `height` pixels.
  [[nodiscard]] VuBitmap* CreateBitmapFromFile(const char* path, int width, int height,
                                               VuScaleMode scaleMode);

  /// Decodes the encoded picture of `size` bytes at `data`, which is read during the call only,
  /// into a bitmap of its own size, in ARGB8888 with scale mode Nearest. The caller owns the
  /// bitmap; null, with an error line, if the data cannot be decoded or memory does not allow it.
  [[nodiscard]] VuBitmap* CreateBitmapFromMemory(const void* data, unsigned size);
  /// The same, stretched to `width` x `height` pixels and filtered by `scaleMode`.
  [[nodiscard]] VuBitmap* CreateBitmapFromMemory(const void* data, unsigned size, int width,
                                                 int height, VuScaleMode scaleMode);

  /// @}

  /// @name Memory
  /// @{

  /// Memory that a bitmap of this size and format takes, in the backend's unit (bytes for ZIRK's
  /// own). 0 if it could not be created for its size or format.
  [[nodiscard]] unsigned BitmapSize(int width, int height, VuPixelFormat format) const;
  /// The same for the picture in a file, at its own size. 0, with an error line, if it cannot be
  /// read.
  [[nodiscard]] unsigned BitmapSize(const char* path) const;
  /// The same for the picture in a file, stretched to `width` x `height` pixels.
  [[nodiscard]] unsigned BitmapSize(const char* path, int width, int height) const;
  /// The same for an encoded picture of `size` bytes at `data`, at its own size.
  [[nodiscard]] unsigned BitmapSize(const void* data, unsigned size) const;
  /// The same for an encoded picture in memory, stretched to `width` x `height` pixels.
  [[nodiscard]] unsigned BitmapSize(const void* data, unsigned size, int width, int height) const;

  /// Memory left for new surfaces, in the unit of BitmapSize().
  [[nodiscard]] unsigned AvailableMemory() const;
  /// Memory for surfaces in all, in the unit of BitmapSize().
  [[nodiscard]] unsigned TotalMemory() const;

  /// Writes the list of this context's surfaces to `os`, one line each.
  void PrintBitmapList(std::ostream& os);

  /// @}

  /// @name The backend
  /// @{

  /// Submits pending drawing on all surfaces of the context to the device, without waiting for it.
  void Flush();
  /// Passed to the backend. ZIRK's own ignore it.
  void SetTerminateOnDestruct(bool terminate);

  /// The backend's type code: a BackendType, or another number for a third party's backend.
  [[nodiscard]] int GetGraphicsType() const;
  /// The largest side of a bitmap, in pixels; 2048 if the backend does not say.
  [[nodiscard]] int GetMaxTextureSize() const;

  /// @}

  /// @name Queries
  /// @{

  /// Replaces the box `width` x `height` by the size at which a picture of `srcWidth` x `srcHeight`
  /// is shown in it. Fractions are cut off. Any thread may call.
  ///
  /// A box without extent takes the picture's size. The picture is *narrower* than the box if its
  /// aspect ratio (width / height) is smaller. Fit scales a narrower picture to the height of the
  /// box and any other to its width. Fill scales a narrower picture to the width of the box and
  /// leaves any other at its own size, which may not cover the box. An unknown mode leaves the box
  /// as it is, with a warning.
  static void GetScaledDimensions(int srcWidth, int srcHeight, int& width, int& height,
                                  VuDisplayMode mode);

  /// Whether the plug-in of the backend `name` is installed in /lib or /usr/lib. False, with a
  /// warning, for an unknown name. A null name raises std::logic_error.
  static bool HasBackend(const char* name);
  /// The names of all backends for which HasBackend() holds, in no particular order; stores their
  /// number in `count`. The array is valid until the next call.
  static const char* const* GetSupportedBackends(unsigned& count);
  /// The feature bits of the backend `name`: bit 0 is set if it draws by OpenGL ES. "Default"
  /// stands for "Hybrid". 0, with a warning, for an unknown name.
  static unsigned GetSupportedFeatures(std::string name);
  /// For FeatureType::Details, stores the backend's detail bits, a `uint32_t`, at `out`: 0, with a
  /// warning, for an unknown name. For any other type it stores nothing. "Default" stands for
  /// "Hybrid".
  static void GetFeatureDetails(std::string name, FeatureType type, void* out);

  /// @}

 private:
  friend class VuGraphicsMgr;

  VuGraphicsImpl* impl;
};

/// Writes a list of every live context with its surfaces and memory to `os`. Printed addresses are
/// XORed with `key`. Any thread may call.
ZIRK_API void PrintBitmapList(unsigned key, std::ostream& os);

}  // namespace ZIRK
