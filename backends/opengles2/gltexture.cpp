#include "opengles2/gltexture.h"

#include <zirk/impl/log.h>

#include <cstring>
#include <iterator>
#include <new>
#include <string_view>
#include <utility>

#include "geometry/pixeltraits.h"
#include "geometry/surfaceformat.h"
#include "opengles2/gldevice.h"
#include "opengles2/glpage.h"
#include "surface/drawmemory.h"

namespace ZIRK::backends {

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "pixels are handed on as bytes");

namespace {

/// The longest label that every implementation accepts. A longer one would raise an error, which a
/// later check would report.
constexpr size_t kLabelSize = 255;

struct GlFormat {
  GLenum format;
  GLenum type;
  ChannelOrder order;
  bool isOurs;  ///< Whether rows are uploaded unchanged; otherwise ConvertRow() converts them.
};

/// In the order of VuPixelFormat.
constexpr GlFormat kFormats[] = {
    {GL_RGBA, GL_UNSIGNED_BYTE, ChannelOrder::Ours, true},
    {GL_RGBA, GL_UNSIGNED_BYTE, ChannelOrder::Ours, false},
    {GL_RGB, GL_UNSIGNED_SHORT_5_6_5, ChannelOrder::RedFirst, true},
    {GL_RGBA, GL_UNSIGNED_SHORT_4_4_4_4, ChannelOrder::RedFirst, false},
    {GL_RGBA, GL_UNSIGNED_SHORT_5_5_5_1, ChannelOrder::RedFirst, false},
    {GL_RED_EXT, GL_UNSIGNED_BYTE, ChannelOrder::AlphaOnly, true},
};
static_assert(std::size(kFormats) == std::size(kPixelLayouts));

/// A8 if OpenGL cannot draw on textures of one channel.
constexpr GlFormat kFourChannelsForA8{GL_RGBA, GL_UNSIGNED_BYTE, ChannelOrder::Ours, false};

const GlFormat& FormatOf(VuPixelFormat format, bool oneChannel) {
  if (format == VuPixelFormat::A8 && !oneChannel) return kFourChannelsForA8;
  return kFormats[static_cast<size_t>(format)];
}

/// Converts a row from the surface's layout to OpenGL's, for the formats in which these differ.
void ConvertRow(VuPixelFormat format, const uint8_t* in, int count, uint8_t* out) {
  const auto each = [=](auto stored, auto result, auto convert) {
    auto* const to = reinterpret_cast<decltype(result)*>(out);
    for (int i = 0; i < count; ++i) {
      std::memcpy(&stored, in + static_cast<size_t>(i) * sizeof stored, sizeof stored);
      to[i] = static_cast<decltype(result)>(convert(stored));
    }
  };
  const PixelLayout& layout = PixelLayoutOf(format);
  if (layout.bytes == 4)
    return each(uint32_t(), uint32_t(), [&](uint32_t p) { return p | layout.unusedBits; });
  if (layout.bytes == 1)
    return each(uint8_t(), uint32_t(), [](uint32_t p) { return p * 0x01010101u; });
  // Moves alpha from the highest bits to the lowest.
  const int bits = layout.alpha.bits;
  each(uint16_t(), uint16_t(), [=](uint32_t p) { return p << bits | p >> (16 - bits); });
}

}  // namespace

GlTexture::GlTexture(std::shared_ptr<GlDevice> device, int width, int height, VuPixelFormat format)
    : device_(std::move(device)), format_(format) {
  target_.width = width;
  target_.height = height;
  target_.order = FormatOf(format, device_->HasOneChannel()).order;
  target_.keepsAlpha = PixelLayoutOf(format).unusedBits != 0;
}

std::unique_ptr<GlTexture> GlTexture::Create(std::shared_ptr<GlDevice> device, int width,
                                             int height, VuPixelFormat format) {
  const int most = device->MaxTextureSize();
  if (width > most || height > most) {
    ZIRK_LOG_ERROR("%d x %d pixels: this OpenGL has textures of at most %d", width, height, most);
    return nullptr;
  }
  GlDevice& shared = *device;
  if (shared.IsLost()) {
    ZIRK_LOG_ERROR("%d x %d pixels: the context is lost", width, height);
    return nullptr;
  }
  const GlScope scope(shared);
  if (!scope) return nullptr;
  std::unique_ptr<GlTexture> texture(new (std::nothrow)
                                         GlTexture(std::move(device), width, height, format));
  if (!texture) {
    ReportNoMemory();
    return nullptr;
  }
  const GlFunctions& gl = shared.Gl();
  const GlFormat& layout = FormatOf(format, shared.HasOneChannel());
  gl.GenTextures(1, &texture->name_);
  shared.Batch().Bind(texture->name_);
  gl.TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
  gl.TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
  gl.TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
  gl.TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
  gl.TexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(layout.format), width, height, 0,
                layout.format, layout.type, nullptr);
  if (!shared.Check("making a texture")) return nullptr;
  return texture;
}

