#pragma once

#include <array>
#include <cstdint>

#include "opengles2/glprograms.h"
#include "opengles2/glquads.h"
#include "opengles2/gltexture.h"

namespace ZIRK::backends {

/// Collects quadrilaterals, and draws as many as possible with one draw call.
///
/// Several draw calls are collected at once, for one target. A quadrilateral goes to the earliest
/// that it fits, unless one that comes later touches its pixels: what overlaps is drawn in order.
///
/// It also keeps OpenGL's state, and sets only what changes.
class GlBatch {
 public:
  explicit GlBatch(GlDevice& device);
  ~GlBatch();

  /// Builds the programs. False after an error line.
  bool Start();
  /// Deletes its objects of OpenGL.
  void Stop();

  /// The draw call to which to add `count` quadrilaterals, at most kMaxAtOnce, inside `box`. It
  /// draws them with its own program. The textures of `key` become those that hold their pixels.
  GlQuads& Join(DrawKey& key, int count, const Box& box);
  static constexpr int kMaxAtOnce = 8;

  /// Adds one of GlProgram::Plain, as most are. `texture` may be null, as may be what lies on it.
  void AddPlain(const GlTarget* target, const GlBlend& blend, GlTexture* texture,
                TexelFilter filter, const Box& box, const Texels& texels, uint32_t color) {
    // A colour may go to an earlier one.
    const bool takes = texture ? last_->Takes(target, blend, &texture->Storage(), filter)
                               : open_ == 1 && last_->Takes(target, blend, nullptr, filter);
    if (takes)
      PutPlainQuad(last_->NextPlain(!texture), box, InStorage(texture, texels), color);
    else
      JoinPlain({target, blend, GlProgram::Plain, texture, filter}, box, texels, color);
  }

  /// Draws what is collected.
  void Flush();

  /// To be called before `target` is read: draws what is drawn on it.
  void BeforeReading(const GlTarget& target);
  /// To be called before `box` of `texture` is written: draws what reads it, or draws on the
  /// texture.
  void BeforeWriting(const GlTexture& texture, const Box& box);
  /// To be called before `texture` is deleted: draws what reads it, drops what draws on it.
  void Forget(const GlTexture& texture);
  /// Drops what draws on `target`.
  void Forget(const GlTarget& target);

  /// Fills all of `target` with premultiplied `color`. False after an error line.
  bool Clear(const GlTarget& target, uint32_t color);

  // OpenGL's state. A name of OpenGL's that is deleted has to be unbound here too.
  void Bind(GLuint texture) { Bind(0, texture); }
  void Unbind(GLuint texture);
  void BindFramebuffer(GLuint framebuffer);
  void DeleteFramebuffer(GLuint framebuffer);
  /// To be called when the current window changes, and framebuffer 0 with it.
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

  // More find few quadrilaterals to join, and each is looked at for most that come.
  static constexpr int kMaxCalls = 8;

  GlDevice& device_;
  std::array<GlQuads, kMaxCalls> calls_;
  int open_ = 0;
  GlQuads* last_ = calls_.data();  ///< Of those that are open; the first if none is.

  GlPrograms programs_;
  GLuint vertices_ = 0;
  GLuint indices_ = 0;
  GLuint white_ = 0;  ///< Stands in for the texture where there is none.

  bool saturatesDestination_ = true;  ///< GL_SRC_ALPHA_SATURATE works for the destination.

  // What OpenGL is set to.
  GLuint bound_[2] = {0, 0};
  int unit_ = 0;
  GLuint framebuffer_ = 0;
  const GlTarget* viewportOf_ = nullptr;
  std::array<GLenum, 4> factorsSet_ = {GL_ONE, GL_ZERO, GL_ONE, GL_ZERO};
  uint32_t blendColorSet_ = 0;  ///< As the target has it.
  bool blendUsed_ = false;
  bool alphaWritten_ = true;
};

}  // namespace ZIRK::backends
