#include "fb/framebufferdevice.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <unistd.h>
#include <zirk/impl/log.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "geometry/surfaceformat.h"

namespace ZIRK::backends {

namespace {

/// The type of ioctl()'s request, which differs between C libraries.
template <typename Request>
Request RequestOf(int (*)(int, Request, ...));

class SystemIo : public FramebufferIo {
 public:
  int Open(const char* path) override { return open(path, O_RDWR | O_CLOEXEC); }
  void Close(int fd) override { close(fd); }
  bool Control(int fd, unsigned long request, void* argument) override {
    return ioctl(fd, static_cast<decltype(RequestOf(&ioctl))>(request), argument) == 0;
  }
  void* Map(int fd, size_t length) override {
    void* const memory = mmap(nullptr, length, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    return memory == MAP_FAILED ? nullptr : memory;
  }
  void Unmap(void* memory, size_t length) override { munmap(memory, length); }
};

fb_bitfield Bits(unsigned offset, unsigned length) {
  fb_bitfield field{};
  field.offset = offset;
  field.length = length;
  return field;
}

/// Proposes the usual layout of 32 or 16 bits; drivers replace it with their own.
void ProposeDepth(fb_var_screeninfo& mode, unsigned bits) {
  mode.bits_per_pixel = bits;
  mode.grayscale = 0;
  mode.red = bits == 32 ? Bits(16, 8) : Bits(11, 5);
  mode.green = bits == 32 ? Bits(8, 8) : Bits(5, 6);
  mode.blue = bits == 32 ? Bits(0, 8) : Bits(0, 5);
  mode.transp = Bits(0, 0);
}

}  // namespace

std::shared_ptr<FramebufferIo> SystemFramebufferIo() {
  return std::make_shared<SystemIo>();
}

std::string FramebufferDevice::PathOf(int display) {
  return "/dev/fb" + std::to_string(display);
}

std::optional<ImageSize> FramebufferDevice::SizeOf(const std::string& path,
                                                   const std::shared_ptr<FramebufferIo>& io) {
  const int fd = io->Open(path.c_str());
  if (fd < 0) return std::nullopt;
  fb_var_screeninfo mode{};
  const bool known = io->Control(fd, FBIOGET_VSCREENINFO, &mode);
  io->Close(fd);
  const auto valid = [](uint32_t side) { return side > 0 && side <= kMaxSide; };
  if (!known || !valid(mode.xres) || !valid(mode.yres)) return std::nullopt;
  return ImageSize{static_cast<int>(mode.xres), static_cast<int>(mode.yres)};
}

std::unique_ptr<FramebufferDevice> FramebufferDevice::Open(const std::string& path,
                                                           const Request& request,
                                                           std::string& error,
                                                           std::shared_ptr<FramebufferIo> io) {
  const int fd = io->Open(path.c_str());
  if (fd < 0) {
    error = path + ": " + std::strerror(errno);
    return nullptr;
  }
  std::unique_ptr<FramebufferDevice> device(new FramebufferDevice(path, std::move(io), fd));
  if (!device->Prepare(request, error)) return nullptr;
  return device;
}

FramebufferDevice::FramebufferDevice(std::string path, std::shared_ptr<FramebufferIo> io, int fd)
    : path_(std::move(path)), io_(std::move(io)), fd_(fd) {}

FramebufferDevice::~FramebufferDevice() {
  Restore();
  if (mapping_) io_->Unmap(mapping_, mappedBytes_);
  io_->Close(fd_);
}

std::string FramebufferDevice::Description() const {
  return std::to_string(mode_.xres) + " x " + std::to_string(mode_.yres) + ", " +
         std::to_string(mode_.bits_per_pixel) + " bits, " + path_;
}

bool FramebufferDevice::Prepare(const Request& request, std::string& error) {
  if (!ReadMode()) {
    error = Reason("is not a framebuffer device");
    return false;
  }
  found_ = mode_;
  if (!FindTrueColour()) {
    error = path_ + ": has no true-colour mode of 32 or 16 bits";
    return false;
  }
  const bool sideways = IsSideways(request.rotation);
  if (!TrySize(sideways ? request.height : request.width,
               sideways ? request.width : request.height)) {
    error = Reason("cannot return to its mode");
    return false;
  }
  if (!MapMemory()) {
    error = Reason("cannot map its memory");
    return false;
  }
  copier_.emplace(*layout_, static_cast<int>(mode_.xres), static_cast<int>(mode_.yres),
                  request.rotation);
  SetUpPages(request.doubleBuffer);
  vsync_.emplace(io_, path_);
  return true;
}

// --- Modes --------------------------------------------------------------------------------------

bool FramebufferDevice::ReadMode() {
  if (!io_->Control(fd_, FBIOGET_VSCREENINFO, &mode_)) return false;
  if (!io_->Control(fd_, FBIOGET_FSCREENINFO, &fixed_)) return false;
  layout_ = LayoutOf(mode_, fixed_);
  if (layout_ && !FitsMemory(uint64_t{mode_.yoffset} + mode_.yres)) layout_.reset();
  return true;
}

/// Whether the driver takes the mode, or one like it that can be drawn to.
bool FramebufferDevice::TryMode(const fb_var_screeninfo& mode) {
  fb_var_screeninfo asked = mode;
  asked.activate = FB_ACTIVATE_NOW;
  if (!io_->Control(fd_, FBIOPUT_VSCREENINFO, &asked)) return false;
  modeChanged_ = true;
  return ReadMode() && layout_;
}

bool FramebufferDevice::FindTrueColour() {
  if (layout_) return true;
  for (const unsigned bits : {32u, 16u}) {
    fb_var_screeninfo asked = found_;
    ProposeDepth(asked, bits);
    if (TryMode(asked)) return true;
  }
  return false;
}

/// False if a refused size has left the device without a mode that can be drawn to.
bool FramebufferDevice::TrySize(int width, int height) {
  if (width <= 0 || height <= 0 || width > kMaxSide || height > kMaxSide) return true;
  if (width == static_cast<int>(mode_.xres) && height == static_cast<int>(mode_.yres)) return true;
  const fb_var_screeninfo before = mode_;
  fb_var_screeninfo asked = mode_;
  asked.xres = static_cast<uint32_t>(width);
  asked.yres = static_cast<uint32_t>(height);
  asked.xres_virtual = asked.xres;
  asked.yres_virtual = std::max(asked.yres, before.yres_virtual);
  asked.xoffset = 0;
  asked.yoffset = 0;
  return TryMode(asked) || layout_ || TryMode(before);
}

/// Whether the device's memory has the first `rows` rows of the virtual screen.
bool FramebufferDevice::FitsMemory(uint64_t rows) const {
  const uint64_t rowBytes = (uint64_t{mode_.xoffset} + mode_.xres) * mode_.bits_per_pixel / 8;
  return mode_.xres > 0 && mode_.yres > 0 && mode_.xres <= kMaxSide && mode_.yres <= kMaxSide &&
         rowBytes <= fixed_.line_length && rows * fixed_.line_length <= fixed_.smem_len;
}

void FramebufferDevice::Restore() {
  fb_var_screeninfo mode = found_;
  mode.activate = FB_ACTIVATE_NOW;
  if (modeChanged_ && !io_->Control(fd_, FBIOPUT_VSCREENINFO, &mode))
    ZIRK_LOG_ERROR("%s", Reason("cannot restore its mode").c_str());
  if (panned_ && !io_->Control(fd_, FBIOPAN_DISPLAY, &mode))
    ZIRK_LOG_ERROR("%s", Reason("cannot restore its offset").c_str());
}

std::string FramebufferDevice::Reason(const char* what) const {
  return path_ + ": " + what + ": " + std::strerror(errno);
}

// --- Memory and pages ---------------------------------------------------------------------------

bool FramebufferDevice::MapMemory() {
  // A mapping starts on the page that the memory starts on.
  const auto page = static_cast<unsigned long>(sysconf(_SC_PAGESIZE));
  const size_t start = fixed_.smem_start % page;
  mappedBytes_ = start + fixed_.smem_len;
  mapping_ = static_cast<uint8_t*>(io_->Map(fd_, mappedBytes_));
  if (!mapping_) return false;
  memory_ = mapping_ + start;
  return true;
}

/// Uses pages only if the virtual screen already has them: drivers that grant one on request may
/// show the wrong part of it.
void FramebufferDevice::SetUpPages(bool wanted) {
  const auto hasTwo = [](const fb_var_screeninfo& mode) {
    return mode.yres_virtual / 2 >= mode.yres;
  };
  const bool possible = hasTwo(found_) && hasTwo(mode_) && FitsMemory(2 * uint64_t{mode_.yres}) &&
                        fixed_.ypanstep != 0 && mode_.yres % fixed_.ypanstep == 0;
  twoPages_ = wanted && possible && ShowPage(0);
  const unsigned firstRow = twoPages_ ? 0 : mode_.yoffset;
  const unsigned rows = twoPages_ ? 2 * mode_.yres : mode_.yres;
  const size_t rowBytes = size_t{mode_.xres} * layout_->BytesPerPixel();
  uint8_t* row = PixelsFrom(firstRow);
  for (unsigned y = 0; y < rows; ++y, row += fixed_.line_length) std::memset(row, 0, rowBytes);
}

bool FramebufferDevice::ShowPage(unsigned page) {
  fb_var_screeninfo mode = mode_;
  mode.yoffset = page * mode_.yres;
  mode.activate = FB_ACTIVATE_VBL;
  if (!io_->Control(fd_, FBIOPAN_DISPLAY, &mode)) return false;
  panned_ = true;
  shownPage_ = page;
  mode_.yoffset = mode.yoffset;
  return true;
}

// --- Frames -------------------------------------------------------------------------------------

void FramebufferDevice::Present(const uint8_t* pixels, int pitch, VuPixelFormat format,
                                const Box& damage) {
  const Box box = Intersection(damage, {0, 0, Width(), Height()});
  if (box.IsEmpty()) return vsync_->Wait();
  if (!copier_->SetSource(pixels, pitch, format, box)) {
    ZIRK_LOG_ERROR("%s: cannot show pixels of format %d", path_.c_str(), static_cast<int>(format));
    return;
  }
  if (twoPages_) return Flip(box);
  vsync_->Wait();
  copier_->Copy(box, PixelsFrom(mode_.yoffset), fixed_.line_length);
}

/// Updates the hidden page and shows it.
void FramebufferDevice::Flip(const Box& damage) {
  const unsigned page = 1 - shownPage_;
  copier_->CopyToHidden(damage, PixelsFrom(page * mode_.yres), fixed_.line_length);
  if (ShowPage(page)) return vsync_->Wait();

  // The page that is still shown lacks only this frame's changes.
  ZIRK_LOG_WARNING("%s", Reason("cannot show its second page, uses one page").c_str());
  twoPages_ = false;
  copier_->ForgetHidden();
  copier_->Copy(damage, PixelsFrom(mode_.yoffset), fixed_.line_length);
}

/// The display's first pixel, where its first row is row `firstRow` of the virtual screen.
uint8_t* FramebufferDevice::PixelsFrom(unsigned firstRow) const {
  return memory_ + size_t{firstRow} * fixed_.line_length +
         size_t{mode_.xoffset} * layout_->BytesPerPixel();
}

}  // namespace ZIRK::backends
