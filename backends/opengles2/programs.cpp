#include "opengles2/programs.h"

#include <zirk/impl/log.h>

#include <algorithm>
#include <cstddef>
#include <utility>

#include "opengles2/shaders.h"

namespace ZIRK::backends {

namespace {

/// In the order of the words of a vertex.
struct Attribute {
  const char* name;
  GLint size;
  GLenum type;
};
constexpr Attribute kAttributes[] = {{"position", 2, GL_FLOAT}, {"color", 4, GL_UNSIGNED_BYTE},
                                     {"texel", 2, GL_FLOAT},    {"limits", 4, GL_FLOAT},
                                     {"shape", 4, GL_FLOAT},    {"shapeUnit", 4, GL_FLOAT},
                                     {"mask", 4, GL_FLOAT}};
constexpr Attribute kPlainPosition = {"position", 2, GL_UNSIGNED_SHORT};

constexpr int AttributeCount(GlProgram program) {
  return program == GlProgram::Shaped ? 6 : program == GlProgram::Masked ? 7 : 3;
}

constexpr size_t BytesOf(const Attribute& a) {
  const size_t component = a.type == GL_FLOAT            ? sizeof(GLfloat)
                           : a.type == GL_UNSIGNED_SHORT ? sizeof(GLushort)
                                                         : sizeof(GLubyte);
  return static_cast<size_t>(a.size) * component;
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
    if (!texture) return;
    if (texture->Format() == VuPixelFormat::A8 || target.order == ChannelOrder::AlphaOnly)
      std::fill_n(from, 4, AlphaOf(*texture));
    else if (texture->Order() != target.order)
      std::swap(from[0], from[2]);
  }
  bool IsIdentity() const { return from[0] == 0 && from[3] == 3; }
  static int AlphaOf(const GlTexture& t) { return t.Order() == ChannelOrder::AlphaOnly ? 0 : 3; }
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
  p.target.location = gl.GetUniformLocation(p.name, "target");
  p.texelSize.location = gl.GetUniformLocation(p.name, "texelSize");
  p.order.location = gl.GetUniformLocation(p.name, "order");
  p.maskTexelSize.location = gl.GetUniformLocation(p.name, "maskTexelSize");
  p.maskChannel.location = gl.GetUniformLocation(p.name, "maskChannel");
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
  Program& p = programs_[static_cast<size_t>(Simplified(program, texture, colors, order))];
  if (used_ != p.name) gl.UseProgram(p.name);
  used_ = p.name;
  const auto width = static_cast<float>(target.width), height = static_cast<float>(target.height);
  // OpenGL's rows go up. A texture's first row is the lowest one, a window's the highest.
  const float up = target.IsWindow() ? -1.0f : 1.0f;
  const std::array<float, 4> toClip = {2 / width, 2 * up / height, -1, -up};
  if (p.target.Changes(toClip)) gl.Uniform4fv(p.target.location, 1, toClip.data());
  const auto setTexelSize = [&gl](Uniform<2>& uniform, const GlTexture* t) {
    const std::array<float, 2> size = {t ? 1 / static_cast<float>(t->Width()) : 1,
                                       t ? 1 / static_cast<float>(t->Height()) : 1};
    if (uniform.Changes(size)) gl.Uniform2fv(uniform.location, 1, size.data());
  };
  // Without a texture any size will do, but there has to be one.
  if (texture || !p.texelSize.value) setTexelSize(p.texelSize, texture);
  if (mask) {
    setTexelSize(p.maskTexelSize, mask);
    std::array<float, 4> channel{};
    channel[static_cast<size_t>(Order::AlphaOf(*mask))] = 1;
    if (p.maskChannel.Changes(channel)) gl.Uniform4fv(p.maskChannel.location, 1, channel.data());
  }
  // Column by column.
  std::array<float, 16> matrix{};
  for (int i = 0; i < 4; ++i) matrix[static_cast<size_t>(order.from[i] * 4 + i)] = 1;
  if (texture && p.order.Changes(matrix))
    gl.UniformMatrix4fv(p.order.location, 1, GL_FALSE, matrix.data());
}

void Programs::SetAttributes(const GlFunctions& gl, GlProgram program) {
  const int words = WordsOfVertex(program);
  if (words == wordsOfVertex_) return;
  wordsOfVertex_ = words;
  const int count = AttributeCount(program);
  size_t offset = 0;
  for (int i = 0; i < count; ++i) {
    const Attribute& a = i == 0 && program == GlProgram::Plain ? kPlainPosition : kAttributes[i];
    gl.VertexAttribPointer(static_cast<GLuint>(i), a.size, a.type, a.type == GL_UNSIGNED_BYTE,
                           words * 4, reinterpret_cast<const void*>(offset));
    offset += BytesOf(a);
  }
  for (; attributes_ < count; ++attributes_)
    gl.EnableVertexAttribArray(static_cast<GLuint>(attributes_));
  while (attributes_ > count) gl.DisableVertexAttribArray(static_cast<GLuint>(--attributes_));
}

}  // namespace ZIRK::backends
