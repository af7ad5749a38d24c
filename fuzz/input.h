#pragma once

#include <zirk/zirk.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>

#include "support/offscreen.h"

namespace ZIRK::fuzz {

/// Reads values from the front of an input; zeros after its end.
class Input {
 public:
  Input(const uint8_t* data, size_t size) : data_(data), end_(data + size) {}

  uint8_t Byte() { return data_ == end_ ? uint8_t{0} : *data_++; }
  /// A number below `count`, which is at most 256.
  uint8_t Below(unsigned count) { return static_cast<uint8_t>(Byte() % count); }
  uint32_t Word() {
    uint32_t word = 0;
    for (int i = 0; i < 4; ++i) word = word << 8 | Byte();
    return word;
  }
  /// A number from -8 to 54, on a small surface or just outside it; sometimes an extreme value of
  /// the type.
  int Coordinate() {
    constexpr std::array kFar{std::numeric_limits<int>::min(), std::numeric_limits<int>::max(),
                              -1000000, 40000};
    const uint8_t byte = Byte();
    return byte < 252 ? byte / 4 - 8 : kFar[byte - 252u];
  }
  /// A number between -16 and 14, in steps of 1/8; sometimes one that is hard to compute with.
  float Number() {
    constexpr float kMost = std::numeric_limits<float>::max();
    constexpr std::array kHard{std::numeric_limits<float>::quiet_NaN(),
                               std::numeric_limits<float>::infinity(),
                               kMost,
                               -kMost,
                               1e-40f,
                               3e9f,
                               -1e6f,
                               1e-5f};
    const uint8_t byte = Byte();
    return byte < 248 ? static_cast<float>(byte - 128) / 8 : kHard[byte - 248u];
  }

 private:
  const uint8_t* data_;
  const uint8_t* end_;
};

/// A context of a backend that uses no display and logs nothing.
inline std::unique_ptr<VuGraphics> NewContext(const char* backend) {
  LogLevel = 0;
  setenv("ZIRK_FB_DEVICE", "/nonexistent", 1);
  support::UseOffscreenOpenGl();
  std::unique_ptr<VuGraphics> context(VuGraphics::Create(backend, false));
  if (!context) std::abort();
  return context;
}

/// A context of FB, which the first call opens and which stays open.
inline VuGraphics& Context() {
  static const std::unique_ptr<VuGraphics> context = NewContext("FB");
  return *context;
}

}  // namespace ZIRK::fuzz

/// Each target defines this function, which carries out the input. It always returns 0.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);
