#pragma once

#include <zirk/maxrectsbinpack.h>

#include <memory>
#include <utility>

#include "opengles2/gltexture.h"

namespace ZIRK::backends {

/// A texture that small ones of one format share, so that what is drawn from them fits one draw
/// call. It grows as they come, up to a limit, and is deleted with the last of them.
///
/// Each has a border of its own outermost pixels, which interpolation reads in place of its
/// neighbours.
class GlPage {
 public:
  static constexpr int kBorder = 1;

  static bool IsSmall(int width, int height) {
    constexpr int kMost = 128;
    return width <= kMost && height <= kMost;
  }
  /// Whether `device` has a page of that format.
  static bool Exists(const GlDevice& device, VuPixelFormat format);

  /// Copies `texture` to a page of the device, and says where, border and all. Null if that fails.
  static std::shared_ptr<GlPage> Place(const std::shared_ptr<GlDevice>& device, GlTexture& texture,
                                       Box& place);
  /// Makes the place free for others, after drawing what reads it.
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
