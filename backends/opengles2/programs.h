#pragma once

#include <array>
#include <cstdint>

#include "opengles2/texture.h"

namespace ZIRK::backends {

/// How a quadrilateral is drawn, and what each of its vertices has, in words of 32 bits.
enum class GlProgram {
  /// Hard edges. Position 2 (pixels), position in the texture 2 (texels; -1 for none), colour 1
  /// (premultiplied ARGB8888).
  Plain,
  /// Edges are anti-aliased, reading is limited. That, then limits 4 (texels, first and last that
  /// may be read; -1 for no texture), shape 6 (a corner, and the ways to both neighbours), position
  /// in the unit square 2.
  Shaped,
  /// That through a mask, then position in the mask 2 (texels) and twist 2.
  Masked,
  /// Plain for colours only, and for a texture only whose channels are in the target's order.
  PlainColor,
  PlainTexture,
};
constexpr int kProgramCount = 5;

constexpr int WordsOfVertex(GlProgram program) {
  return program == GlProgram::Shaped ? 17 : program == GlProgram::Masked ? 21 : 5;
}
constexpr int WordsOfQuad(GlProgram program) {
  return 4 * WordsOfVertex(program);
}

/// The programs, and the values that are the same for a draw call.
class Programs {
 public:
  /// False after an error line that says what the driver complains of.
  bool Build(const GlFunctions& gl);
  void Delete(const GlFunctions& gl);

  /// Makes it the one in use, with these operands; `colors` is whether there are any beside what
  /// the texture fills.
  void Use(const GlFunctions& gl, GlProgram program, const GlTarget& target,
           const GlTexture* texture, bool colors, const GlTexture* mask);
  /// How many attributes its vertices have, and where they lie in the buffer that is bound.
  static int SetAttributes(const GlFunctions& gl, GlProgram program);

 private:
  struct Program {
    GLuint name = 0;
    GLint target, exchange, texel, order, maskTexel;
  };

  bool Build(const GlFunctions& gl, GlProgram which);

  std::array<Program, kProgramCount> programs_{};
  GLuint used_ = 0;
};

}  // namespace ZIRK::backends
