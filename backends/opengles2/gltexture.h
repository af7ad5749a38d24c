#pragma once

#include <zirk/vuenums.h>

#include <cstdint>
#include <memory>

#include "geometry/box.h"
#include "opengles2/glfunctions.h"

namespace ZIRK::backends {

class GlDevice;
class GlPage;

/// A position, in pixels or in texels.
struct GlPoint {
  float x, y;
};

constexpr uint32_t ExchangeRedAndBlue(uint32_t p) {
  return (p & 0xFF00FF00u) | (p >> 16 & 255u) | (p & 255u) << 16;
}

/// The order of a pixel's channels in OpenGL.
enum class ChannelOrder {
  Ours,       ///< The order of a surface's bytes in memory: blue is stored as OpenGL's red.
  RedFirst,   ///< OpenGL's own.
  AlphaOnly,  ///< One channel: red is alpha.
};

/// What OpenGL draws on: a texture, or a window's framebuffer.
struct GlTarget {
  GLuint framebuffer = 0;
  SDL_Window* window = nullptr;  ///< Null for a texture.
  int width = 0;
  int height = 0;
  ChannelOrder order = ChannelOrder::Ours;
  bool keepsAlpha = false;  ///< Whether alpha is never written, so that it stays 255.

  mutable unsigned changes = 0;  ///< Counts draw calls and writes.

  bool IsWindow() const { return window != nullptr; }

  /// A premultiplied ARGB8888 colour with its channels in OpenGL's order for this target, from the
  /// lowest byte up.
  uint32_t Channels(uint32_t color) const {
    if (order == ChannelOrder::Ours) return color;
    if (order == ChannelOrder::AlphaOnly) return (color >> 24) * 0x01010101u;
    return ExchangeRedAndBlue(color);
  }
};

/// The pixels of a surface as a texture, of the surface's own format:
///
/// - The 32-bit formats store a surface's words, so OpenGL sees red and blue exchanged. Pixels need
///   no conversion; shaders exchange the channels.
/// - The 16-bit formats are OpenGL's own. Two of them have alpha in the lowest bits.
/// - A8 has one channel if OpenGL can draw on that, otherwise four, of which only alpha is used.
///
/// The top row comes first, which is OpenGL's bottom one.
///
/// A small texture may move to a page while it is drawn from. It moves back when it is written or
/// drawn on, and after some of these moves it stays outside pages.
class GlTexture {
 public:
  /// A texture of undefined pixels; null after one error line.
  static std::unique_ptr<GlTexture> Create(std::shared_ptr<GlDevice> device, int width, int height,
                                           VuPixelFormat format);
  /// Sends the draw calls that read this texture first.
  ~GlTexture();
  GlTexture(const GlTexture&) = delete;
  GlTexture& operator=(const GlTexture&) = delete;

  int Width() const { return target_.width; }
  int Height() const { return target_.height; }
  Box Bounds() const { return {0, 0, Width(), Height()}; }
  VuPixelFormat Format() const { return format_; }
  GLuint Name() const { return name_; }
  GlDevice& Device() const { return *device_; }

  /// Allows the texture to move to a page if it is small.
  void AllowPage();
  bool MayMove() const { return moves_ > 0 && !page_; }
  bool IsInPage() const { return page_ != nullptr; }
  /// Moves the texture to a page, if possible.
  void MoveToPage();
  /// Moves the texture back from its page, and keeps it out of pages from now on.
  void LeavePage();
  /// The texture that stores the pixels, this one or that of a page, and the origin in it.
  GlTexture& Storage() const { return *storage_; }
  GlPoint Origin() const { return origin_; }

  /// The texture as a target. Null after an error line.
  const GlTarget* Target();

  /// Enlarges a texture that belongs to no bitmap, and keeps its pixels. False after an error line.
  bool Enlarge(int width, int height);

  /// Writes the pixels of `box`, rows `pitch` bytes apart, in the surface's format. False after an
  /// error line.
  bool Upload(const Box& box, const void* pixels, unsigned pitch);

  /// Copies `box` of the bound framebuffer to (x, y).
  void CopyFromFramebuffer(const Box& box, int x, int y);

  /// The texture must be bound.
  void SetFilter(GLint filter);
  /// Labels the texture for debuggers.
  void SetName(const char* name);

  /// The same without making a framebuffer: use only its address and `changes`.
  const GlTarget* AsTarget() const { return &target_; }

  ChannelOrder Order() const { return target_.order; }

 private:
  GlTexture(std::shared_ptr<GlDevice> device, int width, int height, VuPixelFormat format);
  bool IsUploadedAsItIs() const;
  bool ReturnFromPage();
  void Exchange(GlTexture& other);
  void DeleteStorage();

  const std::shared_ptr<GlDevice> device_;
  const VuPixelFormat format_;
  GLint filter_ = GL_NEAREST;
  GLuint name_ = 0;  ///< 0 while it is in a page.
  GlTarget target_;
  GlTexture* storage_ = this;
  GlPoint origin_ = {0, 0};
  int moves_ = 0;  ///< The number of times that it may still move to a page.
  std::shared_ptr<GlPage> page_;
  Box place_;  ///< In the page, with its border.
};

/// Whether OpenGL can draw on textures of one channel. Call it once, with nothing bound.
bool DrawsOnOneChannel(const GlFunctions& gl);

/// Reads `box` of the framebuffer of `target`, which is bound, as rows of `format` without padding,
/// top row first. False after an error line if memory runs out.
bool ReadFramebuffer(const GlFunctions& gl, const GlTarget& target, const Box& box,
                     VuPixelFormat format, void* out);

}  // namespace ZIRK::backends
