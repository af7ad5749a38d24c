#include "opengles2/glprograms.h"

#include <zirk/impl/log.h>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace ZIRK::backends {

namespace {

// Compile() puts the program's `#define`s of SHAPED, MASKED, COLOR and TEXTURE before each source.

constexpr char kVertexShader[] = R"(
precision highp float;

attribute vec2 position;
attribute vec4 color;      // in the target's order
attribute vec2 texel;      // position in the texture
uniform vec4 target;       // pixels to OpenGL's coordinates: scale, offset
uniform vec2 texelSize;

varying vec2 texturePosition;
varying vec4 shade;

#ifdef SHAPED
attribute vec4 limits;
attribute vec4 shape;      // a corner, the way to the next
attribute vec4 shapeUnit;  // the way to the other, position in the unit square
varying vec2 place;
varying vec4 limit, corners, sideUnit;
#endif
#ifdef MASKED
attribute vec4 mask;       // position in the mask, crossTerm
attribute vec4 maskLimits;
uniform vec2 maskTexelSize;
varying vec4 maskPosition, maskLimit;
#endif

void main() {
  gl_Position = vec4(position * target.xy + target.zw, 0.0, 1.0);
  texturePosition = texel * texelSize;
  shade = color;
#ifdef SHAPED
  place = position;
  limit = limits * texelSize.xyxy;
  corners = shape;
  sideUnit = shapeUnit;
#endif
#ifdef MASKED
  maskPosition = mask * maskTexelSize.xyxy;
  maskLimit = maskLimits * maskTexelSize.xyxy;
#endif
}
)";

constexpr char kFragmentShader[] = R"(
precision highp float;

varying vec2 texturePosition;
varying vec4 shade;
uniform sampler2D source;
uniform mat4 order;        // the texture's channels to the target's

#ifdef SHAPED
// The position on the target. gl_FragCoord may have only 16 bits, whatever the precision here.
varying vec2 place;
varying vec4 limit, corners, sideUnit;
#endif
#ifdef MASKED
varying vec4 maskPosition, maskLimit;
uniform sampler2D coverage;
uniform vec4 maskChannel;  // the one that is alpha
#endif

#ifdef SHAPED
// Integrates the distance from the left edge of the unit square to the side from a to b over the
// height of the square. The sum over all sides of a shape is the area that it shares with the
// square.
float reach(vec2 a, vec2 b) {
  float top = clamp(a.y, 0.0, 1.0), bottom = clamp(b.y, 0.0, 1.0);
  if (top == bottom) return 0.0;
  float x0 = mix(a.x, b.x, (top - a.y) / (b.y - a.y));
  float x1 = mix(a.x, b.x, (bottom - a.y) / (b.y - a.y));
  float left = min(x0, x1), right = max(x0, x1), width = right - left;
  if (width < 0.001) return clamp(0.5 * (left + right), 0.0, 1.0) * (bottom - top);
  float first = clamp(left, 0.0, 1.0), last = clamp(right, 0.0, 1.0);
  float sum = 0.5 * (last - first) * (last + first) + max(right, 1.0) - max(left, 1.0);
  return sum / width * (bottom - top);
}

// The part of the pixel around `centre` that the shape covers.
float covered(vec2 centre) {
  vec2 side = corners.zw, other = sideUnit.xy, from = centre - corners.xy;
  float area = side.x * other.y - side.y * other.x;
  vec2 distances = vec2(side.x * from.y - side.y * from.x, from.x * other.y - from.y * other.x);
  distances *= sign(area);
  vec2 margin = 0.501 * vec2(abs(side.x) + abs(side.y), abs(other.x) + abs(other.y));
  if (all(greaterThan(distances, margin)) && all(lessThan(distances, abs(area) - margin)))
    return 1.0;
  vec2 a = vec2(0.5) - from, b = a + side, c = b + other, d = a + other;
  return min(abs(reach(a, b) + reach(b, c) + reach(c, d) + reach(d, a)), 1.0);
}
#endif

#if defined(COLOR)
void main() {
  gl_FragColor = shade;
}
#elif defined(TEXTURE)
void main() {
  gl_FragColor = shade * texture2D(source, texturePosition);
}
#else
void main() {
  vec2 at = texturePosition;
  float textured = step(0.0, at.x);
  float amount = 1.0;
#ifdef SHAPED
  amount = covered(place);
  // Pixels without coverage stay unchanged even with blending off.
  if (amount < 0.00196) discard;
  textured = step(0.0, limit.x);
  at = clamp(at, limit.xy, limit.zw);
#endif
#ifdef MASKED
  vec2 on = maskPosition.xy + maskPosition.zw * (sideUnit.z * sideUnit.w);
  on = clamp(on, maskLimit.xy, maskLimit.zw);
  amount *= dot(texture2D(coverage, on), maskChannel);
#endif
  gl_FragColor = shade * mix(vec4(1.0), order * texture2D(source, at), textured) * amount;
}
#endif
)";

/// An attribute; kAttributes is in the order of a vertex's words.
struct Attribute {
  const char* name;
  GLint size;
  GLenum type;
};
constexpr Attribute kAttributes[] = {{"position", 2, GL_FLOAT}, {"color", 4, GL_UNSIGNED_BYTE},
                                     {"texel", 2, GL_FLOAT},    {"limits", 4, GL_FLOAT},
                                     {"shape", 4, GL_FLOAT},    {"shapeUnit", 4, GL_FLOAT},
                                     {"mask", 4, GL_FLOAT},     {"maskLimits", 4, GL_FLOAT}};
constexpr Attribute kPlainPosition = {"position", 2, GL_UNSIGNED_SHORT};

constexpr int AttributeCount(GlProgram program) {
  return program == GlProgram::Shaped ? 6 : program == GlProgram::Masked ? 8 : 3;
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

/// Compiles a shader; 0 after an error line.
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

/// For each channel of the target, the channel of the texture that it is read from.
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

bool GlPrograms::Build(const GlFunctions& gl) {
  for (int i = 0; i < kProgramCount; ++i)
    if (!Build(gl, static_cast<GlProgram>(i))) return false;
  return true;
}

bool GlPrograms::Build(const GlFunctions& gl, GlProgram which) {
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
  // OpenGL keeps the shaders until the program is deleted.
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

void GlPrograms::Delete(const GlFunctions& gl) {
  for (Program& p : programs_) gl.DeleteProgram(p.name);
  programs_ = {};
}

void GlPrograms::Use(const GlFunctions& gl, GlProgram program, const GlTarget& target,
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
  // Without a texture any size will do, but one must be set.
  if (texture || !p.texelSize.value) setTexelSize(p.texelSize, texture);
  if (mask) {
    setTexelSize(p.maskTexelSize, mask);
    std::array<float, 4> channel{};
    channel[static_cast<size_t>(Order::AlphaOf(*mask))] = 1;
    if (p.maskChannel.Changes(channel)) gl.Uniform4fv(p.maskChannel.location, 1, channel.data());
  }
  // In column-major order.
  std::array<float, 16> matrix{};
  for (int i = 0; i < 4; ++i) matrix[static_cast<size_t>(order.from[i] * 4 + i)] = 1;
  if (texture && p.order.Changes(matrix))
    gl.UniformMatrix4fv(p.order.location, 1, GL_FALSE, matrix.data());
}

void GlPrograms::SetAttributes(const GlFunctions& gl, GlProgram program) {
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
