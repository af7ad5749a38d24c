#pragma once

#include <zirk/vuenums.h>

#include <cstdint>
#include <memory>

#include "geometry/box.h"
#include "opengles2/glfunctions.h"

namespace ZIRK::backends {

class GlDevice;

constexpr uint32_t ExchangeRedAndBlue(uint32_t p) {
  return (p & 0xFF00FF00u) | (p >> 16 & 255u) | (p & 255u) << 16;
}

/// Where OpenGL has the channels of a pixel.
enum class ChannelOrder {
  Ours,       ///< A pixel's bytes as they lie in memory: blue, to OpenGL, is red.
  RedFirst,   ///< OpenGL's own.
  AlphaOnly,  ///< Red is alpha, and there is nothing else.
};

/// Something to draw on: a texture, or a window's own framebuffer.
struct GlTarget {
  GLuint framebuffer = 0;
  SDL_Window* window = nullptr;  ///< Null for a texture.
  int width = 0;
  int height = 0;
  int bottom = 0;  ///< Rows of the window below the picture.
  ChannelOrder order = ChannelOrder::Ours;
  bool keepsAlpha = false;  ///< Alpha is not written, so that it stays 255.

  mutable unsigned changes = 0;  ///< Goes up whenever something is drawn or written.

  bool IsWindow() const { return window != nullptr; }

  /// A premultiplied ARGB8888 colour with its channels, from the lowest byte up, as OpenGL is given
  /// them for this target.
  uint32_t Channels(uint32_t color) const {
    if (order == ChannelOrder::Ours) return color;
    if (order == ChannelOrder::AlphaOnly) return (color >> 24) * 0x01010101u;
    return ExchangeRedAndBlue(color);
  }
};

/// The pixels of a surface as a texture, of the surface's own format:
///
/// - The 32-bit formats hold the words as they lie in memory, which to OpenGL has red and blue
///   exchanged: nothing is converted on the way in or out. Shaders put the channels in order.
/// - The 16-bit formats are OpenGL's own. Two of them have alpha at the other end.
/// - A8 is one channel where OpenGL can draw on that, and else four, of which only alpha counts.
///
/// The top row comes first, which is OpenGL's bottom one.
class GlTexture {
 public:
  /// Null after one error line. What it holds is not defined yet.
  static std::unique_ptr<GlTexture> Create(std::shared_ptr<GlDevice> device, int width, int height,
                                           VuPixelFormat format);
  /// Draws first what was to read this texture.
  ~GlTexture();
  GlTexture(const GlTexture&) = delete;
  GlTexture& operator=(const GlTexture&) = delete;

  int Width() const { return target_.width; }
  int Height() const { return target_.height; }
  Box Bounds() const { return {0, 0, Width(), Height()}; }
  VuPixelFormat Format() const { return format_; }
  GLuint Name() const { return name_; }
  GlDevice& Device() const { return *device_; }

  /// For drawing on it. Null after an error line.
  const GlTarget* Target();

  /// Pixels of `box`, rows `pitch` bytes apart, in the surface's format. May throw std::bad_alloc.
  bool Upload(const Box& box, const void* pixels, unsigned pitch);

  /// Copies `box` of the framebuffer that is bound to (x, y).
  void CopyFromFramebuffer(const Box& box, int x, int y);

  void SetFilter(GLint filter);
  void SetName(const char* name);

  /// The same, of which only the address is looked at.
  const GlTarget* AsTarget() const { return &target_; }

  ChannelOrder Order() const { return target_.order; }

 private:
  GlTexture(std::shared_ptr<GlDevice> device, int width, int height, VuPixelFormat format);
  bool IsUploadedAsItIs() const;

  const std::shared_ptr<GlDevice> device_;
  const VuPixelFormat format_;
  GlTarget target_;
  GLuint name_ = 0;
  GLint filter_ = GL_NEAREST;
};

/// Whether there are textures of one channel that can be drawn on. To be asked once, with nothing
/// bound.
bool DrawsOnOneChannel(const GlFunctions& gl);

/// Reads `box` of the framebuffer of `target`, which is bound, as tight rows of `format`, top row
/// first. May throw std::bad_alloc.
void ReadFramebuffer(const GlFunctions& gl, const GlTarget& target, const Box& box,
                     VuPixelFormat format, void* out);

}  // namespace ZIRK::backends
