#pragma once

#include <cstdint>
#include <memory>

#include "common/placement.h"
#include "common/surfacestate.h"
#include "opengles2/programs.h"
#include "opengles2/texture.h"

namespace ZIRK::backends {

/// A blending function, in a form that is quickly compared.
struct GlBlend {
  uint32_t color = 0;    ///< Premultiplied ARGB8888.
  uint32_t factors = 0;  ///< Four bits each, and one more for whether there is any blending.

  GlBlend() = default;
  explicit GlBlend(const SurfaceState& state);

  bool IsEnabled() const { return (factors & kEnabled) != 0; }
  /// In OpenGL's terms: source colour, destination colour, source alpha, destination alpha.
  GLenum Factor(int index) const;

  bool operator==(const GlBlend& b) const { return color == b.color && factors == b.factors; }

 private:
  static constexpr uint32_t kEnabled = 1u << 16;
};

/// What is the same for all quadrilaterals of a draw call.
struct DrawKey {
  const GlTarget* target = nullptr;
  const GlBlend* blend = nullptr;
  GlProgram program = GlProgram::Plain;
  GlTexture* texture = nullptr;  ///< Null for one colour.
  GLint filter = GL_NEAREST;
  GlTexture* mask = nullptr;
  GLint maskFilter = GL_NEAREST;
};

/// Collects quadrilaterals and draws them, as many as possible at a time, in the order in which
/// they came.
///
/// It also knows OpenGL's state, and changes only what differs: all but the programs' uniforms, the
/// blend colour and the layout of the vertices, which go with every draw call.
class Batch {
 public:
  explicit Batch(GlDevice& device);
  ~Batch();

  /// Builds the programs. False after an error line.
  bool Start();
  /// Lets go of everything in OpenGL.
  void Stop();

  /// Room for `count` quadrilaterals, at most kMaxAtOnce, each four vertices as the program has
  /// them. It is to be filled before the next call. `key.blend` is copied.
  float* Add(const DrawKey& key, int count) {
    const int words = count * WordsOfQuad(key.program);
    if (!(words <= kWords - used_ && count <= kMaxQuads - quads_ && Joins(key))) Begin(key);
    colors_ = colors_ || !key.texture;
    float* const at = words_.get() + used_;
    used_ += words;
    quads_ += count;
    return at;
  }
  static constexpr int kMaxAtOnce = 8;

  /// Draws what has been collected.
  void Flush();

  /// Draws first what reads `box` of `texture`, or draws on the texture.
  void BeforeWriting(const GlTexture& texture, const Box& box);
  /// The same for all of it; what was to be drawn on it is dropped.
  void Forget(const GlTexture& texture);
  /// Drops what was to be drawn on it.
  void Forget(const GlTarget& target);

  /// Fills all of `target` with premultiplied `color`. False after an error line.
  bool Clear(const GlTarget& target, uint32_t color);

  // OpenGL's state.
  void Bind(GLuint texture) { Bind(0, texture); }
  void Unbind(GLuint texture);
  void BindFramebuffer(GLuint framebuffer);
  void DeleteFramebuffer(GLuint framebuffer);
  /// The window has changed, so that framebuffer 0 is another one.
  void WindowChanged() { viewportOf_ = nullptr; }

 private:
  // What a processor's cache holds; indices have 16 bits.
  static constexpr int kMaxQuads = 4096;
  static constexpr int kWords = kMaxQuads * 4 * 5;

  bool Joins(const DrawKey& key) {
    if (quads_ == 0 || key.target != key_.target || key.program != key_.program ||
        key.mask != key_.mask || key.maskFilter != key_.maskFilter || !(*key.blend == blend_))
      return false;
    // A colour goes with any texture.
    if (!key.texture) return true;
    if (!key_.texture) {
      key_.texture = key.texture;
      key_.filter = key.filter;
      return true;
    }
    return key.texture == key_.texture && key.filter == key_.filter;
  }
  void Begin(const DrawKey& key);
  bool Reads(const Box& box) const;

  void Bind(int unit, GLuint texture);
  void UseTarget(const GlTarget& target);
  void UseBlend();
  GLenum ForDestination(GLenum factor, GLenum instead) const;
  void UseTexture(int unit, GlTexture* texture, GLint filter);

  GlDevice& device_;
  DrawKey key_;
  GlBlend blend_;
  int quads_ = 0;
  bool colors_ = false;  ///< Some of them are of one colour.
  int used_ = 0;
  const std::unique_ptr<float[]> words_;

  Programs programs_;
  // Taken in turn, so that none is written while the last draw calls may still read it.
  static constexpr int kVertexBuffers = 3;
  GLuint vertices_[kVertexBuffers] = {};
  int nextVertices_ = 0;
  GLuint indices_ = 0;
  GLuint white_ = 0;  ///< Stands in for the texture where there is none.

  bool saturatesDestination_ = true;

  // What OpenGL has been told.
  GLuint bound_[2] = {0, 0};
  int unit_ = 0;
  GLuint framebuffer_ = 0;
  const GlTarget* viewportOf_ = nullptr;
  GlBlend blendSet_;
  bool blendUsed_ = false;
  bool alphaWritten_ = true;
  int attributes_ = 0;
};

}  // namespace ZIRK::backends
