#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "opengles2/gltexture.h"

namespace ZIRK::backends {

/// How a quadrilateral is drawn, and what its vertices are.
enum class GlProgram {
  Plain,   ///< Hard edges. A PlainVertex.
  Shaped,  ///< Edges are anti-aliased, reading is limited. A ShapedVertex.
  Masked,  ///< That through a mask. A MaskedVertex.
  /// Chosen by GlPrograms::Use() in place of Plain: for colours alone, and for a texture alone
  /// whose channels are in the target's order.
  PlainColor,
  PlainTexture,
};
constexpr int kProgramCount = 5;

/// Short, as nearly all that is drawn passes through memory in this form.
struct PlainVertex {
  uint16_t x, y;   ///< Whole pixels.
  uint32_t color;  ///< Premultiplied, as GlTarget::Channels() gives it.
  float s, t;      ///< Texels; -1 for no texture.
};

struct ShapedVertex {
  GlPoint position;             ///< Pixels.
  uint32_t color;               ///< As in a PlainVertex.
  GlPoint texel;                ///< -1 for no texture, as the next two.
  GlPoint first, last;          ///< Texels that may be read, their centres.
  GlPoint corner, right, down;  ///< Of the shape, the latter from one corner to its neighbours.
  GlPoint unit;                 ///< In the unit square that a mask lies over.
};

struct MaskedVertex {
  ShapedVertex shaped;
  GlPoint mask;                 ///< Texels.
  GlPoint crossTerm;            ///< See MappedMask.
  GlPoint maskFirst, maskLast;  ///< Texels of the mask that may be read, their centres.
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
  /// Sets the places of the attributes in the bound buffer, which must always be the same one.
  void SetAttributes(const GlFunctions& gl, GlProgram program);

 private:
  /// A uniform and the value that it is set to.
  template <size_t N>
  struct Uniform {
    GLint location = -1;
    std::optional<std::array<float, N>> value{};

    /// Whether `wanted` is another value; if so it counts as set.
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
  std::optional<int> wordsOfVertex_;  ///< Of the vertices that the attributes are set for.
  int attributes_ = 0;                ///< How many are enabled.
};

}  // namespace ZIRK::backends
