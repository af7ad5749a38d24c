#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "opengles2/texture.h"

namespace ZIRK::backends {

/// How a quadrilateral is drawn, and what each of its vertices has, in words of 32 bits.
enum class GlProgram {
  /// Hard edges. A PlainVertex.
  Plain,
  /// Edges are anti-aliased, reading is limited. Position 2 (pixels), colour 1 (of the target),
  /// position in the texture 2 (texels), limits 4 (texels, first and last that may be read; -1 for
  /// no texture), shape 6 (a corner, and the ways to both neighbours), position in the unit
  /// square 2.
  Shaped,
  /// That through a mask, then position in the mask 2 (texels) and twist 2.
  Masked,
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

constexpr int WordsOfVertex(GlProgram program) {
  return program == GlProgram::Shaped ? 17 : program == GlProgram::Masked ? 21 : 4;
}
constexpr int WordsOfQuad(GlProgram program) {
  return 4 * WordsOfVertex(program);
}
/// Where the position in the texture lies.
constexpr int TexelsInVertex(GlProgram program) {
  return program == GlProgram::Shaped || program == GlProgram::Masked ? 3 : 2;
}

/// The programs, and the values that are the same for a draw call. What OpenGL has been told is
/// not told again.
class Programs {
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
