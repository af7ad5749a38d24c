#pragma once

#include <linux/fb.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "fb/displaydevice.h"
#include "fb/vsyncwait.h"

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
class FramebufferDevice final : public DisplayDevice {
 public:
  /// "/dev/fb0" for display 0 and so on.
  static std::string PathOf(int display);

  /// The display's present size; nullopt if there is no such device.
  static std::optional<ImageSize> SizeOf(
      const std::string& path, const std::shared_ptr<FramebufferIo>& io = SystemFramebufferIo());

  /// Opens the device in `path` and fills its memory with black. Width() and Height() give the size
  /// that the driver grants. Null, with the reason in `error`, if there is no such device or it has
  /// no mode that can be drawn to.
  static std::unique_ptr<FramebufferDevice> Open(
      const std::string& path, const Request& request, std::string& error,
      std::shared_ptr<FramebufferIo> io = SystemFramebufferIo());

  ~FramebufferDevice() override;
  FramebufferDevice(const FramebufferDevice&) = delete;
  FramebufferDevice& operator=(const FramebufferDevice&) = delete;

  int Width() const override { return copier_->Width(); }
  int Height() const override { return copier_->Height(); }
  void Present(const uint8_t* pixels, int pitch, VuPixelFormat format, const Box& damage) override;
  std::string Description() const override;

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
  uint8_t* PixelsFrom(unsigned firstRow) const;
  std::string Reason(const char* what) const;

  const std::string path_;
  const std::shared_ptr<FramebufferIo> io_;
  const int fd_;

  fb_var_screeninfo found_{};  ///< The mode when the device was opened.
  fb_var_screeninfo mode_{};   ///< The mode now.
  fb_fix_screeninfo fixed_{};
  std::optional<DeviceLayout> layout_;  ///< None while the mode cannot be drawn to.
  bool modeChanged_ = false;            ///< The mode must be restored.
  bool panned_ = false;                 ///< The offset must be restored.

  uint8_t* mapping_ = nullptr;
  size_t mappedBytes_ = 0;
  uint8_t* memory_ = nullptr;  ///< The first pixel of the virtual screen, inside the mapping.

  std::optional<ScanoutCopier> copier_;
  std::optional<VsyncWait> vsync_;

  bool twoPages_ = false;
  unsigned shownPage_ = 0;
};

}  // namespace ZIRK::backends
