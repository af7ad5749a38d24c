#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "geometry/mapping.h"
#include "opengles2/glprograms.h"
#include "opengles2/gltexture.h"
#include "surface/surfacestate.h"

namespace ZIRK::backends {

/// A blending function, in a form that compares quickly.
struct GlBlend {
  uint32_t color = 0;    ///< Premultiplied ARGB8888.
  uint32_t factors = 0;  ///< Four bits each, and kEnabled.

  GlBlend() = default;
  explicit GlBlend(const SurfaceState& state);

  bool IsEnabled() const { return (factors & kEnabled) != 0; }
  /// OpenGL's factors for the target: source colour, destination colour, source alpha, destination
  /// alpha.
  std::array<GLenum, 4> FactorsFor(const GlTarget& target) const;

  bool operator==(const GlBlend& b) const { return color == b.color && factors == b.factors; }

 private:
  static constexpr uint32_t kEnabled = 1u << 16;
};

/// What all quadrilaterals of a draw call have in common.
struct DrawKey {
  const GlTarget* target = nullptr;
  const GlBlend* blend = nullptr;
  GlProgram program = GlProgram::Plain;
  GlTexture* texture = nullptr;  ///< Null for one colour.
  GLint filter = GL_NEAREST;
  GlTexture* mask = nullptr;
  GLint maskFilter = GL_NEAREST;
};

/// Collects quadrilaterals and draws them in order, as many as possible with one draw call.
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

  /// Makes room for `count` quadrilaterals, at most kMaxAtOnce, each of four vertices as the
  /// program has them. The caller fills it before the next call. `key.blend` is copied.
  std::byte* Add(const DrawKey& key, int count) {
    const int room = std::min(kWords / WordsOfQuad(key.program), kMaxQuads) - quads_;
    if (count > room || !TryJoin(key)) Begin(key);
    colors_ = colors_ || !key.texture;
    std::byte* const at = End();
    quads_ += count;
    return at;
  }
  static constexpr int kMaxAtOnce = 8;

  /// The same for one quadrilateral of GlProgram::Plain, as most are. `texture` may be null.
  PlainVertex* AddPlain(const GlTarget* target, const GlBlend& blend, GlTexture* texture,
                        GLint filter) {
    const bool joins = quads_ > 0 && quads_ < kMaxQuads && key_.target == target &&
                       key_.program == GlProgram::Plain && blend == blend_ &&
                       (!texture || (key_.texture == texture && key_.filter == filter));
    if (!joins) JoinOrBegin({target, &blend, GlProgram::Plain, texture, filter});
    if (!texture) colors_ = true;
    return reinterpret_cast<PlainVertex*>(lines_[static_cast<size_t>(quads_++)].bytes);
  }

  /// Draws what is collected.
  void Flush();

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
  // As many as fit a processor's cache; indices have 16 bits.
  static constexpr int kMaxQuads = 4096;
  static constexpr int kWords = kMaxQuads * WordsOfQuad(GlProgram::Plain);

  /// A plain quadrilateral, which is one cache line.
  struct alignas(64) Line {
    std::byte bytes[64];
  };
  static_assert(4 * sizeof(PlainVertex) == sizeof(Line));

  std::byte* Vertices() const { return lines_[0].bytes; }
  std::byte* End() const { return Vertices() + ptrdiff_t{4} * quads_ * WordsOfQuad(key_.program); }

  /// Whether `key` fits what is collected; if that has no texture yet, it takes the key's.
  bool TryJoin(const DrawKey& key) {
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
  void JoinOrBegin(const DrawKey& key);
  bool Reads(const Box& box) const;

  void Bind(int unit, GLuint texture);
  void UseTarget(const GlTarget& target);
  void UseBlend();
  void UseTexture(int unit, GlTexture* texture, GLint filter);

  GlDevice& device_;
  DrawKey key_;
  GlBlend blend_;
  int quads_ = 0;
  bool colors_ = false;  ///< Some quadrilaterals are of one colour.
  const std::unique_ptr<Line[]> lines_;

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
