#include "opengles2/glbatch.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <utility>
#include <vector>

#include "geometry/pixelmath.h"
#include "opengles2/gldevice.h"

namespace ZIRK::backends {

namespace {

/// In the order of VuBlendingFactor.
constexpr GLenum kFactors[] = {
    GL_ZERO,
    GL_ONE,
    GL_SRC_COLOR,
    GL_ONE_MINUS_SRC_COLOR,
    GL_SRC_ALPHA,
    GL_ONE_MINUS_SRC_ALPHA,
    GL_DST_ALPHA,
    GL_ONE_MINUS_DST_ALPHA,
    GL_DST_COLOR,
    GL_ONE_MINUS_DST_COLOR,
    GL_SRC_ALPHA_SATURATE,
    GL_CONSTANT_COLOR,
    GL_ONE_MINUS_CONSTANT_COLOR,
    GL_CONSTANT_ALPHA,
    GL_ONE_MINUS_CONSTANT_ALPHA,
};
static_assert(kFactors[size_t(VuBlendingFactor::SrcAlphaSaturate)] == GL_SRC_ALPHA_SATURATE &&
              size_t(VuBlendingFactor::OneMinusBlendAlpha) + 1 == std::size(kFactors));

/// A colour as four numbers.
std::array<float, 4> Split(uint32_t color) {
  std::array<float, 4> channels{};
  for (size_t i = 0; i < 4; ++i) channels[i] = static_cast<float>(color >> 8 * i & 255u) / 255;
  return channels;
}

/// The factor for a target whose colour is its alpha: OpenGL takes all its pixels as opaque.
GLenum OfAlpha(GLenum factor) {
  switch (factor) {
    case GL_SRC_ALPHA_SATURATE:
      return GL_ONE;
    case GL_DST_ALPHA:
      return GL_DST_COLOR;
    case GL_ONE_MINUS_DST_ALPHA:
      return GL_ONE_MINUS_DST_COLOR;
    default:
      return factor;
  }
}

}  // namespace

GlBlend::GlBlend(const SurfaceState& state)
    : color(Premultiply(state.blendColor)), factors(state.blendEnabled ? kEnabled : 0) {
  const BlendFactors& f = state.factors;
  int shift = 0;
  for (const VuBlendingFactor factor : {f.srcColor, f.dstColor, f.srcAlpha, f.dstAlpha}) {
    const bool known =
        factor >= VuBlendingFactor::Zero && factor <= VuBlendingFactor::OneMinusBlendAlpha;
    factors |= (known ? static_cast<uint32_t>(factor) : 0) << shift;
    shift += 4;
  }
}

std::array<GLenum, 4> GlBlend::FactorsFor(const GlTarget& target) const {
  std::array<GLenum, 4> all{};
  const bool alphaOnly = target.order == ChannelOrder::AlphaOnly;
  for (size_t i = 0; i < 4; ++i) {
    const GLenum factor = kFactors[factors >> 4 * (alphaOnly ? i | 2 : i) & 15u];
    all[i] = alphaOnly ? OfAlpha(factor) : factor;
  }
  return all;
}

GlBatch::GlBatch(GlDevice& device) : device_(device), lines_(new Line[kMaxQuads]) {}

GlBatch::~GlBatch() = default;

bool GlBatch::Start() {
  const GlFunctions& gl = device_.Gl();
  if (!programs_.Build(gl)) return false;
  gl.GenBuffers(1, &vertices_);
  gl.BindBuffer(GL_ARRAY_BUFFER, vertices_);
  gl.GenBuffers(1, &indices_);
  gl.BindBuffer(GL_ELEMENT_ARRAY_BUFFER, indices_);
  std::vector<GLushort> indices;
  indices.reserve(kMaxQuads * 6);
  for (int quad = 0; quad < kMaxQuads; ++quad)
    for (const int corner : {0, 1, 2, 2, 3, 0})
      indices.push_back(static_cast<GLushort>(quad * 4 + corner));
  gl.BufferData(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLsizeiptr>(indices.size() * 2),
                indices.data(), GL_STATIC_DRAW);
  const auto* const version = reinterpret_cast<const char*>(gl.GetString(GL_VERSION));
  saturatesDestination_ = !version || std::strncmp(version, "OpenGL ES 2.", 12) != 0;
  gl.PixelStorei(GL_UNPACK_ALIGNMENT, 1);
  gl.PixelStorei(GL_PACK_ALIGNMENT, 1);
  gl.Disable(GL_DITHER);
  gl.Disable(GL_BLEND);
  gl.GenTextures(1, &white_);
  Bind(white_);
  gl.TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
  const uint32_t white = ~0u;
  gl.TexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, &white);
  return device_.Check("starting");
}

