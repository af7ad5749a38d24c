#include "opengles2/glquads.h"

#include <cmath>
#include <cstring>
#include <iterator>
#include <new>

#include "geometry/pixelmath.h"

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

/// The factor for a target whose only channel is alpha, stored as red: OpenGL takes all its pixels
/// as opaque.
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

/// The number of pixels for which a shaped quadrilateral costs the GPU about a draw call more than
/// a plain one.
constexpr int kPixelsForShape = 1 << 15;
/// The cost, in pixels, of the larger vertices of a quadrilateral that becomes a shaped one.
constexpr int kPixelsForVertices = 512;

int64_t Area(const Box& b) {
  return int64_t{b.Width()} * b.Height();
}

int64_t CostOfWidening(const Box& box) {
  return Area(box) + kPixelsForVertices;
}

/// Whether quadrilaterals with these filters can share a draw call.
bool Agree(GlProgram program, TexelFilter a, TexelFilter b) {
  if (a == b) return true;
  if (a != TexelFilter::Exact && b != TexelFilter::Exact) return false;
  // Interpolating texels that could be read unchanged costs more than another draw call.
  return program != GlProgram::Plain || std::max(a, b) == TexelFilter::Nearest;
}

Box BoxOf(const PlainVertex* quad) {
  return {quad[0].x, quad[0].y, quad[2].x, quad[2].y};
}

