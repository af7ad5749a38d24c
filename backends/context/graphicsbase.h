#pragma once

#include <zirk/impl/vugraphicsimpl.h>

#include <memory>
#include <optional>

#include "images/image.h"
#include "surface/surfaceledger.h"

namespace ZIRK::backends {

/// What all of our graphics contexts do alike: the books on memory, and everything about creating
/// surfaces apart from the surfaces themselves. What is left to a backend is to make one.
class GraphicsBase : public VuGraphicsImpl {
 public:
  /// `memoryLimit` is what all surfaces together may take, in bytes.
  explicit GraphicsBase(uint64_t memoryLimit = SurfaceLedger::QuarterOfMachineMemory());
  /// One whose surfaces are in the same books as another's.
  explicit GraphicsBase(std::shared_ptr<SurfaceLedger> ledger);

  /// The device's own size in ARGB8888, double-buffered. `flag` becomes the `option`.
  VuScreenImpl* CreateScreen(bool flag) final;
  VuScreenImpl* CreateScreen(const VuScreenDescription& description) final;

  VuBitmapImpl* CreateBitmap(int width, int height, VuPixelFormat format) final;
  VuBitmapImpl* CreateBitmapFromFile(const char* path) final;
  VuBitmapImpl* CreateBitmapFromFile(const char* path, int width, int height, VuScaleMode scaleMode,
                                     VuDisplayMode displayMode) final;
  VuBitmapImpl* CreateBitmapFromMemory(const void* data, unsigned size) final;
  VuBitmapImpl* CreateBitmapFromMemory(const void* data, unsigned size, int width, int height,
                                       VuScaleMode scaleMode) final;

  unsigned AvailableMemory() const final;
  unsigned TotalMemory() const final;
  unsigned BitmapSize(int width, int height, VuPixelFormat format) const final;
  unsigned BitmapSize(const char* path) const final;
  unsigned BitmapSize(const char* path, int width, int height) const final;
  unsigned BitmapSize(const void* data, unsigned size) const final;
  unsigned BitmapSize(const void* data, unsigned size, int width, int height) const final;

  void PrintBitmapList(unsigned key, std::ostream& os) final;
  int GetMaxTextureSize() const override;

 protected:
  const std::shared_ptr<SurfaceLedger>& Ledger() const { return ledger_; }

  using Entry = std::unique_ptr<SurfaceLedger::Entry>;

  // What makes a surface takes its place in the ledger. It returns null after an error line, and
  // may throw std::bad_alloc, which becomes both.

  /// The size of the display `index`; no value, as unless overridden, if there is none or it is
  /// unknown. A screen that is created without a size gets this one, or else 1280 x 720.
  virtual std::optional<ImageSize> DeviceSize(int index) const;
  /// `description` has a size and a format that a surface can have.
  virtual std::unique_ptr<VuScreenImpl> MakeScreen(Entry entry,
                                                   const VuScreenDescription& description) = 0;
  /// A bitmap without anything drawn on it.
  virtual std::unique_ptr<VuBitmapImpl> MakeBitmap(Entry entry, int width, int height,
                                                   VuPixelFormat format) = 0;
  /// An ARGB8888 bitmap with the picture decoded to its size.
  virtual std::unique_ptr<VuBitmapImpl> MakePicture(Entry entry, int width, int height,
                                                    Image& image, VuScaleMode scaleMode) = 0;

 private:
  /// The box that a picture is fitted into.
  struct Fit {
    int width;
    int height;
    VuDisplayMode mode;
  };
  /// No box: the picture keeps its size.
  static constexpr Fit kOwnSize{0, 0, VuDisplayMode::Stretch};

  /// The bitmap of an opened picture; null if `image` is.
  VuBitmapImpl* CreatePicture(std::unique_ptr<Image> image, const Fit& fit, VuScaleMode scaleMode);
  /// The bytes that this bitmap takes; 0 if `image` is null.
  static unsigned PictureSize(std::unique_ptr<Image> image, const Fit& fit);

  const std::shared_ptr<SurfaceLedger> ledger_;
};

}  // namespace ZIRK::backends
