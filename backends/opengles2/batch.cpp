#include "opengles2/batch.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "common/pixelmath.h"
#include "opengles2/gldevice.h"

namespace ZIRK::backends {

namespace {

GLenum ToGl(VuBlendingFactor factor) {
  switch (factor) {
    case VuBlendingFactor::Zero:
      return GL_ZERO;
    case VuBlendingFactor::One:
      return GL_ONE;
    case VuBlendingFactor::SrcColor:
      return GL_SRC_COLOR;
    case VuBlendingFactor::OneMinusSrcColor:
      return GL_ONE_MINUS_SRC_COLOR;
    case VuBlendingFactor::SrcAlpha:
      return GL_SRC_ALPHA;
    case VuBlendingFactor::OneMinusSrcAlpha:
      return GL_ONE_MINUS_SRC_ALPHA;
    case VuBlendingFactor::DstAlpha:
      return GL_DST_ALPHA;
    case VuBlendingFactor::OneMinusDstAlpha:
      return GL_ONE_MINUS_DST_ALPHA;
    case VuBlendingFactor::DstColor:
      return GL_DST_COLOR;
    case VuBlendingFactor::OneMinusDstColor:
      return GL_ONE_MINUS_DST_COLOR;
    case VuBlendingFactor::SrcAlphaSaturate:
      return GL_SRC_ALPHA_SATURATE;
    case VuBlendingFactor::BlendColor:
      return GL_CONSTANT_COLOR;
    case VuBlendingFactor::OneMinusBlendColor:
      return GL_ONE_MINUS_CONSTANT_COLOR;
    case VuBlendingFactor::BlendAlpha:
      return GL_CONSTANT_ALPHA;
    case VuBlendingFactor::OneMinusBlendAlpha:
      return GL_ONE_MINUS_CONSTANT_ALPHA;
  }
  return GL_ZERO;
}

struct Channels {
  float red, green, blue, alpha;
};

/// Of a premultiplied colour, in the order of the target.
Channels ChannelsOf(uint32_t color, const GlTarget& target) {
  const auto channel = [color](int shift) {
    return static_cast<float>(color >> shift & 255u) / 255;
  };
  const float red = channel(16), blue = channel(0);
  if (target.redFirst) return {red, channel(8), blue, channel(24)};
  return {blue, channel(8), red, channel(24)};
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

GLenum GlBlend::Factor(int index) const {
  return ToGl(static_cast<VuBlendingFactor>(factors >> 4 * index & 15u));
}

Batch::Batch(GlDevice& device) : device_(device), words_(new float[kWords]) {}

Batch::~Batch() = default;

bool Batch::Start() {
  const GlFunctions& gl = device_.Gl();
  if (!programs_.Build(gl)) return false;
  gl.GenBuffers(kVertexBuffers, vertices_);
  for (const GLuint buffer : vertices_) {
    gl.BindBuffer(GL_ARRAY_BUFFER, buffer);
    gl.BufferData(GL_ARRAY_BUFFER, GLsizeiptr{kWords} * 4, nullptr, GL_STREAM_DRAW);
  }
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

void Batch::Stop() {
  const GlFunctions& gl = device_.Gl();
  programs_.Delete(gl);
  gl.DeleteBuffers(kVertexBuffers, vertices_);
  gl.DeleteBuffers(1, &indices_);
  gl.DeleteTextures(1, &white_);
}

void Batch::Begin(const DrawKey& key) {
  Flush();
  key_ = key;
  colors_ = false;
  blend_ = *key.blend;
}

void Batch::Flush() {
  if (quads_ == 0) return;
  const int quads = quads_, used = used_;
  quads_ = used_ = 0;
  const GlScope scope(device_, key_.target->window);
  if (!scope) return;
  const GlFunctions& gl = device_.Gl();
  UseTarget(*key_.target);
  UseBlend();
  programs_.Use(gl, key_.program, *key_.target, key_.texture, colors_, key_.mask);
  if (key_.mask) UseTexture(1, key_.mask, key_.maskFilter);
  UseTexture(0, key_.texture, key_.filter);
  gl.BindBuffer(GL_ARRAY_BUFFER, vertices_[nextVertices_]);
  nextVertices_ = (nextVertices_ + 1) % kVertexBuffers;
  gl.BufferSubData(GL_ARRAY_BUFFER, 0, static_cast<GLsizeiptr>(used) * 4, words_.get());
  const int attributes = Programs::SetAttributes(gl, key_.program);
  for (; attributes_ < attributes; ++attributes_)
    gl.EnableVertexAttribArray(static_cast<GLuint>(attributes_));
  while (attributes_ > attributes) gl.DisableVertexAttribArray(static_cast<GLuint>(--attributes_));
  gl.DrawElements(GL_TRIANGLES, quads * 6, GL_UNSIGNED_SHORT, nullptr);
}

/// Whether a quadrilateral that has been collected reads pixels of `box` of the texture.
bool Batch::Reads(const Box& box) const {
  const int stride = WordsOfVertex(key_.program);
  const float margin = key_.filter == GL_NEAREST && key_.program == GlProgram::Plain ? 0 : 1;
  for (const float* v = words_.get(); v < words_.get() + used_; v += 4 * stride) {
    const auto bounds = [=](int axis) {
      const float* at = v + 2 + axis;
      return std::minmax({at[0], at[stride], at[2 * stride], at[3 * stride]});
    };
    const auto [left, right] = bounds(0);
    const auto [top, bottom] = bounds(1);
    if (left < static_cast<float>(box.x1) + margin && right > static_cast<float>(box.x0) - margin &&
        top < static_cast<float>(box.y1) + margin && bottom > static_cast<float>(box.y0) - margin)
      return true;
  }
  return false;
}

void Batch::BeforeWriting(const GlTexture& texture, const Box& box) {
  if (quads_ == 0) return;
  if (key_.mask == &texture || key_.target == texture.AsTarget() ||
      (key_.texture == &texture && Reads(box)))
    Flush();
}

void Batch::Forget(const GlTexture& texture) {
  Forget(*texture.AsTarget());
  if (quads_ > 0 && (key_.texture == &texture || key_.mask == &texture)) Flush();
}

void Batch::Forget(const GlTarget& target) {
  if (key_.target == &target) quads_ = used_ = 0;
  if (viewportOf_ == &target) viewportOf_ = nullptr;
}

bool Batch::Clear(const GlTarget& target, uint32_t color) {
  // It covers all that was to be drawn on the same target.
  if (quads_ > 0 && key_.target == &target)
    quads_ = used_ = 0;
  else
    Flush();
  const GlScope scope(device_, target.window);
  if (!scope) return false;
  UseTarget(target);
  const GlFunctions& gl = device_.Gl();
  // Written once, the alpha of those that keep theirs is 1 for good.
  if (!alphaWritten_) gl.ColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
  alphaWritten_ = true;
  const Channels c = ChannelsOf(color, target);
  gl.ClearColor(c.red, c.green, c.blue, target.keepsAlpha ? 1 : c.alpha);
  gl.Clear(GL_COLOR_BUFFER_BIT);
  return true;
}

void Batch::Bind(int unit, GLuint texture) {
  // What follows, a texture's parameters or pixels, goes to the unit that is active.
  if (unit_ != unit) device_.Gl().ActiveTexture(unit ? GL_TEXTURE1 : GL_TEXTURE0);
  unit_ = unit;
  if (bound_[unit] == texture) return;
  device_.Gl().BindTexture(GL_TEXTURE_2D, texture);
  bound_[unit] = texture;
}

void Batch::Unbind(GLuint texture) {
  for (GLuint& bound : bound_)
    if (bound == texture) bound = 0;
}

void Batch::BindFramebuffer(GLuint framebuffer) {
  if (framebuffer_ == framebuffer) return;
  device_.Gl().BindFramebuffer(GL_FRAMEBUFFER, framebuffer);
  framebuffer_ = framebuffer;
}

void Batch::DeleteFramebuffer(GLuint framebuffer) {
  if (framebuffer_ == framebuffer) framebuffer_ = 0;
  device_.Gl().DeleteFramebuffers(1, &framebuffer);
}

/// Everything that is drawn begins with this.
void Batch::UseTarget(const GlTarget& target) {
  ++target.changes;
  BindFramebuffer(target.framebuffer);
  if (viewportOf_ == &target) return;
  device_.Gl().Viewport(0, target.bottom, target.width, target.height);
  viewportOf_ = &target;
}

void Batch::UseBlend() {
  const GlFunctions& gl = device_.Gl();
  if (alphaWritten_ == key_.target->keepsAlpha) {
    alphaWritten_ = !alphaWritten_;
    gl.ColorMask(GL_TRUE, GL_TRUE, GL_TRUE, alphaWritten_ ? GL_TRUE : GL_FALSE);
  }
  if (blend_.IsEnabled() != blendUsed_) (blend_.IsEnabled() ? gl.Enable : gl.Disable)(GL_BLEND);
  blendUsed_ = blend_.IsEnabled();
  if (!blendUsed_) return;
  if (blend_.factors != blendSet_.factors)
    gl.BlendFuncSeparate(blend_.Factor(0), ForDestination(blend_.Factor(1), GL_ZERO),
                         blend_.Factor(2), ForDestination(blend_.Factor(3), GL_ONE));
  // Its order depends on the target, so that it is told each time that it may matter.
  const Channels c = ChannelsOf(blend_.color, *key_.target);
  if (blend_.color != 0 || blendSet_.color != 0) gl.BlendColor(c.red, c.green, c.blue, c.alpha);
  blendSet_ = blend_;
}

/// The factor, or `instead` where it is none that this version of OpenGL has for the destination.
/// For alpha, One is what it means; for colours, Zero is so only where the destination is opaque.
GLenum Batch::ForDestination(GLenum factor, GLenum instead) const {
  return factor == GL_SRC_ALPHA_SATURATE && !saturatesDestination_ ? instead : factor;
}

void Batch::UseTexture(int unit, GlTexture* texture, GLint filter) {
  Bind(unit, texture ? texture->Name() : white_);
  if (texture) texture->SetFilter(filter);
}

}  // namespace ZIRK::backends
