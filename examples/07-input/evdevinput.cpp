#include <fcntl.h>
#include <libevdev/libevdev.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "input.h"

using namespace ZIRK;

namespace {

struct Closer {
  void operator()(libevdev* device) const {
    const int fd = libevdev_get_fd(device);
    libevdev_free(device);
    close(fd);
  }
};
using DevicePtr = std::unique_ptr<libevdev, Closer>;

DevicePtr Open(const char* path) {
  const int fd = open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (fd < 0) {
    std::perror(path);
    return nullptr;
  }
  libevdev* device = nullptr;
  if (libevdev_new_from_fd(fd, &device) < 0) {
    close(fd);
    return nullptr;
  }
  return DevicePtr(device);
}

int RotationOfScreen() {
  const char* const degrees = std::getenv("ZIRK_FB_ROTATE");
  return degrees ? std::atoi(degrees) : 0;
}

/// A device, and where its finger or pointer is.
class Source {
 public:
  Source(DevicePtr device, VuRect screen)
      : device_(std::move(device)),
        screen_(screen),
        mouse_{screen.width / 2, screen.height / 2},
        rotation_(RotationOfScreen()) {}

  bool Read(std::vector<Touch>& touches) {
    unsigned flag = LIBEVDEV_READ_FLAG_NORMAL;
    for (;;) {
      input_event event;
      const int status = libevdev_next_event(device_.get(), flag, &event);
      if (status == -EAGAIN && flag == LIBEVDEV_READ_FLAG_NORMAL) return true;
      if (status < 0 && status != -EAGAIN) return true;  // Unplugged; the others go on.
      // The kernel dropped events. The changes since then are read first.
      flag =
          status == LIBEVDEV_READ_STATUS_SYNC ? LIBEVDEV_READ_FLAG_SYNC : LIBEVDEV_READ_FLAG_NORMAL;
      if (status == -EAGAIN) continue;
      if (event.type == EV_KEY && event.code == KEY_ESC && event.value == 1) return false;
      Take(event, touches);
    }
  }

 private:
  void Take(const input_event& event, std::vector<Touch>& touches) {
    if (event.type == EV_KEY && (event.code == BTN_TOUCH || event.code == BTN_LEFT)) {
      isDown_ = event.value != 0;
      isFirst_ = isDown_;
    } else if (event.type == EV_REL && event.code == REL_X) {
      mouse_.x = std::clamp(mouse_.x + event.value, 0, screen_.width - 1);
    } else if (event.type == EV_REL && event.code == REL_Y) {
      mouse_.y = std::clamp(mouse_.y + event.value, 0, screen_.height - 1);
    } else if (event.type == EV_SYN && event.code == SYN_REPORT && isDown_) {
      touches.push_back({Position(), isFirst_});
      isFirst_ = false;
    }
  }

  /// From 0 to 1 along an axis of the panel.
  double Along(unsigned axis) const {
    const input_absinfo& range = *libevdev_get_abs_info(device_.get(), axis);
    const double extent = range.maximum - range.minimum;
    return extent > 0 ? (range.value - range.minimum) / extent : 0;
  }

  VuPoint Position() const {
    if (!libevdev_has_event_code(device_.get(), EV_ABS, ABS_X) ||
        !libevdev_has_event_code(device_.get(), EV_ABS, ABS_Y))
      return mouse_;
    double x = Along(ABS_X), y = Along(ABS_Y);
    // The picture may be rotated clockwise on the panel, but the panel's coordinates are not.
    if (rotation_ == 180 || rotation_ == 270) x = 1 - x, y = 1 - y;
    if (rotation_ == 90 || rotation_ == 270) {
      const double across = x;
      x = y;
      y = 1 - across;
    }
    return {static_cast<int>(x * (screen_.width - 1)), static_cast<int>(y * (screen_.height - 1))};
  }

  DevicePtr device_;
  VuRect screen_;
  VuPoint mouse_;
  int rotation_;
  bool isDown_ = false, isFirst_ = false;
};

class EvdevInput final : public Input {
 public:
  explicit EvdevInput(VuRect screen) {
    std::error_code error;
    for (const auto& file : std::filesystem::directory_iterator("/dev/input", error)) {
      if (file.path().filename().string().rfind("event", 0) != 0) continue;
      if (DevicePtr device = Open(file.path().c_str()))
        sources_.emplace_back(std::move(device), screen);
    }
  }

  bool Read(std::vector<Touch>& touches) override {
    return std::all_of(sources_.begin(), sources_.end(),
                       [&](Source& source) { return source.Read(touches); });
  }

 private:
  std::vector<Source> sources_;
};

}  // namespace

std::unique_ptr<Input> OpenEvdevInput(VuRect screen) {
  return std::make_unique<EvdevInput>(screen);
}
