#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "geometry/box.h"
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

/// How a texture is read.
enum class TexelFilter {
  Exact,  ///< Each pixel shows one texel as it is. Either filter of OpenGL's does it.
  Nearest,
  Linear,
};

/// What all quadrilaterals of a draw call have in common.
struct DrawKey {
  const GlTarget* target = nullptr;
  GlBlend blend;
  GlProgram program = GlProgram::Plain;
  GlTexture* texture = nullptr;  ///< Null for one colour.
  TexelFilter filter = TexelFilter::Exact;
  GlTexture* mask = nullptr;
  GLint maskFilter = GL_NEAREST;
};

/// Texels at the edges of a quadrilateral.
struct Texels {
  float s0, t0, s1, t1;
};
constexpr Texels kNoTexels = {-1, -1, -1, -1};

inline void PutPlainQuad(PlainVertex* v, const Box& box, const Texels& texels, uint32_t color) {
  const auto x0 = static_cast<uint16_t>(box.x0), x1 = static_cast<uint16_t>(box.x1);
  const auto y0 = static_cast<uint16_t>(box.y0), y1 = static_cast<uint16_t>(box.y1);
  const auto [s0, t0, s1, t1] = texels;
  v[0] = {x0, y0, color, s0, t0};
  v[1] = {x1, y0, color, s1, t0};
  v[2] = {x1, y1, color, s1, t1};
  v[3] = {x0, y1, color, s0, t1};
}

/// Where quadrilaterals lie: boxes around them, a limited number of which each holds some.
class Extent {
 public:
  void Clear() { count_ = 0; }
  void Add(const Box& box);
  bool Touches(const Box& box) const;

 private:
  void JoinTwo();

  static constexpr int kMaxBoxes = 64;

  Box all_;
  int count_ = 0;
  std::array<Box, kMaxBoxes> boxes_;
};

/// The quadrilaterals of one draw call.
///
/// Plain ones are also drawn as shaped ones if that saves draw calls. It costs the GPU time, so
/// each shaped one makes up for a limited number of pixels, kPixelsForShape.
class GlQuads {
 public:
  // As many as fit a processor's cache; indices have 16 bits.
  static constexpr int kMaxQuads = 4096;

  const DrawKey& Key() const { return key_; }
  int Count() const { return count_; }
  /// Whether some are of one colour.
  bool HasColors() const { return colors_; }
  const std::byte* Vertices() const { return lines_[0].bytes; }
  GLsizeiptr Bytes() const { return GLsizeiptr{4} * count_ * WordsOfQuad(key_.program); }

  /// Becomes empty, for quadrilaterals as `key` says. False if there is no memory.
  bool Begin(const DrawKey& key);
  void Drop() { count_ = 0; }

  /// How well others go with these.
  enum class Fit {
    No,
    NoRoom,
    Joins,   ///< Perhaps as shaped ones.
    Widens,  ///< If these become shaped ones.
  };
  /// For `count` of them with `key`, which has the same target, inside `box`.
  Fit FitOf(const DrawKey& key, int count, const Box& box) const;

  /// Makes all of them shaped.
  void Widen();

  /// Adds quadrilaterals inside `box` that fit. The caller fills them in, as Key().program has
  /// them, before the next call.
  std::byte* Add(const DrawKey& key, int count, const Box& box);
  /// Adds a plain one that fits.
  void AddPlain(const DrawKey& key, const PlainVertex (&quad)[4], const Box& box);

  /// Whether it fits as it is, in the usual case.
  bool Takes(const GlTarget* target, const GlBlend& blend, const GlTexture* texture,
             TexelFilter filter) const {
    return count_ > 0 && count_ < kMaxQuads && key_.target == target &&
           key_.program == GlProgram::Plain && blend == key_.blend &&
           (!texture || (key_.texture == texture &&
                         (key_.filter == filter ||
                          (key_.filter == TexelFilter::Nearest && filter == TexelFilter::Exact))));
  }
  /// Room for a plain one that Takes() has found to fit.
  PlainVertex* NextPlain(bool isColor) {
    if (isColor) colors_ = true;
    return reinterpret_cast<PlainVertex*>(lines_[static_cast<size_t>(count_++)].bytes);
  }

  /// Whether one of them may change a pixel of `box`.
  bool Touches(const Box& box);
  /// Whether one of them reads pixels of `box` of the texture.
  bool Reads(const GlTexture& texture, const Box& box) const;

 private:
  /// A plain quadrilateral, which is one cache line.
  struct alignas(64) Line {
    std::byte bytes[64];
  };
  static_assert(4 * sizeof(PlainVertex) == sizeof(Line));

  std::byte* At(int quad) const {
    return reinterpret_cast<std::byte*>(&lines_[0]) +
           ptrdiff_t{4} * quad * WordsOfQuad(key_.program);
  }
  bool CanWiden() const;
  Box BoundsOf(int quad) const;

  DrawKey key_;
  int count_ = 0;
  bool colors_ = false;
  std::unique_ptr<Line[]> lines_;
  int shapes_ = 0;     ///< How many came as shaped ones.
  int converted_ = 0;  ///< What the others cost.
  int noted_ = 0;      ///< How many are in `extent_`.
  Extent extent_;
};

}  // namespace ZIRK::backends
