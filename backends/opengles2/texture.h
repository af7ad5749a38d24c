#pragma once

#include <zirk/vuenums.h>

#include <memory>

#include "common/box.h"
#include "opengles2/glfunctions.h"
#include "opengles2/sdlcalls.h"

namespace ZIRK::backends {

class GlDevice;

/// Something to draw on: a texture, or a window's own framebuffer.
struct GlTarget {
  GLuint framebuffer = 0;
  SDL_Window* window = nullptr;  ///< Null for a texture.
  int width = 0;
  int height = 0;
  int bottom = 0;           ///< Rows of the window below the picture.
  bool redFirst = false;    ///< Channels lie in OpenGL's order, not in ours.
  bool keepsAlpha = false;  ///< Alpha is not written, so that it stays 255.

  mutable unsigned changes = 0;  ///< Goes up whenever something is drawn or written.

  bool IsWindow() const { return window != nullptr; }
};

/// The pixels of a surface as a texture, of the surface's own format:
///
/// - The 32-bit formats hold the words as they lie in memory, which to OpenGL has red and blue
///   exchanged: nothing is converted on the way in or out. Shaders put the channels in order.
/// - The 16-bit formats are OpenGL's own. Two of them have alpha at the other end.
/// - A8 is four channels of 8 bits, since OpenGL ES 2 can draw to no format of one. Only alpha
///   counts when it is read.
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

  /// Copies `box` of the framebuffer that is bound to the top-left corner.
  void CopyFromFramebuffer(const Box& box);

  void SetFilter(GLint filter);
  void SetName(const char* name);

  /// The same, of which only the address is looked at.
  const GlTarget* AsTarget() const { return &target_; }

  bool IsRedFirst() const { return target_.redFirst; }

 private:
  GlTexture(std::shared_ptr<GlDevice> device, int width, int height, VuPixelFormat format);

  const std::shared_ptr<GlDevice> device_;
  const VuPixelFormat format_;
  GlTarget target_;
  GLuint name_ = 0;
  GLint filter_ = GL_NEAREST;
};

/// Reads `box` of the framebuffer of `target`, which is bound, as tight rows of `format`, top row
/// first. May throw std::bad_alloc.
void ReadFramebuffer(const GlFunctions& gl, const GlTarget& target, const Box& box,
                     VuPixelFormat format, void* out);

}  // namespace ZIRK::backends
