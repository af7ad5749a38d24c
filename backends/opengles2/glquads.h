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

/// A blending function, in a form that is quick to compare.
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
  Exact,  ///< Each pixel shows one texel unchanged, with either filter of OpenGL.
  Nearest,
  Linear,
};

/// The state that all quadrilaterals of a draw call share.
struct DrawKey {
  const GlTarget* target = nullptr;
  GlBlend blend;
  GlProgram program = GlProgram::Plain;
  GlTexture* texture = nullptr;  ///< Null for plain colours.
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

/// The area of quadrilaterals, as a limited number of boxes, each around some of them.
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
/// Plain quadrilaterals are drawn as shaped ones if that saves draw calls. This takes more time on
/// the GPU, so each shaped one allows only for a limited number of plain pixels, kPixelsForShape.
class GlQuads {
 public:
  // Limited by 16-bit indices and by the size of a processor's cache.
  static constexpr int kMaxQuads = 4096;

  const DrawKey& Key() const { return key_; }
  int Count() const { return count_; }
  /// Whether some have no texture.
  bool HasColors() const { return colors_; }
  const std::byte* Vertices() const { return lines_[0].bytes; }
  GLsizeiptr Bytes() const { return GLsizeiptr{4} * count_ * WordsOfQuad(key_.program); }

  /// Starts an empty draw call for quadrilaterals with `key`. False if there is no memory.
  bool Begin(const DrawKey& key);
  void Drop() { count_ = 0; }

  /// Whether other quadrilaterals can be added.
  enum class Fit {
    No,
    NoRoom,
    Joins,   ///< Yes, perhaps as shaped ones.
    Widens,  ///< Yes, if the present ones become shaped ones.
  };
  /// Tests `count` quadrilaterals with `key`, which has the same target, inside `box`.
  Fit FitOf(const DrawKey& key, int count, const Box& box) const;

  /// Converts all to shaped ones.
  void Widen();

  /// Adds `count` quadrilaterals inside `box`, for which FitOf() was tested. The caller fills in
  /// their vertices, of the type of Key().program, before the next call.
  std::byte* Add(const DrawKey& key, int count, const Box& box);
  /// Adds a plain quadrilateral for which FitOf() was tested.
  void AddPlain(const DrawKey& key, const PlainVertex (&quad)[4], const Box& box);

  /// A fast test whether a plain quadrilateral fits; if false, it may still fit by FitOf().
  bool Takes(const GlTarget* target, const GlBlend& blend, const GlTexture* texture,
             TexelFilter filter) const {
    return count_ > 0 && count_ < kMaxQuads && key_.target == target &&
           key_.program == GlProgram::Plain && blend == key_.blend &&
           (!texture || (key_.texture == texture &&
                         (key_.filter == filter ||
                          (key_.filter == TexelFilter::Nearest && filter == TexelFilter::Exact))));
  }
  /// Adds a plain quadrilateral for which Takes() was true. The caller fills in its vertices.
  PlainVertex* NextPlain(bool isColor) {
    if (isColor) colors_ = true;
    return reinterpret_cast<PlainVertex*>(lines_[static_cast<size_t>(count_++)].bytes);
  }

  /// Whether a quadrilateral may change a pixel of `box`.
  bool Touches(const Box& box);
  /// Whether a quadrilateral reads pixels of `box` of `texture`.
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
  int shapes_ = 0;     ///< The number that were added as shaped ones.
  int converted_ = 0;  ///< The cost of the plain ones that were added as shaped ones.
  int noted_ = 0;      ///< The number that are in `extent_`.
  Extent extent_;
};

}  // namespace ZIRK::backends
