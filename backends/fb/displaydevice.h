#pragma once

#include <zirk/vuenums.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "fb/scanoutcopier.h"
#include "geometry/box.h"
#include "images/image.h"

namespace ZIRK::backends {

/// A display that is driven by the kernel, without a window system. Pictures are copied to it from
/// memory.
///
/// Memory that is shown is written and never read. A picture that is larger or smaller than the
/// display is shown from the top-left corner. The destructor restores what was shown before.
class DisplayDevice {
 public:
  /// The picture that Open() asks the driver to show. Sizes are those before the rotation.
  struct Request {
    int width = 0;  ///< Pixels; the display's own size if either side is zero or less.
    int height = 0;
    /// Two pages, if the driver can show either.
    bool doubleBuffer = false;
    VuPixelFormat format = VuPixelFormat::XRGB8888;  ///< Format of the picture.
    Rotation rotation = Rotation::None;
  };

  /// Opens display `index` of the device that the environment variable `ZIRK_FB_DEVICE` names.
  /// Without the variable, opens display `index` of the cards in `/dev/dri`, or else the
  /// framebuffer device of that number. `ZIRK_FB_ROTATE` sets the rotation. Returns null, with the
  /// reason in `error`, if there is no such display or if another program uses it.
  static std::unique_ptr<DisplayDevice> Open(int index, Request request, std::string& error);

  /// The size of a picture that fills display `index`; nullopt if Open() would find no display.
  static std::optional<ImageSize> SizeOf(int index);

  virtual ~DisplayDevice() = default;

  /// Size of the picture that fills the display, in pixels.
  virtual int Width() const = 0;
  virtual int Height() const = 0;

  /// Shows what changed since the last call: the part `damage` of a picture whose rows are `pitch`
  /// bytes apart, a multiple of four. Waits for the display's vertical sync, if it has one.
  virtual void Present(const uint8_t* pixels, int pitch, VuPixelFormat format,
                       const Box& damage) = 0;

  /// For messages: size, depth of the pixels, and the device.
  virtual std::string Description() const = 0;
};

}  // namespace ZIRK::backends
