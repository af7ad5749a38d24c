#include "inputs.h"

#include <cmath>
#include <random>

namespace ZIRK::bench {

namespace {

uint32_t Premultiplied(uint32_t alpha, uint32_t red, uint32_t green, uint32_t blue) {
  const auto scaled = [alpha](uint32_t channel) { return (channel * alpha + 127) / 255; };
  return alpha << 24 | scaled(red) << 16 | scaled(green) << 8 | scaled(blue);
}

/// Stripes with a soft change of colour; translucent towards the top-left corner.
Picture MakePicture(int extent, bool opaque) {
  Picture picture{extent, extent, opaque, {}};
  const auto last = static_cast<uint32_t>(extent - 1);
  for (uint32_t y = 0; y <= last; ++y) {
    for (uint32_t x = 0; x <= last; ++x) {
      const uint32_t alpha = opaque ? 255 : (x + y) * 255 / (2 * last);
      const uint32_t stripe = (x / 8 + y / 8) % 2 * 255;
      picture.pixels.push_back(Premultiplied(alpha, x * 255 / last, stripe, 255 - y * 255 / last));
    }
  }
  return picture;
}

/// A disc that fades out towards its edge.
Coverage MakeMask(int extent) {
  Coverage mask{extent, extent, {}};
  const double middle = (extent - 1) / 2.0;
  for (int y = 0; y < extent; ++y) {
    for (int x = 0; x < extent; ++x) {
      const double distance = std::hypot(x - middle, y - middle) / middle;
      mask.alpha.push_back(static_cast<uint8_t>(255 * std::fdim(1, distance)));
    }
  }
  return mask;
}

}  // namespace

std::vector<uint32_t> Picture::Straight() const {
  std::vector<uint32_t> straight;
  for (const uint32_t p : pixels) {
    const uint32_t alpha = p >> 24;
    const auto channel = [=](int shift) {
      return alpha == 0 ? 0 : ((p >> shift & 255) * 255 + alpha / 2) / alpha << shift;
    };
    straight.push_back(alpha << 24 | channel(16) | channel(8) | channel(0));
  }
  return straight;
}

std::vector<Picture> MakePictures() {
  return {MakePicture(64, true), MakePicture(64, false), MakePicture(16, false),
          MakePicture(128, false), MakePicture(200, true)};
}

std::vector<Coverage> MakeMasks() {
  return {MakeMask(200), MakeMask(64)};
}

Batch MakeBatch(int count, int width, int height) {
  std::mt19937 random(20200517);
  const auto below = [&random](int limit) {
    return static_cast<int>(random() % static_cast<uint32_t>(limit));
  };
  Batch batch;
  for (int i = 0; i < count; ++i) {
    const VuRect place{below(kWidth - width + 1), below(kHeight - height + 1), width, height};
    const double angle = below(3600) * 3.141592653589793 / 1800;
    const VuPoint from{place.x + width / 2, place.y + height / 2};
    const VuPoint to{from.x + static_cast<int>(std::lround(width / 2 * std::cos(angle))),
                     from.y + static_cast<int>(std::lround(width / 2 * std::sin(angle)))};
    batch.places.push_back(place);
    batch.colors.push_back(VuColor{0xFF000000u | static_cast<uint32_t>(below(1 << 24))});
    batch.lines.push_back({from, to});
  }
  return batch;
}

}  // namespace ZIRK::bench
