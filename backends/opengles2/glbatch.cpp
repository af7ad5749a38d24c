#include "opengles2/glbatch.h"

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

#include "opengles2/gldevice.h"
#include "opengles2/glpage.h"
#include "surface/drawmemory.h"

namespace ZIRK::backends {

namespace {

/// A colour as four numbers.
std::array<float, 4> Split(uint32_t color) {
  std::array<float, 4> channels{};
  for (size_t i = 0; i < 4; ++i) channels[i] = static_cast<float>(color >> 8 * i & 255u) / 255;
  return channels;
}

GLint FilterOf(const DrawKey& key) {
  return key.filter == TexelFilter::Linear ? GL_LINEAR : GL_NEAREST;
}

}  // namespace

GlBatch::GlBatch(GlDevice& device) : device_(device) {}

GlBatch::~GlBatch() = default;

bool GlBatch::Start() {
  const GlFunctions& gl = device_.Gl();
  if (!programs_.Build(gl)) return false;
  if (!calls_[0].Begin({})) {
    ReportNoMemory();
    return false;
  }
  gl.GenBuffers(1, &vertices_);
  gl.BindBuffer(GL_ARRAY_BUFFER, vertices_);
  gl.GenBuffers(1, &indices_);
  gl.BindBuffer(GL_ELEMENT_ARRAY_BUFFER, indices_);
  std::vector<GLushort> indices;
  indices.reserve(size_t{6} * GlQuads::kMaxQuads);
  for (int quad = 0; quad < GlQuads::kMaxQuads; ++quad)
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

/// Returns the texture that stores the pixels of `texture`. Moves it to a page first if other small
/// textures of its format are in use: they can share draw calls only there.
GlTexture* GlBatch::Settle(GlTexture* texture) {
  if (!texture) return nullptr;
  const auto isAlike = [texture](const GlTexture* t) {
    return t && t != texture && t->MayMove() && t->Format() == texture->Format();
  };
  const auto hasAlike = [&isAlike](const GlQuads& quads) {
    return isAlike(quads.Key().texture) || isAlike(quads.Key().mask);
  };
  if (texture->MayMove() && (GlPage::Exists(device_, texture->Format()) ||
                             std::any_of(calls_.begin(), calls_.begin() + open_, hasAlike)))
    texture->MoveToPage();
  return &texture->Storage();
}

GlQuads& GlBatch::Join(DrawKey& key, int count, const Box& box) {
  if (open_ > 0 && key.target != last_->Key().target) Flush();
  GlTexture* const mask = key.mask;
  key.texture = Settle(key.texture);
  key.mask = Settle(mask);
  // A texture has one filter.
  if (mask && key.mask == key.texture && key.maskFilter != FilterOf(key)) {
    mask->LeavePage();
    key.mask = &mask->Storage();
  }
  GlQuads *joined = nullptr, *widened = nullptr;
  bool full = false;
  for (int i = open_ - 1; i >= 0; --i) {
    GlQuads& quads = calls_[static_cast<size_t>(i)];
    const GlQuads::Fit fit = quads.FitOf(key, count, box);
    if (fit == GlQuads::Fit::Joins) joined = &quads;
    if (fit == GlQuads::Fit::Widens) widened = &quads;
    if (fit == GlQuads::Fit::NoRoom) full = true;
    if (i > 0 && quads.Touches(box)) break;
  }
  if (joined) return *joined;
  if (widened) {
    widened->Widen();
    return *widened;
  }
  if (full) Flush();
  return Begin(key);
}

GlQuads& GlBatch::Begin(const DrawKey& key) {
  if (open_ == kMaxCalls) Flush();
  GlQuads* next = &calls_[static_cast<size_t>(open_)];
  if (!next->Begin(key) && open_ > 0) {
    // The first draw call always has its memory.
    Flush();
    next = calls_.data();
    next->Begin(key);
  }
  ++open_;
  last_ = next;
  return *next;
}

void GlBatch::JoinPlain(DrawKey key, const Box& box, const Texels& texels, uint32_t color) {
  const GlTexture* const texture = key.texture;
  GlQuads& quads = Join(key, 1, box);
  PlainVertex quad[4];
  PutPlainQuad(quad, box, InStorage(texture, texels), color);
  quads.AddPlain(key, quad, box);
}

void GlBatch::Flush() {
  const int open = std::exchange(open_, 0);
  last_ = calls_.data();
  for (int i = 0; i < open; ++i) Send(calls_[static_cast<size_t>(i)]);
}

void GlBatch::Send(GlQuads& quads) {
  const int count = quads.Count();
  const GLsizeiptr bytes = quads.Bytes();
  quads.Drop();
  const DrawKey& key = quads.Key();
  const GlScope scope(device_, key.target->window);
  if (count == 0 || !scope) return;
  const GlFunctions& gl = device_.Gl();
  UseTarget(*key.target);
  UseBlend(key);
  programs_.Use(gl, key.program, *key.target, key.texture, quads.HasColors(), key.mask);
  if (key.mask) UseTexture(1, key.mask, key.maskFilter);
  UseTexture(0, key.texture, FilterOf(key));
  // New storage each time: the last draw calls may still read the old one.
  gl.BufferData(GL_ARRAY_BUFFER, bytes, quads.Vertices(), GL_STREAM_DRAW);
  // Drivers may crash on missing vertices.
  if (!device_.Check("drawing")) return;
  programs_.SetAttributes(gl, key.program);
  gl.DrawElements(GL_TRIANGLES, count * 6, GL_UNSIGNED_SHORT, nullptr);
}

void GlBatch::BeforeReading(const GlTarget& target) {
  if (open_ > 0 && last_->Key().target == &target) Flush();
}

void GlBatch::BeforeWriting(const GlTexture& texture, const Box& box) {
  const bool reads = std::any_of(calls_.begin(), calls_.begin() + open_,
                                 [&](const GlQuads& quads) { return quads.Reads(texture, box); });
  if (reads) Flush();
  BeforeReading(*texture.AsTarget());
}

void GlBatch::Forget(const GlTexture& texture) {
  Forget(*texture.AsTarget());
  const auto has = [&](const GlQuads& quads) {
    return quads.Key().texture == &texture || quads.Key().mask == &texture;
  };
  if (std::any_of(calls_.begin(), calls_.begin() + open_, has)) Flush();
}

void GlBatch::Forget(const GlTarget& target) {
  if (open_ > 0 && last_->Key().target == &target) Drop();
  if (viewportOf_ == &target) viewportOf_ = nullptr;
}

void GlBatch::Drop() {
  for (GlQuads& quads : calls_) quads.Drop();
  open_ = 0;
  last_ = calls_.data();
}

bool GlBatch::Clear(const GlTarget& target, uint32_t color) {
  // Clearing covers everything that was collected for the target.
  if (open_ > 0 && last_->Key().target == &target)
    Drop();
  else
    Flush();
  const GlScope scope(device_, target.window);
  if (!scope) return false;
  UseTarget(target);
  const GlFunctions& gl = device_.Gl();
  // This is the only place that writes the alpha of targets that keep it, as 1.
  if (!alphaWritten_) gl.ColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
  alphaWritten_ = true;
  const auto c = Split(target.Channels(color));
  gl.ClearColor(c[0], c[1], c[2], target.keepsAlpha ? 1 : c[3]);
  gl.Clear(GL_COLOR_BUFFER_BIT);
  return true;
}

void GlBatch::Bind(int unit, GLuint texture) {
  // Later parameters and pixels apply to the active unit.
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
  device_.Gl().Viewport(0, 0, target.width, target.height);
  viewportOf_ = &target;
}

void GlBatch::UseBlend(const DrawKey& key) {
  const GlFunctions& gl = device_.Gl();
  if (alphaWritten_ == key.target->keepsAlpha) {
    alphaWritten_ = !alphaWritten_;
    gl.ColorMask(GL_TRUE, GL_TRUE, GL_TRUE, alphaWritten_ ? GL_TRUE : GL_FALSE);
  }
  if (key.blend.IsEnabled() != blendUsed_)
    (key.blend.IsEnabled() ? gl.Enable : gl.Disable)(GL_BLEND);
  blendUsed_ = key.blend.IsEnabled();
  if (!blendUsed_) return;
  std::array<GLenum, 4> factors = key.blend.FactorsFor(*key.target);
  // This version of OpenGL lacks the factor for the destination. For alpha it equals One. For
  // colours Zero is correct only if the destination is opaque.
  if (!saturatesDestination_ && factors[1] == GL_SRC_ALPHA_SATURATE) factors[1] = GL_ZERO;
  if (!saturatesDestination_ && factors[3] == GL_SRC_ALPHA_SATURATE) factors[3] = GL_ONE;
  if (factors != factorsSet_) gl.BlendFuncSeparate(factors[0], factors[1], factors[2], factors[3]);
  factorsSet_ = factors;
  const uint32_t color = key.target->Channels(key.blend.color);
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
