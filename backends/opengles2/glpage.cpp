#include "opengles2/glpage.h"

#include <algorithm>
#include <new>

#include "opengles2/gldevice.h"
#include "surface/drawmemory.h"

namespace ZIRK::backends {

namespace {

constexpr int kFirstSide = 256;
constexpr int kLargestSide = 1024;

}  // namespace

GlPage::GlPage(std::unique_ptr<GlTexture> texture)
    : texture_(std::move(texture)), packer_(texture_->Width(), texture_->Height()) {}

bool GlPage::Exists(const GlDevice& device, VuPixelFormat format) {
  return std::any_of(device.Pages().begin(), device.Pages().end(), [format](const auto& weak) {
    const std::shared_ptr<GlPage> page = weak.lock();
    return page && page->Texture().Format() == format;
  });
}

std::shared_ptr<GlPage> GlPage::Place(const std::shared_ptr<GlDevice>& device, GlTexture& texture,
                                      Box& place) {
  const GlTarget* const from = texture.Target();
  const int width = texture.Width() + 2 * kBorder, height = texture.Height() + 2 * kBorder;
  auto& pages = device->Pages();
  try {
    pages.erase(
        std::remove_if(pages.begin(), pages.end(), [](const auto& p) { return p.expired(); }),
        pages.end());
    for (const std::weak_ptr<GlPage>& weak : pages) {
      std::shared_ptr<GlPage> page = weak.lock();
      if (page->Texture().Format() == texture.Format() && page->FindPlace(width, height, place))
        return page->Copy(*from, place) ? page : nullptr;
    }
    auto storage = GlTexture::Create(device, kFirstSide, kFirstSide, texture.Format());
    if (!storage) return nullptr;
    auto page = std::make_shared<GlPage>(std::move(storage));
    pages.push_back(page);
    return page->FindPlace(width, height, place) && page->Copy(*from, place) ? page : nullptr;
  } catch (const std::bad_alloc&) {
    ReportNoMemory();
    return nullptr;
  }
}

/// Enlarges the page if necessary.
bool GlPage::FindPlace(int width, int height, Box& place) {
  const int most = std::min(kLargestSide, texture_->Device().MaxTextureSize());
  for (;;) {
    const BinRect found = packer_.Insert(width, height);
    place = {found.x, found.y, found.x + found.width, found.y + found.height};
    if (found.height > 0) return true;
    const int w = texture_->Width(), h = texture_->Height();
    const int newWidth = w > h ? w : 2 * w, newHeight = w > h ? 2 * h : h;
    if (newWidth > most || newHeight > most || !texture_->Enlarge(newWidth, newHeight))
      return false;
    packer_.Resize(newWidth, newHeight);
  }
}

/// Copies the texture and its border, in nine parts: first, all and last columns of first, all and
/// last rows.
bool GlPage::Copy(const GlTarget& from, const Box& place) {
  GlDevice& device = texture_->Device();
  const GlScope scope(device);
  if (!scope) return false;
  const int w = from.width, h = from.height;
  const struct {
    int from, count, to;
  } columns[] = {{0, 1, 0}, {0, w, kBorder}, {w - 1, 1, w + kBorder}},
    rows[] = {{0, 1, 0}, {0, h, kBorder}, {h - 1, 1, h + kBorder}};
  device.Batch().BindFramebuffer(from.framebuffer);
  for (const auto& row : rows)
    for (const auto& column : columns)
      texture_->CopyFromFramebuffer(
          {column.from, row.from, column.from + column.count, row.from + row.count},
          place.x0 + column.to, place.y0 + row.to);
  return device.Check("moving to a page");
}

void GlPage::Free(const Box& place) {
  texture_->Device().Batch().BeforeWriting(*texture_, place);
  const auto isPlace = [&](const BinRect& r) { return r.x == place.x0 && r.y == place.y0; };
  auto& used = packer_.usedRects;
  used.erase(std::remove_if(used.begin(), used.end(), isPlace), used.end());
  try {
    packer_.freeRects.push_back({place.x0, place.y0, place.Width(), place.Height()});
  } catch (const std::bad_alloc&) {
    // The place stays unused until the page is deleted.
  }
}

}  // namespace ZIRK::backends
