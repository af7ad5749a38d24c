#include "glyphatlas.h"

#include <zirk/impl/log.h>
#include <zirk/impl/vubitmapimpl.h>
#include <zirk/impl/vugraphicsimpl.h>

#include <algorithm>
#include <optional>
#include <utility>

namespace ZIRK {

void GlyphAtlas::Open(VuGraphicsImpl* graphics, const std::string& name) {
  auto texture = std::make_shared<VuTextureAtlasImpl>(
      graphics, kSide, std::min(tallest_ + kMargin, kSide), VuPixelFormat::A8);
  texture->SetName(name.c_str());
  texture_ = std::move(texture);
}

void GlyphAtlas::Close() {
  texture_.reset();
  tallest_ = 0;
}

void GlyphAtlas::CountHeight(int height) {
  tallest_ = std::max(tallest_, height);
}

void GlyphAtlas::Place(CachedGlyph& cached, GlyphImage& image) {
  Glyph& glyph = cached.glyph;
  const BinRect region = Allocate(glyph.width + kMargin, glyph.height + kMargin, glyph.index);
  if (region.height == 0) {
    cached.isGivenUp = cached.isTooLarge;
    if (texture_->GetHeight() == kSide) cached.leftOutOf = filling_;
    return;
  }
  const std::optional<GlyphImage::Coverage> coverage = image.ToCoverage();
  if (!coverage) {
    cached.isGivenUp = !image.LacksMemory();
    return;
  }
  const auto atlasWidth = static_cast<float>(texture_->GetWidth());
  const auto atlasHeight = static_cast<float>(texture_->GetHeight());
  glyph.x = region.x;
  glyph.y = region.y;
  glyph.u0 = static_cast<float>(glyph.x) / atlasWidth;
  glyph.v0 = 1.0f - static_cast<float>(glyph.y) / atlasHeight;
  glyph.u1 = static_cast<float>(glyph.x + glyph.width) / atlasWidth;
  glyph.v1 = 1.0f - static_cast<float>(glyph.y + glyph.height) / atlasHeight;
  // The atlas has the name of the font, with its height.
  ZIRK_LOG_DEBUG(
      "%s: font %s render glyph '%c' charcode 0x%x index %d at %d,%d %dx%d pitch %d buffer %p",
      "LoadGlyph", texture_->name.c_str(), static_cast<int>(glyph.charcode), glyph.charcode,
      static_cast<int>(glyph.index), glyph.x, glyph.y, glyph.width, glyph.height,
      image.Bitmap().pitch, static_cast<const void*>(image.Bitmap().buffer));
  texture_->SetRegion(glyph.x, glyph.y, glyph.width, glyph.height, coverage->pixels,
                      coverage->pitch);
  ++placed_;
  if (cached.placedIn != 0) ++returned_;
  cached.placedIn = filling_;
  cached.SetInAtlas(true);
}

std::shared_ptr<VuBitmapImpl> GlyphAtlas::PlaceApart(GlyphImage& image) {
  const std::optional<GlyphImage::Coverage> coverage = image.ToCoverage();
  if (!coverage) return nullptr;
  const VuRect all = {0, 0, static_cast<int>(image.Width()), static_cast<int>(image.Height())};
  std::shared_ptr<VuBitmapImpl> bitmap(
      texture_->GetGraphics()->CreateBitmap(all.width, all.height, VuPixelFormat::A8));
  if (!bitmap || !bitmap->SetPixels(all, coverage->pixels, coverage->pitch)) return nullptr;
  ++apart_;
  return bitmap;
}

/// A region of the atlas, which grows if necessary. Its height is 0 if there is no room.
BinRect GlyphAtlas::Allocate(int width, int height, uint32_t index) {
  if (texture_->GetHeight() == 0) {
    ZIRK_LOG_INFO("%s: texture atlas allocation failure", "LoadGlyph");
    return {};
  }
  BinRect region = texture_->GetRegion(width, height);
  if (region.height != 0) return region;
  const int glyph = static_cast<int>(index);
  ZIRK_LOG_INFO("%s: GetRegion(%dx%d) for glyph %d returned %dx%d", "LoadGlyph", width, height,
                glyph, region.width, 0);
  Grow();
  region = texture_->GetRegion(width, height);
  if (region.height == 0)
    ZIRK_LOG_WARNING("%s: GetRegion(%dx%d) returned %dx%d.  No room to fit glyph %d after resize",
                     "LoadGlyph", width, height, region.width, 0, glyph);
  return region;
}

/// Adds rows for the tallest glyph. Empties the atlas if the backend does not keep its contents, or
/// if it does not get the requested height.
void GlyphAtlas::Grow() {
  const int wanted = std::min(texture_->GetHeight() + tallest_ + kMargin, kSide);
  const auto losesContents = [this] { return texture_->GetGraphics()->GetGraphicsType() == 0; };
  // An atlas of the full height would only be copied to another bitmap of the same size: 4 MiB for
  // every glyph without room.
  if (wanted == texture_->GetHeight() && !losesContents()) return;
  const int granted = texture_->Resize(kSide, wanted).second;
  if (losesContents() || granted != wanted) Reset();
}

void GlyphAtlas::Reset() {
  for (CachedGlyph& cached : glyphs_) cached.SetInAtlas(false);
  if (texture_) texture_->Reset();
  ++filling_;
  placed_ = returned_ = apart_ = 0;
}

}  // namespace ZIRK
