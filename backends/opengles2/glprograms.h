#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "opengles2/gltexture.h"

namespace ZIRK::backends {

/// How a quadrilateral is drawn, and what each of its vertices is.
enum class GlProgram {
  Plain,   ///< Hard edges. A PlainVertex.
  Shaped,  ///< Edges are anti-aliased, reading is limited. A ShapedVertex.
  Masked,  ///< That through a mask. A MaskedVertex.
  /// Plain for colours only, and for a texture only whose channels are in the target's order.
  PlainColor,
  PlainTexture,
};
constexpr int kProgramCount = 5;

/// As short as can be: everything that is drawn passes through memory in this form.
struct PlainVertex {
  uint16_t x, y;   ///< Whole pixels.
  uint32_t color;  ///< Premultiplied, as GlTarget::Channels() gives it.
  float s, t;      ///< Texels; -1 for no texture.
};

struct GlPoint {
  float x, y;
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
  GlPoint mask;   ///< Texels.
  GlPoint twist;  ///< See MaskPlacement.
};

/// In words of 32 bits.
constexpr int WordsOfVertex(GlProgram program) {
  const size_t bytes = program == GlProgram::Shaped   ? sizeof(ShapedVertex)
                       : program == GlProgram::Masked ? sizeof(MaskedVertex)
                                                      : sizeof(PlainVertex);
  return static_cast<int>(bytes / 4);
}
constexpr int WordsOfQuad(GlProgram program) {
  return 4 * WordsOfVertex(program);
}
/// Where the position in the texture lies.
constexpr int TexelsInVertex(GlProgram program) {
  const bool plain = program != GlProgram::Shaped && program != GlProgram::Masked;
  return static_cast<int>((plain ? offsetof(PlainVertex, s) : offsetof(ShapedVertex, texel)) / 4);
}

/// The programs, and the values that are the same for a draw call. What OpenGL has been told is
/// not told again.
class GlPrograms {
 public:
  /// False after an error line that says what the driver complains of.
  bool Build(const GlFunctions& gl);
  void Delete(const GlFunctions& gl);

  /// Makes it the one in use, with these operands; `colors` is whether there are any beside what
  /// the texture fills.
  void Use(const GlFunctions& gl, GlProgram program, const GlTarget& target,
           const GlTexture* texture, bool colors, const GlTexture* mask);
  /// Says where the attributes of its vertices lie in the buffer that is bound, always the same.
  void SetAttributes(const GlFunctions& gl, GlProgram program);

 private:
  /// A uniform with the value that it has been given.
  template <size_t N>
  struct Uniform {
    GLint location = -1;
    std::optional<std::array<float, N>> value{};

    /// Whether `wanted` is another value; it counts as given then.
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
  std::optional<int> wordsOfVertex_;  ///< Of the attributes as they are set.
  int attributes_ = 0;                ///< That are enabled.
};

}  // namespace ZIRK::backends