void GlBatch::Stop() {
  const GlFunctions& gl = device_.Gl();
  programs_.Delete(gl);
  gl.DeleteBuffers(1, &vertices_);
  gl.DeleteBuffers(1, &indices_);
  gl.DeleteTextures(1, &white_);
}

void GlBatch::Begin(const DrawKey& key) {
  Flush();
  key_ = key;
  colors_ = false;
  blend_ = *key.blend;
}

void GlBatch::JoinOrBegin(const DrawKey& key) {
  if (quads_ == kMaxQuads || !TryJoin(key)) Begin(key);
}

void GlBatch::Flush() {
  if (quads_ == 0) return;
  const GLsizeiptr bytes = End() - Vertices();
  const int quads = std::exchange(quads_, 0);
  const GlScope scope(device_, key_.target->window);
  if (!scope) return;
  const GlFunctions& gl = device_.Gl();
  UseTarget(*key_.target);
  UseBlend();
  programs_.Use(gl, key_.program, *key_.target, key_.texture, colors_, key_.mask);
  if (key_.mask) UseTexture(1, key_.mask, key_.maskFilter);
  UseTexture(0, key_.texture, key_.filter);
  // New storage each time: the last draw calls may still read the old one.
  gl.BufferData(GL_ARRAY_BUFFER, bytes, Vertices(), GL_STREAM_DRAW);
  // Drivers may crash on missing vertices.
  if (!device_.Check("drawing")) return;
  programs_.SetAttributes(gl, key_.program);
  gl.DrawElements(GL_TRIANGLES, quads * 6, GL_UNSIGNED_SHORT, nullptr);
}

/// Whether a collected quadrilateral reads pixels of `box` of the texture.
bool GlBatch::Reads(const Box& box) const {
  const ptrdiff_t stride = 4 * WordsOfVertex(key_.program);
  const ptrdiff_t offset = 4 * TexelsInVertex(key_.program);
  const float margin = key_.filter == GL_NEAREST && key_.program == GlProgram::Plain ? 0 : 1;
  for (const std::byte* quad = Vertices(); quad < End(); quad += 4 * stride) {
    const auto bounds = [=](int axis) {
      const auto at = [=](int corner) {
        float value;
        std::memcpy(&value, quad + corner * stride + offset + 4 * axis, sizeof value);
        return value;
      };
      return std::minmax({at(0), at(1), at(2), at(3)});
    };
    const auto [left, right] = bounds(0);
    const auto [top, bottom] = bounds(1);
    if (left < static_cast<float>(box.x1) + margin && right > static_cast<float>(box.x0) - margin &&
        top < static_cast<float>(box.y1) + margin && bottom > static_cast<float>(box.y0) - margin)
      return true;
  }
  return false;
}

void GlBatch::BeforeWriting(const GlTexture& texture, const Box& box) {
  if (quads_ == 0) return;
  if (key_.mask == &texture || key_.target == texture.AsTarget() ||
      (key_.texture == &texture && Reads(box)))
    Flush();
}

void GlBatch::Forget(const GlTexture& texture) {
  Forget(*texture.AsTarget());
  if (quads_ > 0 && (key_.texture == &texture || key_.mask == &texture)) Flush();
}

