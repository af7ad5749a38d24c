#pragma once

#include <array>
#include <cstdint>

#include "opengles2/glprograms.h"
#include "opengles2/glquads.h"
#include "opengles2/gltexture.h"

namespace ZIRK::backends {

/// Collects quadrilaterals, and draws as many as possible with one draw call.
///
/// Several draw calls for one target are open at the same time. A quadrilateral is added to the
/// earliest one that it fits, unless a later one touches its pixels: overlapping quadrilaterals are
/// drawn in order.
///
/// The batch also tracks OpenGL's state, and sets only what changes.
class GlBatch {
 public:
  explicit GlBatch(GlDevice& device);
  ~GlBatch();

  /// Builds the programs. False after an error line.
  bool Start();
  /// Deletes its objects of OpenGL.
  void Stop();

  /// Returns the draw call to which to add `count` quadrilaterals, at most kMaxAtOnce, inside
  /// `box`. It draws them with its own program. The textures of `key` are replaced by those that
  /// store their pixels.
  GlQuads& Join(DrawKey& key, int count, const Box& box);
  static constexpr int kMaxAtOnce = 8;

  /// Adds a quadrilateral of GlProgram::Plain, the usual case. `texture` may be null.
  void AddPlain(const GlTarget* target, const GlBlend& blend, GlTexture* texture,
                TexelFilter filter, const Box& box, const Texels& texels, uint32_t color) {
    // A plain colour may fit an earlier draw call.
    const bool takes = texture ? last_->Takes(target, blend, &texture->Storage(), filter)
                               : open_ == 1 && last_->Takes(target, blend, nullptr, filter);
    if (takes)
      PutPlainQuad(last_->NextPlain(!texture), box, InStorage(texture, texels), color);
    else
      JoinPlain({target, blend, GlProgram::Plain, texture, filter}, box, texels, color);
  }

  /// Sends all open draw calls.
  void Flush();

  /// Call it before `target` is read. Sends the draw calls that draw on it.
  void BeforeReading(const GlTarget& target);
  /// Call it before `box` of `texture` is written. Sends the draw calls that read the box or draw
  /// on the texture.
  void BeforeWriting(const GlTexture& texture, const Box& box);
  /// Call it before `texture` is deleted. Sends the draw calls that read it, and drops those that
  /// draw on it.
  void Forget(const GlTexture& texture);
  /// Drops the draw calls that draw on `target`.
  void Forget(const GlTarget& target);

  /// Fills all of `target` with premultiplied `color`. False after an error line.
  bool Clear(const GlTarget& target, uint32_t color);

  // OpenGL's state. An object of OpenGL must be unbound here when it is deleted.
  void Bind(GLuint texture) { Bind(0, texture); }
  void Unbind(GLuint texture);
  void BindFramebuffer(GLuint framebuffer);
  void DeleteFramebuffer(GLuint framebuffer);
  /// Call it when the current window changes, and with it framebuffer 0.
  void WindowChanged() { viewportOf_ = nullptr; }

 private:
  static Texels InStorage(const GlTexture* texture, const Texels& t) {
    if (!texture) return t;
    const GlPoint o = texture->Origin();
    return {t.s0 + o.x, t.t0 + o.y, t.s1 + o.x, t.t1 + o.y};
  }
  void JoinPlain(DrawKey key, const Box& box, const Texels& texels, uint32_t color);
  GlTexture* Settle(GlTexture* texture);
  GlQuads& Begin(const DrawKey& key);
  void Send(GlQuads& quads);
  void Drop();

  void Bind(int unit, GLuint texture);
  void UseTarget(const GlTarget& target);
  void UseBlend(const DrawKey& key);
  void UseTexture(int unit, GlTexture* texture, GLint filter);

  // More draw calls would join few more quadrilaterals, and each is examined for most new ones.
  static constexpr int kMaxCalls = 8;

  GlDevice& device_;
  std::array<GlQuads, kMaxCalls> calls_;
  int open_ = 0;
  GlQuads* last_ = calls_.data();  ///< The last open draw call; the first one if none is open.

  GlPrograms programs_;
  GLuint vertices_ = 0;
  GLuint indices_ = 0;
  GLuint white_ = 0;  ///< Replaces the texture of a plain colour.

  bool saturatesDestination_ = true;  ///< GL_SRC_ALPHA_SATURATE works for the destination.

  // The current state of OpenGL.
  GLuint bound_[2] = {0, 0};
  int unit_ = 0;
  GLuint framebuffer_ = 0;
  const GlTarget* viewportOf_ = nullptr;
  std::array<GLenum, 4> factorsSet_ = {GL_ONE, GL_ZERO, GL_ONE, GL_ZERO};
  uint32_t blendColorSet_ = 0;  ///< In the target's channel order.
  bool blendUsed_ = false;
  bool alphaWritten_ = true;
};

}  // namespace ZIRK::backends