/// Converts a plain quadrilateral to a shaped one, with the edges of the shape far outside.
void WidenQuad(const PlainVertex* in, const GlTexture* texture, std::byte* out) {
  PlainVertex quad[4];
  std::memcpy(quad, in, sizeof quad);
  const Box box = BoxOf(quad);
  const auto x = static_cast<float>(box.x0), y = static_cast<float>(box.y0);
  ShapedVertex v{};
  v.color = quad[0].color;
  v.first = v.last = {-1, -1};
  // -1 means no texture. The first texel may be rounded to slightly below 0.
  if (quad[0].s > -0.5f && texture) {
    v.first = {0.5f, 0.5f};
    v.last = {static_cast<float>(texture->Width()) - 0.5f,
              static_cast<float>(texture->Height()) - 0.5f};
  }
  v.corner = {x - 2, y - 2};
  v.right = {static_cast<float>(box.Width() + 4), 0};
  v.down = {0, static_cast<float>(box.Height() + 4)};
  for (const PlainVertex& corner : quad) {
    v.position = {static_cast<float>(corner.x), static_cast<float>(corner.y)};
    v.texel = {corner.s, corner.t};
    std::memcpy(out, &v, sizeof v);
    out += sizeof v;
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

/// Joins a box with the one before it if they are close together, like letters in a line.
void Extent::Add(const Box& box) {
  all_ = count_ > 0 ? Union(all_, box) : box;
  if (count_ > 0) {
    Box& last = boxes_[static_cast<size_t>(count_ - 1)];
    const Box both = Union(last, box);
    if (2 * Area(both) <= 3 * (Area(last) + Area(box))) {
      last = both;
      return;
    }
  }
  if (count_ == kMaxBoxes) JoinTwo();
  boxes_[static_cast<size_t>(count_++)] = box;
}

/// Joins the two consecutive boxes with the smallest gap.
void Extent::JoinTwo() {
  int64_t least = INT64_MAX;
  size_t best = 0;
  for (size_t i = 0; i + 1 < kMaxBoxes; ++i) {
    const Box &a = boxes_[i], &b = boxes_[i + 1];
    const int64_t between = Area(Union(a, b)) - Area(a) - Area(b);
    if (between >= least) continue;
    least = between;
    best = i;
  }
  boxes_[best] = Union(boxes_[best], boxes_[best + 1]);
  const auto at = boxes_.begin() + static_cast<ptrdiff_t>(best);
  std::copy(at + 2, boxes_.end(), at + 1);
  --count_;
}

bool Extent::Touches(const Box& box) const {
  const auto meet = [&box](const Box& b) { return !Intersection(b, box).IsEmpty(); };
  return count_ > 0 && meet(all_) && std::any_of(boxes_.begin(), boxes_.begin() + count_, meet);
}

bool GlQuads::Begin(const DrawKey& key) {
  if (!lines_) lines_.reset(new (std::nothrow) Line[kMaxQuads]);
  key_ = key;
  count_ = noted_ = shapes_ = converted_ = 0;
  colors_ = false;
  extent_.Clear();
  return lines_ != nullptr;
}

GlQuads::Fit GlQuads::FitOf(const DrawKey& key, int count, const Box& box) const {
  if (key.mask != key_.mask || key.maskFilter != key_.maskFilter || !(key.blend == key_.blend))
    return Fit::No;
  const GlProgram program = std::max(key.program, key_.program);
  // A plain colour fits any texture.
  if (key.texture && key_.texture &&
      (key.texture != key_.texture || !Agree(program, key.filter, key_.filter)))
    return Fit::No;
  const bool joins = key.program == key_.program;
  const int64_t cost = CostOfWidening(box);
  if (!joins && key.program == GlProgram::Plain &&
      (cost > kPixelsForShape || converted_ + cost > int64_t{kPixelsForShape} * (shapes_ + 1)))
    return Fit::No;
  if (!joins && key_.program == GlProgram::Plain && !CanWiden()) return Fit::No;
  constexpr int kWords = kMaxQuads * WordsOfQuad(GlProgram::Plain);
  if (count_ + count > kWords / WordsOfQuad(program)) return Fit::NoRoom;
  return key_.program == program ? Fit::Joins : Fit::Widens;
}

/// Whether converting the plain ones costs no more than a shaped one allows for.
bool GlQuads::CanWiden() const {
  constexpr int kMost = 2 * kPixelsForShape;
  if (count_ > kMost / kPixelsForVertices) return false;
  int64_t cost = 0;
  for (int i = 0; i < count_; ++i) cost += CostOfWidening(BoundsOf(i));
  return cost <= kMost;
}

void GlQuads::Widen() {
  std::byte* const first = lines_[0].bytes;
  for (int i = count_ - 1; i >= 0; --i) {
    const Line& line = lines_[static_cast<size_t>(i)];
    converted_ += static_cast<int>(CostOfWidening(BoundsOf(i)));
    WidenQuad(reinterpret_cast<const PlainVertex*>(line.bytes), key_.texture,
              first + ptrdiff_t{4} * i * WordsOfQuad(GlProgram::Shaped));
  }
  key_.program = GlProgram::Shaped;
}

std::byte* GlQuads::Add(const DrawKey& key, int count, const Box& box) {
  if (key.texture) {
    key_.texture = key.texture;
    key_.filter = std::max(key_.filter, key.filter);
  } else {
    colors_ = true;
  }
  if (key.program != GlProgram::Plain)
    ++shapes_;
  else if (key_.program != GlProgram::Plain)
    converted_ += static_cast<int>(CostOfWidening(box));
  std::byte* const at = At(count_);
  count_ += count;
  return at;
}

void GlQuads::AddPlain(const DrawKey& key, const PlainVertex (&quad)[4], const Box& box) {
  std::byte* const at = Add(key, 1, box);
  if (key_.program == GlProgram::Plain)
    std::memcpy(at, quad, sizeof quad);
  else
    WidenQuad(quad, key_.texture, at);
}

Box GlQuads::BoundsOf(int quad) const {
  const std::byte* at = At(quad);
  if (key_.program == GlProgram::Plain) return BoxOf(reinterpret_cast<const PlainVertex*>(at));
  float x0 = INFINITY, y0 = INFINITY, x1 = -INFINITY, y1 = -INFINITY;
  for (int i = 0; i < 4; ++i, at += ptrdiff_t{4} * WordsOfVertex(key_.program)) {
    GlPoint p;
    std::memcpy(&p, at, sizeof p);
    x0 = std::min(x0, p.x);
    y0 = std::min(y0, p.y);
    x1 = std::max(x1, p.x);
    y1 = std::max(y1, p.y);
  }
  return {static_cast<int>(std::floor(x0)), static_cast<int>(std::floor(y0)),
          static_cast<int>(std::ceil(x1)), static_cast<int>(std::ceil(y1))};
}

bool GlQuads::Touches(const Box& box) {
  for (; noted_ < count_; ++noted_) extent_.Add(BoundsOf(noted_));
  return extent_.Touches(box);
}

bool GlQuads::Reads(const GlTexture& texture, const Box& box) const {
  if (count_ == 0) return false;
  if (key_.mask == &texture) return true;
  if (key_.texture != &texture) return false;
  const ptrdiff_t stride = ptrdiff_t{4} * WordsOfVertex(key_.program);
  const ptrdiff_t offset = ptrdiff_t{4} * TexelsInVertex(key_.program);
  const float margin =
      key_.filter != TexelFilter::Linear && key_.program == GlProgram::Plain ? 0 : 1;
  for (const std::byte* quad = At(0); quad < At(count_); quad += 4 * stride) {
    const auto bounds = [=](int axis) {
      const auto at = [=](int corner) {
        float value;
        std::memcpy(&value, quad + corner * stride + offset + ptrdiff_t{4} * axis, sizeof value);
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

}  // namespace ZIRK::backends
