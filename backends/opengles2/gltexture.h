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
  Ours,       ///< The bytes of a surface's pixel in memory: OpenGL's red is blue.
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
  bool keepsAlpha = false;  ///< Alpha is not written, so that it stays 255.

  mutable unsigned changes = 0;  ///< Counts draw calls and writes.

  bool IsWindow() const { return window != nullptr; }

  /// A premultiplied ARGB8888 colour with its channels, from the lowest byte up, in the order that
  /// OpenGL takes for this target.
  uint32_t Channels(uint32_t color) const {
    if (order == ChannelOrder::Ours) return color;
    if (order == ChannelOrder::AlphaOnly) return (color >> 24) * 0x01010101u;
    return ExchangeRedAndBlue(color);
  }
};

/// The pixels of a surface as a texture, of the surface's own format:
///
/// - The 32-bit formats keep a surface's words, in which OpenGL takes red for blue and blue for
/// red.
///   Pixels need no conversion in or out; shaders put the channels in order.
/// - The 16-bit formats are OpenGL's own. Two of them have alpha at the other end.
/// - A8 has one channel if OpenGL can draw on that, and otherwise four, of which only alpha counts.
///
/// The top row comes first, which is OpenGL's bottom one.
///
/// A small one may move to a page while it is drawn from. It moves back when it is written or
/// drawn on, and after some such moves it stays where it is.
class GlTexture {
 public:
  /// A texture of undefined pixels; null after one error line.
  static std::unique_ptr<GlTexture> Create(std::shared_ptr<GlDevice> device, int width, int height,
                                           VuPixelFormat format);
  /// Draws first what the batch reads from this texture.
  ~GlTexture();
  GlTexture(const GlTexture&) = delete;
  GlTexture& operator=(const GlTexture&) = delete;

  int Width() const { return target_.width; }
  int Height() const { return target_.height; }
  Box Bounds() const { return {0, 0, Width(), Height()}; }
  VuPixelFormat Format() const { return format_; }
  GLuint Name() const { return name_; }
  GlDevice& Device() const { return *device_; }

  /// Lets it move to a page if it is small.
  void AllowPage();
  bool MayMove() const { return moves_ > 0 && !page_; }
  bool IsInPage() const { return page_ != nullptr; }
  /// Moves it to a page, if that can be done.
  void MoveToPage();
  /// Returns it from its page and keeps it out of pages.
  void LeavePage();
  /// What holds its pixels: the texture itself or a page's, and where in it the first one is.
  GlTexture& Storage() const { return *storage_; }
  GlPoint Origin() const { return origin_; }

  /// The texture as a target. Null after an error line.
  const GlTarget* Target();

  /// Makes a texture that is no bitmap's larger, by a copy. False after an error line.
  bool Enlarge(int width, int height);

  /// Writes the pixels of `box`, rows `pitch` bytes apart, in the surface's format. False after an
  /// error line.
  bool Upload(const Box& box, const void* pixels, unsigned pitch);

  /// Copies `box` of the bound framebuffer to (x, y).
  void CopyFromFramebuffer(const Box& box, int x, int y);

  /// The texture has to be bound.
  void SetFilter(GLint filter);
  /// Labels the texture for debuggers.
  void SetName(const char* name);

  /// The same, without making its framebuffer: only for its address and its `changes`.
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
  int moves_ = 0;  ///< How many times it may still move to a page.
  std::shared_ptr<GlPage> page_;
  Box place_;  ///< In the page, with its border.
};

/// Whether OpenGL can draw on textures of one channel. To be called once, with nothing bound.
bool DrawsOnOneChannel(const GlFunctions& gl);

/// Reads `box` of the framebuffer of `target`, which is bound, as tight rows of `format`, top row
/// first. False after an error line if memory runs out.
bool ReadFramebuffer(const GlFunctions& gl, const GlTarget& target, const Box& box,
                     VuPixelFormat format, void* out);

}  // namespace ZIRK::backends
