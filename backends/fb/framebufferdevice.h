#pragma once

#include <linux/fb.h>
#include <zirk/vuenums.h>
#include <zirk/vurect.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "fb/rowconverter.h"
#include "fb/vsyncwait.h"
#include "geometry/box.h"

namespace ZIRK::backends {

/// The system calls that a framebuffer device needs; tests replace them. Failures leave their
/// reason in `errno`. Any thread may call.
class FramebufferIo {
 public:
  virtual ~FramebufferIo() = default;

  /// A descriptor, or -1.
  virtual int Open(const char* path) = 0;
  virtual void Close(int fd) = 0;
  /// An ioctl of the kernel's framebuffer interface.
  virtual bool Control(int fd, unsigned long request, void* argument) = 0;
  /// The device's memory from its start, for reading and writing; null if it cannot be mapped.
  virtual void* Map(int fd, size_t length) = 0;
  virtual void Unmap(void* memory, size_t length) = 0;
};

/// The kernel's own.
std::shared_ptr<FramebufferIo> SystemFramebufferIo();

/// A display that the kernel offers as a framebuffer device, in one of its true-colour modes.
///
/// The device's memory is written and never read. A picture that is larger or smaller than the
/// display is shown from the top-left corner. The destructor restores the mode that the device had.
class FramebufferDevice {
 public:
  /// Pixels.
  struct Size {
    int width;
    int height;
  };

  /// What Open() asks the driver for.
  struct Request {
    int width = 0;  ///< Pixels; the device's own size if either side is zero or less.
    int height = 0;
    /// Two pages, if the device has the memory for them and can show either.
    bool doubleBuffer = false;
  };

  /// "/dev/fb0" for display 0 and so on; the device that the environment variable `ZIRK_FB_DEVICE`
  /// names if it is set.
  static std::string PathOf(int display);

  /// The display's present size; nullopt if there is no such device.
  static std::optional<Size> SizeOf(const std::string& path,
                                    std::shared_ptr<FramebufferIo> io = SystemFramebufferIo());

  /// Opens the device in `path` and fills its memory with black. Width() and Height() give the size
  /// that the driver grants. Null, with the reason in `error`, if there is no such device or it has
  /// no mode that can be drawn to.
  static std::unique_ptr<FramebufferDevice> Open(
      const std::string& path, const Request& request, std::string& error,
      std::shared_ptr<FramebufferIo> io = SystemFramebufferIo());

  ~FramebufferDevice();
  FramebufferDevice(const FramebufferDevice&) = delete;
  FramebufferDevice& operator=(const FramebufferDevice&) = delete;

  /// Size of the display, in pixels.
  int Width() const { return static_cast<int>(mode_.xres); }
  int Height() const { return static_cast<int>(mode_.yres); }
  /// For messages: the device, its size and the depth of its pixels.
  std::string Description() const;

  /// Shows what changed since the last call: the part `damage` of a picture whose rows are `pitch`
  /// bytes apart, a multiple of four. Waits for the display's vertical sync, where it has one.
  void Present(const uint8_t* pixels, int pitch, VuPixelFormat format, VuRect damage);

 private:
  FramebufferDevice(std::string path, std::shared_ptr<FramebufferIo> io, int fd);

  bool Prepare(const Request& request, std::string& error);
  bool ReadMode();
  bool TryMode(const fb_var_screeninfo& mode);
  bool FindTrueColour();
  bool TrySize(int width, int height);
  bool FitsMemory(uint64_t rows) const;
  bool MapMemory();
  void SetUpPages(bool wanted);
  bool ShowPage(unsigned page);
  void Restore();

  void Flip(const Box& damage);
  void Copy(const Box& box, unsigned firstRow);
  std::string Reason(const char* what) const;

  const std::string path_;
  const std::shared_ptr<FramebufferIo> io_;
  const int fd_;

  fb_var_screeninfo found_{};  ///< The mode when the device was opened.
  fb_var_screeninfo mode_{};   ///< The mode now.
  fb_fix_screeninfo fixed_{};
  std::optional<DeviceLayout> layout_;  ///< None while the mode cannot be drawn to.
  bool modeChanged_ = false;            ///< The mode has to be restored.
  bool panned_ = false;                 ///< The offset has to be restored.

  uint8_t* mapping_ = nullptr;
  size_t mappedBytes_ = 0;
  uint8_t* memory_ = nullptr;  ///< The first pixel of the virtual screen, inside the mapping.

  std::optional<RowConverter> converter_;
  std::optional<VsyncWait> vsync_;

  bool twoPages_ = false;
  unsigned shownPage_ = 0;
  Box lastDamage_;  ///< The part of the hidden page that is older than the shown one.
};

}  // namespace ZIRK::backends
