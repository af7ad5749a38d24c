#pragma once

#include <linux/fb.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <string>
#include <vector>

#include "fb/framebufferio.h"

inline bool operator==(const fb_bitfield& a, const fb_bitfield& b) {
  return a.offset == b.offset && a.length == b.length && a.msb_right == b.msb_right;
}

namespace ZIRK::backends {

/// A framebuffer device in memory, with a driver as capable as its fields say.
class FakeFramebuffer : public FramebufferIo {
 public:
  enum class Vsync { Missing, Works, Blocks };

  FakeFramebuffer(unsigned width, unsigned height, unsigned bits, fb_bitfield red,
                  fb_bitfield green, fb_bitfield blue, fb_bitfield alpha = {}) {
    mode.xres = mode.xres_virtual = width;
    mode.yres = mode.yres_virtual = height;
    mode.bits_per_pixel = bits;
    mode.red = red;
    mode.green = green;
    mode.blue = blue;
    mode.transp = alpha;
    fixed.type = FB_TYPE_PACKED_PIXELS;
    UpdateFixed();
    memory.assign(fixed.smem_len, 0xEE);
  }

  /// Gives the virtual screen `rows` rows, and the memory for them.
  void GiveVirtualHeight(unsigned rows) {
    mode.yres_virtual = rows;
    fixed.ypanstep = 1;
    UpdateFixed();
    memory.assign(fixed.smem_len, 0xEE);
  }

  /// The pixel of the virtual screen at (x, y), as a number.
  uint32_t Pixel(unsigned x, unsigned y) const {
    uint32_t word = 0;
    const size_t bytes = mode.bits_per_pixel / 8;
    std::memcpy(&word, memory.data() + y * fixed.line_length + x * bytes, bytes);
    return word;
  }

  int Open(const char* path) override {
    lastPath = path;
    ++opened;
    return 7;
  }
  void Close(int) override { ++closed; }
  void* Map(int, size_t length) override {
    mapped = length;
    return length <= memory.size() ? memory.data() : nullptr;
  }
  void Unmap(void*, size_t length) override { mapped -= length; }

  bool Control(int, unsigned long request, void* argument) override {
    switch (request) {
      case FBIOGET_VSCREENINFO:
        std::memcpy(argument, &mode, sizeof mode);
        return true;
      case FBIOGET_FSCREENINFO:
        std::memcpy(argument, &fixed, sizeof fixed);
        return true;
      case FBIOPUT_VSCREENINFO:
        return Put(*static_cast<fb_var_screeninfo*>(argument));
      case FBIOPAN_DISPLAY:
        return Pan(*static_cast<fb_var_screeninfo*>(argument));
      case FBIO_WAITFORVSYNC:
        return WaitForVsync();
      default:
        return Fail(ENOTTY);
    }
  }

  void Unblock() {
    const std::lock_guard<std::mutex> lock(mutex_);
    unblocked_ = true;
    changed_.notify_all();
  }

  fb_var_screeninfo mode{};
  fb_fix_screeninfo fixed{};
  std::vector<uint8_t> memory;
  unsigned rowPadding = 0;               ///< Bytes at the end of each row.
  std::vector<unsigned> acceptedDepths;  ///< What FBIOPUT_VSCREENINFO may ask for.
  unsigned maxWidth = 0, maxHeight = 0;  ///< Larger modes are refused.
  unsigned grantedWidthStep = 1;         ///< Widths are rounded down to a multiple.
  int pansBeforeFailure = 1000;
  Vsync vsync = Vsync::Missing;

  std::string lastPath;
  std::atomic<int> opened{0}, closed{0}, vsyncWaits{0};
  size_t mapped = 0;
  std::vector<unsigned> pans;

 private:
  static bool Fail(int error) {
    errno = error;
    return false;
  }

  void UpdateFixed() {
    fixed.visual = mode.bits_per_pixel == 8 ? FB_VISUAL_PSEUDOCOLOR : FB_VISUAL_TRUECOLOR;
    fixed.line_length = mode.xres_virtual * mode.bits_per_pixel / 8 + rowPadding;
    fixed.smem_len = std::max(fixed.smem_len, fixed.line_length * mode.yres_virtual);
  }

  bool Put(const fb_var_screeninfo& asked) {
    const auto& depths = acceptedDepths;
    if (std::find(depths.begin(), depths.end(), asked.bits_per_pixel) == depths.end())
      return Fail(EINVAL);
    if (asked.xres > maxWidth || asked.yres > maxHeight) return Fail(EINVAL);
    mode = asked;
    mode.xres -= mode.xres % grantedWidthStep;
    UpdateFixed();
    memory.resize(fixed.smem_len, 0xEE);
    return true;
  }

  bool Pan(const fb_var_screeninfo& asked) {
    if (pansBeforeFailure-- <= 0) return Fail(EINVAL);
    mode.yoffset = asked.yoffset;
    pans.push_back(asked.yoffset);
    return true;
  }

  bool WaitForVsync() {
    ++vsyncWaits;
    if (vsync == Vsync::Missing) return Fail(ENOTTY);
    std::unique_lock<std::mutex> lock(mutex_);
    if (vsync == Vsync::Blocks) changed_.wait(lock, [this] { return unblocked_; });
    return true;
  }

  std::mutex mutex_;
  std::condition_variable changed_;
  bool unblocked_ = false;
};

}  // namespace ZIRK::backends