GlTexture::~GlTexture() {
  if (page_) page_->Free(place_);
  DeleteStorage();
}

/// Sends the draw calls that read the texture first.
void GlTexture::DeleteStorage() {
  device_->Batch().Forget(*this);
  const GLuint name = std::exchange(name_, 0);
  const GlScope scope(*device_);
  if (!scope || !name) return;
  device_->Batch().Unbind(name);
  if (target_.framebuffer) device_->Batch().DeleteFramebuffer(target_.framebuffer);
  target_.framebuffer = 0;
  device_->Gl().DeleteTextures(1, &name);
}

void GlTexture::AllowPage() {
  constexpr int kMoves = 4;
  if (GlPage::IsSmall(Width(), Height())) moves_ = kMoves;
}

void GlTexture::MoveToPage() {
  --moves_;
  const GlTarget* const from = Target();
  Box place;
  std::shared_ptr<GlPage> page = from ? GlPage::Place(device_, *this, place) : nullptr;
  if (!page) return;
  DeleteStorage();
  place_ = place;
  origin_ = {static_cast<float>(place.x0 + GlPage::kBorder),
             static_cast<float>(place.y0 + GlPage::kBorder)};
  storage_ = &page->Texture();
  page_ = std::move(page);
}

void GlTexture::LeavePage() {
  if (page_) ReturnFromPage();
  moves_ = 0;
}

bool GlTexture::ReturnFromPage() {
  const GlTarget* const from = storage_->Target();
  const auto own = from ? Create(device_, Width(), Height(), format_) : nullptr;
  const GlScope scope(*device_);
  if (!own || !scope) return false;
  device_->Batch().BindFramebuffer(from->framebuffer);
  const int x = place_.x0 + GlPage::kBorder, y = place_.y0 + GlPage::kBorder;
  own->CopyFromFramebuffer({x, y, x + Width(), y + Height()}, 0, 0);
  if (!device_->Check("leaving a page")) return false;
  Exchange(*own);
  storage_ = this;
  origin_ = {0, 0};
  page_->Free(place_);
  page_ = nullptr;
  return true;
}

/// Exchanges the OpenGL textures of two objects.
void GlTexture::Exchange(GlTexture& other) {
  std::swap(name_, other.name_);
  std::swap(filter_, other.filter_);
  std::swap(target_.framebuffer, other.target_.framebuffer);
}

bool GlTexture::Enlarge(int width, int height) {
  const GlTarget* const from = Target();
  const auto larger = from ? Create(device_, width, height, format_) : nullptr;
  const GlScope scope(*device_);
  if (!larger || !scope) return false;
  device_->Batch().BindFramebuffer(from->framebuffer);
  larger->CopyFromFramebuffer(Bounds(), 0, 0);
  if (!device_->Check("enlarging a page")) return false;
  Exchange(*larger);
  target_.width = width;
  target_.height = height;
  return true;
}

const GlTarget* GlTexture::Target() {
  if (page_ && !ReturnFromPage()) return nullptr;
  if (target_.framebuffer) return &target_;
  const GlScope scope(*device_);
  if (!scope) return nullptr;
  const GlFunctions& gl = device_->Gl();
  GLuint framebuffer = 0;
  gl.GenFramebuffers(1, &framebuffer);
  device_->Batch().BindFramebuffer(framebuffer);
  gl.FramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, name_, 0);
  const GLenum status = gl.CheckFramebufferStatus(GL_FRAMEBUFFER);
  const bool made = device_->Check("making a framebuffer");
  if (!made || status != GL_FRAMEBUFFER_COMPLETE) {
    if (made)
      ZIRK_LOG_ERROR("OpenGL cannot draw on a texture of %d x %d in format %d (0x%04x)", Width(),
                     Height(), static_cast<int>(format_), status);
    device_->Batch().DeleteFramebuffer(framebuffer);
    return nullptr;
  }
  target_.framebuffer = framebuffer;
  return &target_;
}

bool GlTexture::IsUploadedAsItIs() const {
  return FormatOf(format_, device_->HasOneChannel()).isOurs;
}