void GlBatch::Forget(const GlTarget& target) {
  if (key_.target == &target) quads_ = 0;
  if (viewportOf_ == &target) viewportOf_ = nullptr;
}

bool GlBatch::Clear(const GlTarget& target, uint32_t color) {
  // It covers all that is collected for the same target.
  if (quads_ > 0 && key_.target == &target)
    quads_ = 0;
  else
    Flush();
  const GlScope scope(device_, target.window);
  if (!scope) return false;
  UseTarget(target);
  const GlFunctions& gl = device_.Gl();
  // Targets that keep alpha have it written here only, as 1.
  if (!alphaWritten_) gl.ColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
  alphaWritten_ = true;
  const auto c = Split(target.Channels(color));
  gl.ClearColor(c[0], c[1], c[2], target.keepsAlpha ? 1 : c[3]);
  gl.Clear(GL_COLOR_BUFFER_BIT);
  return true;
}

void GlBatch::Bind(int unit, GLuint texture) {
  // Parameters and pixels that follow go to the active unit.
  if (unit_ != unit) device_.Gl().ActiveTexture(unit ? GL_TEXTURE1 : GL_TEXTURE0);
  unit_ = unit;
  if (bound_[unit] == texture) return;
  device_.Gl().BindTexture(GL_TEXTURE_2D, texture);
  bound_[unit] = texture;
}

void GlBatch::Unbind(GLuint texture) {
  for (GLuint& bound : bound_)
    if (bound == texture) bound = 0;
}

void GlBatch::BindFramebuffer(GLuint framebuffer) {
  if (framebuffer_ == framebuffer) return;
  device_.Gl().BindFramebuffer(GL_FRAMEBUFFER, framebuffer);
  framebuffer_ = framebuffer;
}

void GlBatch::DeleteFramebuffer(GLuint framebuffer) {
  if (framebuffer_ == framebuffer) framebuffer_ = 0;
  device_.Gl().DeleteFramebuffers(1, &framebuffer);
}

/// Every draw call and every Clear() begins with this.
void GlBatch::UseTarget(const GlTarget& target) {
  ++target.changes;
  BindFramebuffer(target.framebuffer);
  if (viewportOf_ == &target) return;
  device_.Gl().Viewport(0, target.bottom, target.width, target.height);
  viewportOf_ = &target;
}

void GlBatch::UseBlend() {
  const GlFunctions& gl = device_.Gl();
  if (alphaWritten_ == key_.target->keepsAlpha) {
    alphaWritten_ = !alphaWritten_;
    gl.ColorMask(GL_TRUE, GL_TRUE, GL_TRUE, alphaWritten_ ? GL_TRUE : GL_FALSE);
  }
  if (blend_.IsEnabled() != blendUsed_) (blend_.IsEnabled() ? gl.Enable : gl.Disable)(GL_BLEND);
  blendUsed_ = blend_.IsEnabled();
  if (!blendUsed_) return;
  std::array<GLenum, 4> factors = blend_.FactorsFor(*key_.target);
  // This version of OpenGL does not have the factor for the destination. For alpha it means One;
  // for colours Zero is right only where the destination is opaque.
  if (!saturatesDestination_ && factors[1] == GL_SRC_ALPHA_SATURATE) factors[1] = GL_ZERO;
  if (!saturatesDestination_ && factors[3] == GL_SRC_ALPHA_SATURATE) factors[3] = GL_ONE;
  if (factors != factorsSet_) gl.BlendFuncSeparate(factors[0], factors[1], factors[2], factors[3]);
  factorsSet_ = factors;
  const uint32_t color = key_.target->Channels(blend_.color);
  if (color == blendColorSet_) return;
  const auto c = Split(color);
  gl.BlendColor(c[0], c[1], c[2], c[3]);
  blendColorSet_ = color;
}

void GlBatch::UseTexture(int unit, GlTexture* texture, GLint filter) {
  Bind(unit, texture ? texture->Name() : white_);
  if (texture) texture->SetFilter(filter);
}

}  // namespace ZIRK::backends
