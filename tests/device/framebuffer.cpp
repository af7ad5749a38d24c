// framebuffer mode                              prints the mode of /dev/fb0
// framebuffer set <width> <height> <bits> <pages>   sets it
// framebuffer read                              writes what is shown, as PPM
//
// Looks at a framebuffer device beside the library, through the kernel's interface alone.

#include <fcntl.h>
#include <linux/fb.h>
#include <sys/ioctl.h>
#include <sys/mman.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

int PrintMode(const fb_var_screeninfo& m) {
  std::printf("%ux%u of %ux%u at %u,%u, %u bits, red %u green %u blue %u\n", m.xres, m.yres,
              m.xres_virtual, m.yres_virtual, m.xoffset, m.yoffset, m.bits_per_pixel, m.red.offset,
              m.green.offset, m.blue.offset);
  return 0;
}

int SetMode(int fd, fb_var_screeninfo mode, char** argv) {
  const auto number = [&](int i) { return static_cast<uint32_t>(std::atoi(argv[i])); };
  mode.xres = mode.xres_virtual = number(2);
  mode.yres = number(3);
  mode.yres_virtual = mode.yres * number(5);
  mode.xoffset = mode.yoffset = 0;
  mode.bits_per_pixel = number(4);
  mode.activate = FB_ACTIVATE_NOW;
  const bool done = ioctl(fd, FBIOPUT_VSCREENINFO, &mode) == 0 && mode.xres == number(2) &&
                    mode.yres_virtual == number(3) * number(5) && mode.bits_per_pixel == number(4);
  return done ? 0 : 1;
}

/// The top 8 bits of a channel, with nothing below those that it has.
char Channel(uint32_t pixel, const fb_bitfield& field) {
  const uint32_t value = pixel >> field.offset & ((1u << field.length) - 1);
  return static_cast<char>(value << (8 - field.length));
}

int Read(int fd, const fb_var_screeninfo& mode) {
  fb_fix_screeninfo fixed{};
  if (ioctl(fd, FBIOGET_FSCREENINFO, &fixed) != 0) return 1;
  void* const memory = mmap(nullptr, fixed.smem_len, PROT_READ, MAP_SHARED, fd, 0);
  if (memory == MAP_FAILED) return 1;
  std::vector<char> row(size_t{mode.xres} * 3);
  std::printf("P6\n%u %u\n255\n", mode.xres, mode.yres);
  for (size_t y = 0; y < mode.yres; ++y) {
    const size_t bytes = mode.bits_per_pixel / 8;
    const auto* from = static_cast<const char*>(memory) + (mode.yoffset + y) * fixed.line_length +
                       mode.xoffset * bytes;
    for (size_t x = 0; x < mode.xres; ++x, from += bytes) {
      uint32_t pixel = 0;
      std::memcpy(&pixel, from, bytes);
      row[3 * x] = Channel(pixel, mode.red);
      row[3 * x + 1] = Channel(pixel, mode.green);
      row[3 * x + 2] = Channel(pixel, mode.blue);
    }
    if (std::fwrite(row.data(), 1, row.size(), stdout) != row.size()) return 1;
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string command = argc > 1 ? argv[1] : "";
  const int fd = open("/dev/fb0", O_RDWR);
  fb_var_screeninfo mode{};
  if (ioctl(fd, FBIOGET_VSCREENINFO, &mode) != 0) return 1;
  if (command == "mode") return PrintMode(mode);
  if (command == "set" && argc == 6) return SetMode(fd, mode, argv);
  return command == "read" ? Read(fd, mode) : 2;
}