bool GlTexture::Upload(const Box& box, const void* pixels, unsigned pitch) {
  if (box.IsEmpty()) return true;
  if (page_ && !ReturnFromPage()) return false;
  const size_t rowBytes = static_cast<size_t>(box.Width() * BytesPerPixel(format_));
  std::unique_ptr<uint8_t[]> converted;
  const bool asItIs = IsUploadedAsItIs();
  if (!asItIs || pitch != rowBytes) {
    const bool widened = format_ == VuPixelFormat::A8 && !asItIs;
    const size_t outBytes = widened ? 4 * rowBytes : rowBytes;
    converted = AllocateToDraw<uint8_t>(outBytes * static_cast<size_t>(box.Height()));
    if (!converted) return false;
    const auto* in = static_cast<const uint8_t*>(pixels);
    uint8_t* out = converted.get();
    for (int y = 0; y < box.Height(); ++y, in += pitch, out += outBytes) {
      if (asItIs)
        std::memcpy(out, in, rowBytes);
      else
        ConvertRow(format_, in, box.Width(), out);
    }
    pixels = converted.get();
  }
  device_->Batch().BeforeWriting(*this, box);
  const GlScope scope(*device_);
  if (!scope) return false;
  const GlFormat& layout = FormatOf(format_, device_->HasOneChannel());
  ++target_.changes;
  device_->Batch().Bind(name_);
  device_->Gl().TexSubImage2D(GL_TEXTURE_2D, 0, box.x0, box.y0, box.Width(), box.Height(),
                              layout.format, layout.type, pixels);
  return device_->Check("writing pixels");
}

void GlTexture::CopyFromFramebuffer(const Box& box, int x, int y) {
  ++target_.changes;
  device_->Batch().Bind(name_);
  device_->Gl().CopyTexSubImage2D(GL_TEXTURE_2D, 0, x, y, box.x0, box.y0, box.Width(),
                                  box.Height());
}

void GlTexture::SetFilter(GLint filter) {
  if (filter == filter_) return;
  filter_ = filter;
  device_->Gl().TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
  device_->Gl().TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
}

void GlTexture::SetName(const char* name) {
  const GlScope scope(*device_);
  if (!scope || !device_->Gl().ObjectLabel || page_) return;
  const std::string_view label = std::string_view(name ? name : "").substr(0, kLabelSize);
  device_->Gl().ObjectLabel(GL_TEXTURE, name_, static_cast<GLsizei>(label.size()), label.data());
}

bool DrawsOnOneChannel(const GlFunctions& gl) {
  if (!gl.Has("GL_EXT_texture_rg")) return false;
  GLuint texture = 0, framebuffer = 0;
  gl.GenTextures(1, &texture);
  gl.BindTexture(GL_TEXTURE_2D, texture);
  gl.TexImage2D(GL_TEXTURE_2D, 0, GL_RED_EXT, 1, 1, 0, GL_RED_EXT, GL_UNSIGNED_BYTE, nullptr);
  gl.GenFramebuffers(1, &framebuffer);
  gl.BindFramebuffer(GL_FRAMEBUFFER, framebuffer);
  gl.FramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
  const GLenum status = gl.CheckFramebufferStatus(GL_FRAMEBUFFER);
  gl.DeleteFramebuffers(1, &framebuffer);
  gl.DeleteTextures(1, &texture);
  return gl.TakeError() == GL_NO_ERROR && status == GL_FRAMEBUFFER_COMPLETE;
}

bool ReadFramebuffer(const GlFunctions& gl, const GlTarget& target, const Box& box,
                     VuPixelFormat format, void* out) {
  const int width = box.Width(), height = box.Height();
  const int y = target.IsWindow() ? target.height - box.y1 : box.y0;
  const bool direct = BytesPerPixel(format) == 4 && !target.IsWindow();
  std::unique_ptr<uint32_t[]> rows;
  if (!direct) {
    rows = AllocateToDraw<uint32_t>(static_cast<size_t>(width) * static_cast<size_t>(height));
    if (!rows) return false;
  }
  gl.ReadPixels(box.x0, y, width, height, GL_RGBA, GL_UNSIGNED_BYTE, direct ? out : rows.get());
  if (direct) return true;
  auto* to = static_cast<uint8_t*>(out);
  const auto pitch = static_cast<ptrdiff_t>(width) * BytesPerPixel(format);
  for (int i = 0; i < height; ++i, to += pitch) {
    uint32_t* const row = rows.get() + ptrdiff_t{target.IsWindow() ? height - 1 - i : i} * width;
    if (target.order == ChannelOrder::RedFirst)
      for (int x = 0; x < width; ++x) row[x] = ExchangeRedAndBlue(row[x]);
    if (target.order == ChannelOrder::AlphaOnly)
      for (int x = 0; x < width; ++x) row[x] <<= 24;
    PackRow(format, row, width, to, 0);
  }
  return true;
}

}  // namespace ZIRK::backends
