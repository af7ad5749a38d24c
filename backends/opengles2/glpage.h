#pragma once

#include <zirk/maxrectsbinpack.h>

#include <memory>
#include <utility>

#include "opengles2/gltexture.h"

namespace ZIRK::backends {

/// A texture that small textures of one format share, so that one draw call can read all of them.
/// It grows with their number, up to a limit, and is deleted with the last of them.
///
/// Each has a border that repeats its outermost pixels. Interpolation reads the border instead of
/// the adjacent textures.
class GlPage {
 public:
  static constexpr int kBorder = 1;

  static bool IsSmall(int width, int height) {
    constexpr int kMost = 128;
    return width <= kMost && height <= kMost;
  }
  /// Whether `device` has a page of that format.
  static bool Exists(const GlDevice& device, VuPixelFormat format);

  /// Copies `texture` to a page of the device, and stores its box, border included, in `place`.
  /// Null if that fails.
  static std::shared_ptr<GlPage> Place(const std::shared_ptr<GlDevice>& device, GlTexture& texture,
                                       Box& place);
  /// Frees a box, after sending the draw calls that read it.
  void Free(const Box& place);

  explicit GlPage(std::unique_ptr<GlTexture> texture);

  GlTexture& Texture() const { return *texture_; }

 private:
  bool FindPlace(int width, int height, Box& place);
  bool Copy(const GlTarget& from, const Box& place);

  const std::unique_ptr<GlTexture> texture_;
  MaxRectsBinPack packer_;
};

}  // namespace ZIRK::backends
