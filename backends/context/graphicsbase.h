#pragma once

#include <zirk/impl/vugraphicsimpl.h>

#include <memory>
#include <optional>

#include "images/image.h"
#include "surface/memorybudget.h"

namespace ZIRK::backends {

/// The base of every graphics context: it creates surfaces, lists them, and keeps their memory
/// within a limit. A backend derives from it and makes the surfaces themselves.
class GraphicsBase : public VuGraphicsImpl {
 public:
  /// `memoryLimit` is the number of bytes for all surfaces together.
  explicit GraphicsBase(uint64_t memoryLimit = MemoryBudget::QuarterOfMachineMemory());
  /// Shares the limit and the list of surfaces with another context.
  explicit GraphicsBase(std::shared_ptr<MemoryBudget> budget);

  // Creates surfaces.

  /// A screen of the device's own size in ARGB8888, double-buffered. `flag` becomes the `option`.
  VuScreenImpl* CreateScreen(bool flag) final;
  /// A screen as described. Without a size it gets that of the device, or else 1280 x 720.
  VuScreenImpl* CreateScreen(const VuScreenDescription& description) final;
  /// An empty bitmap.
  VuBitmapImpl* CreateBitmap(int width, int height, VuPixelFormat format) final;
  /// A picture in its own size, from a file or from memory.
  VuBitmapImpl* CreateBitmapFromFile(const char* path) final;
  VuBitmapImpl* CreateBitmapFromMemory(const void* data, unsigned size) final;
  /// A picture fitted into a box, from a file or from memory.
  VuBitmapImpl* CreateBitmapFromFile(const char* path, int width, int height, VuScaleMode scaleMode,
                                     VuDisplayMode displayMode) final;
  VuBitmapImpl* CreateBitmapFromMemory(const void* data, unsigned size, int width, int height,
                                       VuScaleMode scaleMode) final;

  // Lists surfaces.

  /// Prints one line per surface, oldest first. Addresses are XORed with `key`.
  void PrintBitmapList(unsigned key, std::ostream& os) final;

  // Reports limits.

  /// The bytes that new surfaces may still take.
  unsigned AvailableMemory() const final;
  /// The bytes that all surfaces together may take.
  unsigned TotalMemory() const final;
  /// The bytes that a bitmap would take; 0 if it cannot be created.
  unsigned BitmapSize(int width, int height, VuPixelFormat format) const final;
  /// The same for a picture in its own size.
  unsigned BitmapSize(const char* path) const final;
  unsigned BitmapSize(const void* data, unsigned size) const final;
  /// The same for a picture stretched to a size.
  unsigned BitmapSize(const char* path, int width, int height) const final;
  unsigned BitmapSize(const void* data, unsigned size, int width, int height) const final;
  /// The largest side of a surface, in pixels.
  int GetMaxTextureSize() const override;

 protected:
  using Reservation = std::unique_ptr<MemoryBudget::Reservation>;

  /// The size of the display `index`; no value, as unless overridden, if there is none or it is
  /// unknown.
  virtual std::optional<ImageSize> DeviceSize(int index) const;

  // What a backend makes. Each surface holds `reservation` as long as it lives. These return null
  // after an error line; if one throws std::bad_alloc, the caller logs the line and returns null.

  /// A screen. `description` has a size and a format that a surface can have.
  virtual std::unique_ptr<VuScreenImpl> MakeScreen(Reservation reservation,
                                                   const VuScreenDescription& description) = 0;
  /// A bitmap with nothing drawn on it.
  virtual std::unique_ptr<VuBitmapImpl> MakeBitmap(Reservation reservation, int width, int height,
                                                   VuPixelFormat format) = 0;
  /// An ARGB8888 bitmap of this size, filled with the decoded picture.
  virtual std::unique_ptr<VuBitmapImpl> MakePicture(Reservation reservation, int width, int height,
                                                    Image& image, VuScaleMode scaleMode) = 0;

  /// The memory limit and the list of surfaces.
  const std::shared_ptr<MemoryBudget>& Budget() const { return budget_; }

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

  const std::shared_ptr<MemoryBudget> budget_;
};

}  // namespace ZIRK::backends
