#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "opengles2/gltexture.h"

namespace ZIRK::backends {

/// The kind of shader program that draws a quadrilateral, and its type of vertex.
enum class GlProgram {
  Plain,   ///< Hard edges. Uses PlainVertex.
  Shaped,  ///< Anti-aliased edges and limited reading. Uses ShapedVertex.
  Masked,  ///< The same through a mask. Uses MaskedVertex.
  /// GlPrograms::Use() chooses these instead of Plain: for colours alone, and for a texture alone
  /// whose channels are in the target's order.
  PlainColor,
  PlainTexture,
};
constexpr int kProgramCount = 5;

/// A small vertex, since nearly everything that is drawn passes through memory in this form.
struct PlainVertex {
  uint16_t x, y;   ///< Whole pixels.
  uint32_t color;  ///< Premultiplied, as GlTarget::Channels() gives it.
  float s, t;      ///< Texels; -1 for no texture.
};

struct ShapedVertex {
  GlPoint position;             ///< Pixels.
  uint32_t color;               ///< As in a PlainVertex.
  GlPoint texel;                ///< -1 for no texture, like the next two.
  GlPoint first, last;          ///< Centres of the first and the last texel that may be read.
  GlPoint corner, right, down;  ///< A corner of the shape, and the vectors to its neighbours.
  GlPoint unit;                 ///< In the unit square, to which the mask is mapped.
};

struct MaskedVertex {
  ShapedVertex shaped;
  GlPoint mask;                 ///< Texels.
  GlPoint crossTerm;            ///< See MappedMask.
  GlPoint maskFirst, maskLast;  ///< The same as `first` and `last`, for the mask.
};

/// The size of a vertex in words of 32 bits.
constexpr int WordsOfVertex(GlProgram program) {
  const size_t bytes = program == GlProgram::Shaped   ? sizeof(ShapedVertex)
                       : program == GlProgram::Masked ? sizeof(MaskedVertex)
                                                      : sizeof(PlainVertex);
  return static_cast<int>(bytes / 4);
}
/// The size of a quadrilateral in words of 32 bits.
constexpr int WordsOfQuad(GlProgram program) {
  return 4 * WordsOfVertex(program);
}
/// The offset of the position in the texture in a vertex, in words of 32 bits.
constexpr int TexelsInVertex(GlProgram program) {
  const bool plain = program != GlProgram::Shaped && program != GlProgram::Masked;
  return static_cast<int>((plain ? offsetof(PlainVertex, s) : offsetof(ShapedVertex, texel)) / 4);
}

/// The shader programs, and their uniforms. Sets only what changes.
class GlPrograms {
 public:
  /// Compiles and links all programs. False after an error line with the driver's message.
  bool Build(const GlFunctions& gl);
  void Delete(const GlFunctions& gl);

  /// Makes `program` current with these operands. `colors` says whether it also draws
  /// quadrilaterals of one colour.
  void Use(const GlFunctions& gl, GlProgram program, const GlTarget& target,
           const GlTexture* texture, bool colors, const GlTexture* mask);
  /// Sets the offsets of the attributes in the bound buffer, which must always be the same one.
  void SetAttributes(const GlFunctions& gl, GlProgram program);

 private:
  /// A uniform and the value that it is set to.
  template <size_t N>
  struct Uniform {
    GLint location = -1;
    std::optional<std::array<float, N>> value{};

    /// Whether `wanted` differs from the value that was set; if so, records it as set.
    bool Changes(const std::array<float, N>& wanted) {
      if (location < 0 || value == wanted) return false;
      value = wanted;
      return true;
    }
  };
  struct Program {
    GLuint name = 0;
    Uniform<4> target;
    Uniform<2> texelSize, maskTexelSize;
    Uniform<4> maskChannel;
    Uniform<16> order;
  };

  bool Build(const GlFunctions& gl, GlProgram which);

  std::array<Program, kProgramCount> programs_{};
  GLuint used_ = 0;
  std::optional<int> wordsOfVertex_;  ///< The vertex size for which the attributes are set.
  int attributes_ = 0;                ///< The number of enabled attributes.
};

}  // namespace ZIRK::backends
