#include "opengles2/programs.h"

#include <zirk/impl/log.h>

#include <cstddef>
#include <utility>

#include "opengles2/shaders.h"

namespace ZIRK::backends {

namespace {

/// In the order of the words of a vertex.
struct Attribute {
  const char* name;
  GLint words;
};
constexpr Attribute kAttributes[] = {{"positions", 4}, {"color", 1},     {"limits", 4},
                                     {"shape", 4},     {"shapeUnit", 4}, {"mask", 4}};

constexpr int AttributeCount(GlProgram program) {
  return program == GlProgram::Shaped ? 5 : program == GlProgram::Masked ? 6 : 2;
}

constexpr const char* kDefines[kProgramCount] = {"", "#define SHAPED\n",
                                                 "#define SHAPED\n#define MASKED\n",
                                                 "#define COLOR\n", "#define TEXTURE\n"};

/// 0 after an error line.
GLuint Compile(const GlFunctions& gl, GLenum stage, GlProgram which, const char* source) {
  const GLuint shader = gl.CreateShader(stage);
  const char* const parts[] = {kDefines[static_cast<int>(which)], source};
  gl.ShaderSource(shader, 2, parts, nullptr);
  gl.CompileShader(shader);
  GLint compiled = GL_FALSE;
  gl.GetShaderiv(shader, GL_COMPILE_STATUS, &compiled);
  if (shader && compiled) return shader;
  char log[400] = "";
  gl.GetShaderInfoLog(shader, sizeof log, nullptr, log);
  ZIRK_LOG_ERROR("OpenGL does not compile a shader: %s", log);
  gl.DeleteShader(shader);
  return 0;
}

/// Which of the texture's channels each of the target's is.
struct Order {
  int from[4] = {0, 1, 2, 3};

  Order(const GlTarget& target, const GlTexture* texture) {
    if (texture && texture->Format() == VuPixelFormat::A8)
      from[0] = from[1] = from[2] = 3;
    else if (texture && texture->IsRedFirst() != target.redFirst)
      std::swap(from[0], from[2]);
  }
  bool IsIdentity() const { return from[0] == 0; }
};

/// The cheapest program that does the same.
GlProgram Simplified(GlProgram program, const GlTexture* texture, bool colors, const Order& order) {
  if (program != GlProgram::Plain) return program;
  if (!texture) return GlProgram::PlainColor;
  return !colors && order.IsIdentity() ? GlProgram::PlainTexture : program;
}

}  // namespace

bool Programs::Build(const GlFunctions& gl) {
  for (int i = 0; i < kProgramCount; ++i)
    if (!Build(gl, static_cast<GlProgram>(i))) return false;
  return true;
}

bool Programs::Build(const GlFunctions& gl, GlProgram which) {
  Program& p = programs_[static_cast<size_t>(which)];
  const GLuint vertex = Compile(gl, GL_VERTEX_SHADER, which, kVertexShader);
  if (!vertex) return false;
  const GLuint fragment = Compile(gl, GL_FRAGMENT_SHADER, which, kFragmentShader);
  if (!fragment) {
    gl.DeleteShader(vertex);
    return false;
  }
  p.name = gl.CreateProgram();
  gl.AttachShader(p.name, vertex);
  gl.AttachShader(p.name, fragment);
  for (int i = 0; i < AttributeCount(which); ++i)
    gl.BindAttribLocation(p.name, static_cast<GLuint>(i), kAttributes[i].name);
  gl.LinkProgram(p.name);
  // They go with the program.
  gl.DeleteShader(vertex);
  gl.DeleteShader(fragment);
  GLint linked = GL_FALSE;
  gl.GetProgramiv(p.name, GL_LINK_STATUS, &linked);
  if (!p.name || !linked) {
    char log[400] = "";
    gl.GetProgramInfoLog(p.name, sizeof log, nullptr, log);
    ZIRK_LOG_ERROR("OpenGL does not link a program: %s", log);
    return false;
  }
  p.target = gl.GetUniformLocation(p.name, "target");
  p.exchange = gl.GetUniformLocation(p.name, "exchange");
  p.texel = gl.GetUniformLocation(p.name, "texel");
  p.order = gl.GetUniformLocation(p.name, "order");
  p.maskTexel = gl.GetUniformLocation(p.name, "maskTexel");
  gl.UseProgram(p.name);
  gl.Uniform1i(gl.GetUniformLocation(p.name, "source"), 0);
  if (which == GlProgram::Masked) gl.Uniform1i(gl.GetUniformLocation(p.name, "coverage"), 1);
  used_ = p.name;
  return true;
}

void Programs::Delete(const GlFunctions& gl) {
  for (Program& p : programs_) gl.DeleteProgram(p.name);
  programs_ = {};
}

void Programs::Use(const GlFunctions& gl, GlProgram program, const GlTarget& target,
                   const GlTexture* texture, bool colors, const GlTexture* mask) {
  const Order order(target, texture);
  const Program& p = programs_[static_cast<size_t>(Simplified(program, texture, colors, order))];
  if (used_ != p.name) gl.UseProgram(p.name);
  used_ = p.name;
  const auto width = static_cast<float>(target.width), height = static_cast<float>(target.height);
  // OpenGL's rows go up. A texture's first row is the lowest one, a window's the highest.
  const float up = target.IsWindow() ? -1.0f : 1.0f;
  gl.Uniform4f(p.target, 2 / width, 2 * up / height, -1, -up);
  gl.Uniform1f(p.exchange, target.redFirst ? 1.0f : 0.0f);
  const auto setTexel = [&gl](GLint location, const GlTexture* t) {
    const float across = t ? 1 / static_cast<float>(t->Width()) : 1;
    gl.Uniform2f(location, across, t ? 1 / static_cast<float>(t->Height()) : 1);
  };
  setTexel(p.texel, texture);
  if (mask) setTexel(p.maskTexel, mask);
  // Column by column.
  float matrix[16] = {};
  for (int i = 0; i < 4; ++i) matrix[order.from[i] * 4 + i] = 1;
  gl.UniformMatrix4fv(p.order, 1, GL_FALSE, matrix);
}

int Programs::SetAttributes(const GlFunctions& gl, GlProgram program) {
  const auto stride = static_cast<GLsizei>(WordsOfVertex(program) * 4);
  const int count = AttributeCount(program);
  size_t offset = 0;
  for (int i = 0; i < count; ++i) {
    const bool color = kAttributes[i].words == 1;
    gl.VertexAttribPointer(static_cast<GLuint>(i), 4, color ? GL_UNSIGNED_BYTE : GL_FLOAT,
                           color ? GL_TRUE : GL_FALSE, stride,
                           reinterpret_cast<const void*>(offset));
    offset += static_cast<size_t>(kAttributes[i].words) * 4;
  }
  return count;
}

}  // namespace ZIRK::backends
